// SPDX-License-Identifier: MIT
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

namespace {

bool ShowsInfo() {
    return g_pHost->GetSettingInt(0, "Features\\ShowTweenkitInfo", 0) != 0;
}

}  // namespace

int ZR_TK::RunProcess() {
    using namespace vl::tk;
    const auto exports = [this](std::uint32_t flags) { return (m_dwExportFlags & flags) != 0; };

    if (ShowsInfo()) g_pHost->LogLine(u"ZR_TK::Process() - entering");
    m_bAnimated = !exports(kIgnoreAnimation) && m_pScene != nullptr && m_pScene->IsAnimated() != 0;
    if (RunBuildHierarchy() == 0) return 0;
    if (exports(kExtractKeys) && RunExtractKeys() != 0) m_dwStatus |= 0x1;
    if (exports(kLightTargetRecords | kLightTargetKeys)) LightTargetPass();
    if (exports(kCameraTargetRecords | kCameraTargetKeys)) CameraTargetPass();
    if (exports(kAssignNames)) RunAssignNames();
    if (exports(kDecomposeRest | kExtractKeys)) {
        zrt::WalkRecords(m_pRoots, [this](ExportNode* record) {
            DecomposeRest(record, nullptr);
            return record;
        });
    }
    OrientationPass();
    if (m_nMaxMaterialNameLength > 2) MakeMaterialNames();
    if (exports(kMergeKeys)) MergeKeys();
    if ((m_dwAnimFlags & kResampleKeys) != 0) ResampleKeys();
    if (exports(kFlipAxes)) FlipAxes();

    MapTimeRange();
    if (ShowsInfo()) FillTreeView(nullptr, 0);
    return 1;
}
