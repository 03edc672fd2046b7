// SPDX-License-Identifier: MIT
#include "module/cleaner/cleaner.h"

#include "host/params.h"
#include "host/scene.h"
#include "host/stream.h"
#include "host/xml.h"
#include "module/cleaner/operations.h"
#include "module/frame/globals.h"

namespace zrt {

const Operation kOperations[kOperationCount] = {
    {kOptionMetadata, 1111, 2001, true, &CCleanerImpl::RemoveMetadata},
    {kOptionEqualMaterials, 1181, 2001, true, &CCleanerImpl::MergeEqualMaterials},
    {kOptionMeshDupes, 1141, 2001, true, &CCleanerImpl::RemoveMeshDupes},
    {kOptionEmptyNodes, 1161, 2001, true, &CCleanerImpl::RemoveEmptyNodes},
    {kOptionModelViews, 1121, 2001, true, &CCleanerImpl::RemoveModelViews},
    {kOptionLayers, 1131, 2001, true, &CCleanerImpl::RemoveUnusedLayers},
    {kOptionNotes, 1151, 2001, true, &CCleanerImpl::RemoveNotesAndEtc},
    {kOptionMaterials, 1101, 2001, true, &CCleanerImpl::RemoveUnusedMaterials},
    {kOptionAnimations, 1171, 2001, true, &CCleanerImpl::RemoveUnusedAnimations},
    {kOptionEnvironment, 1191, 2001, true, &CCleanerImpl::RemoveEnvMapsAndBackplates},
};

namespace {

// The options in the order of the method's bool parameters.
constexpr CleanerOption kParameterOptions[kOperationCount] = {
    kOptionAnimations, kOptionEmptyNodes, kOptionMaterials, kOptionModelViews,  kOptionLayers,
    kOptionMetadata,   kOptionNotes,      kOptionMeshDupes, kOptionEnvironment, kOptionEqualMaterials,
};

constexpr int kMethodCleanScene = 1;

}  // namespace

}  // namespace zrt

CCleanerImpl* CreateCleaner() {
    return new CCleanerImpl;
}

vl::ResultEnum CCleanerImpl::QueryInfo(vl::xml::Element* element, unsigned /*flags*/) {
    vl::String name;
    name.Set(u"ZRDATA|CLEANER_QUERY_INFO", -1);
    const auto stream = vl::Ref<vl::Stream>::Adopt(vl::Stream::Create(g_hModule, name, 2));
    return stream ? element->Load(stream.Get()) : vl::kCannotOpen;
}

vl::ResultEnum CCleanerImpl::Invoke(int method, vl::Params* params, vl::Context* context) {
    if (method != zrt::kMethodCleanScene) return vl::kWrongClass;
    CCleanerImpl run;
    return run.CleanScene(params, context) ? vl::kSuccess : vl::kCannotOpen;
}

bool CCleanerImpl::CleanScene(vl::Params* params, vl::Context* context) {
    ReadOptions(params);
    return RunOperations(context);
}

void CCleanerImpl::ReadOptions(vl::Params* params) {
    const auto read = [params](int position, vl::Word fallback, zr_VALUETYPE type) {
        return params != nullptr ? params->GetParam(position, fallback, type) : fallback;
    };
    m_options.Clear();
    m_pScene = vl::FromWord<vl::zr::Scene*>(read(0, 0, ZR_VALUE_SCENE));
    for (int i = 0; i < zrt::kOperationCount; ++i) {
        m_options.Set(zrt::kParameterOptions[i], read(i, 1, ZR_VALUE_BOOL) != 0);
    }
}

bool CCleanerImpl::RunOperations(vl::Context* context) {
    m_pContext = context;
    if (m_pScene == nullptr) return true;
    for (const zrt::Operation& operation : zrt::kOperations) {
        if (m_options.IsOn(operation.option)) (this->*operation.run)(m_pScene, m_pContext, nullptr);
    }
    return true;
}

int CCleanerImpl::MergeEqualMaterials(vl::zr::Scene* scene, vl::Context* /*context*/,
                                      ChangeRecord* /*record*/) {
    return scene != nullptr ? scene->MergeEqualMaterials() : 0;
}
