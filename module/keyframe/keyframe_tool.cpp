// SPDX-License-Identifier: MIT
#include "module/keyframe/keyframe_tool.h"

#include <limits>

#include "host/material_name.h"
#include "host/settings_store.h"
#include "module/keyframe/record.h"

ZR_TK::~ZR_TK() {
    DropRecords();
}

void ZR_TK::DropRecords() {
    for (vl::Array** list : {&m_pNameTable, &m_pRoots, &m_pAllNodes}) {
        if (*list != nullptr) (*list)->Release();
        *list = nullptr;
    }
    m_records.clear();
    m_nodeRecords.clear();
    m_nIndexed = 0;
    m_uniqueNames.reset();
    if (m_pMaterialNames == nullptr) return;
    for (MaterialName* name : vl::ArrayOf<MaterialName*>(m_pMaterialNames)) {
        if (name == nullptr) continue;
        delete[] name->szName;
        delete[] name->wszName;
        delete name;
    }
    m_pMaterialNames->Release();
    m_pMaterialNames = nullptr;
}

template <typename Work>
int ZR_TK::OrDropRecords(Work work) {
    try {
        return work();
    } catch (...) {
        DropRecords();
        return 0;
    }
}

int ZR_TK::Process(int) {
    return OrDropRecords([this] { return RunProcess(); });
}

int ZR_TK::ProcessKeys() {
    return OrDropRecords([this] { return RunProcessKeys(); });
}

int ZR_TK::BuildHierarchy() {
    return OrDropRecords([this] { return RunBuildHierarchy(); });
}

int ZR_TK::ExtractKeys() {
    return OrDropRecords([this] { return RunExtractKeys(); });
}

int ZR_TK::AssignNames() {
    return OrDropRecords([this] { return RunAssignNames(); });
}

void ZR_TK::LoadSettings(SettingsStore* store, const char* section) try {
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
} catch (...) {
    // A store that fails leaves the settings that were not read at their defaults.
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
