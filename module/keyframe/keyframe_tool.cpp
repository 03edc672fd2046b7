// SPDX-License-Identifier: MIT
#include "module/keyframe/keyframe_tool.h"

#include <limits>

#include "host/settings_store.h"
#include "module/keyframe/material_name.h"
#include "module/keyframe/record.h"

ZR_TK::~ZR_TK() {
    if (m_pNameTable != nullptr) m_pNameTable->Release();
    if (m_pRoots != nullptr) {
        for (ExportNode* root : vl::ArrayOf<ExportNode*>(m_pRoots)) zrt::DestroyExportNode(root);
        m_pRoots->Release();
    }
    for (ExportNode* record : m_looseRecords) zrt::DestroyExportNode(record);
    if (m_pAllNodes != nullptr) m_pAllNodes->Release();
    if (m_pMaterialNames != nullptr) {
        for (MaterialName* name : vl::ArrayOf<MaterialName*>(m_pMaterialNames)) {
            delete[] name->szName;
            delete[] name->wszName;
            delete name;
        }
        m_pMaterialNames->Release();
    }
}

void ZR_TK::LoadSettings(SettingsStore* store, const char* section) {
    if (store->GetInt(section, "anim\\mergekeys", 0) != 0) m_dwExportFlags |= vl::tk::kMergeKeys;
    if (store->GetInt(section, "anim\\reverse", 0) != 0) m_dwAnimFlags |= vl::tk::kReverseTime;
    if (store->GetInt(section, "anim\\rescale", 0) == 0) return;
    m_dwAnimFlags |= vl::tk::kRescaleTime;
    if (store->GetInt(section, "anim\\rescaletype", 1) == 0) {
        m_dwAnimFlags |= vl::tk::kSetLength;
        m_fRescale = store->GetFloat(section, "anim\\setLengthTo", 1.0f);
    } else {
        m_fRescale = store->GetFloat(section, "anim\\rescalepercent", 1.0f);
    }
}

float ZR_TK::GetCurrentTime() {
    return MapTime(m_pScene != nullptr ? m_pScene->GetCurrentTime() : 0.0f);
}

float ZR_TK::GetFrameRate() {
    const float rate = m_pScene != nullptr ? m_pScene->GetFrameRate(0) : 0.0f;
    return rate < 0.01f ? 1.0f : rate;
}

int ZR_TK::TimeToFrame(float time) {
    const double frame = double{time} * GetFrameRate() + 0.5;
    if (!(frame > std::numeric_limits<int>::min())) return std::numeric_limits<int>::min();
    if (frame >= std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
    return static_cast<int>(frame);
}
