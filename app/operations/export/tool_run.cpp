// SPDX-License-Identifier: MIT
#include "app/operations/export/tool_run.h"

#include <stdexcept>

#include "app/operations/export/record_scenes.h"
#include "app/operations/export/whole_names.h"
#include "base/memory_watch.h"

namespace zr {

Tool RunTool(Host& host, LoadedScene& loaded, kernix::AnimationModel* animation,
             const ExportOptions& options) {
    kernix::SceneModel& scene = loaded.Scene();
    scene.SetSceneMatrix(options.sceneMatrix);
    scene.SetActiveAnimation(animation);
    // With other options the tools only ask lights where they are shown.
    scene.FollowLightTargets(options.Has(vl::tk::kLightTargetRecords) || !options.Has(vl::tk::kAllChoices));
    Tool tool = host.Create<vl::tk::Serializer>(kTypeKeyframeTool);
    tool->m_pScene = &scene;
    tool->m_dwExportFlags = options.exportFlags;
    tool->m_dwNameFlags = options.nameFlags;
    tool->m_dwAnimFlags = options.animFlags;
    tool->m_nPivotMode = options.pivotMode;
    tool->m_fRescale = options.rescale;
    tool->m_nMaxNameLength = options.maxNameLength;
    tool->m_nMaxMaterialNameLength = options.maxMaterialNameLength;
    tool->m_pfnRename = options.rename;
    tool->m_pRenameContext = options.renameContext;
    host.TakeReportedError();
    if (tool->Process(0) == 0) {
        const std::string reason = host.TakeReportedError();
        throw std::runtime_error(reason.empty() ? "nothing to export: the options leave out every node"
                                                : reason);
    }
    GroupByScenes(loaded, tool);
    MakeNamesWhole(tool);
    return tool;
}

bool RunToolAgain(const Tool& tool, kernix::SceneModel& scene, kernix::AnimationModel& animation) {
    scene.SetActiveAnimation(&animation);
    if (tool->ProcessKeys() != 0) return true;
    RequireMemory();
    return false;
}

}  // namespace zr
