// SPDX-License-Identifier: MIT
#include "module/cleaner/cleaner.h"

#include "host/params.h"
#include "host/ref.h"
#include "host/scene.h"
#include "host/stream.h"
#include "host/xml.h"
#include "module/cleaner/operations.h"
#include "module/cleaner/removal.h"
#include "module/frame/globals.h"

namespace {

constexpr int kMethodCleanScene = 1;

vl::Word Read(vl::Params* params, int position, vl::Word fallback, zr_VALUETYPE type) {
    return params != nullptr ? params->GetParam(position, fallback, type) : fallback;
}

CCleanerImpl::CI2BMap ReadOptions(vl::Params* params) {
    CCleanerImpl::CI2BMap options;
    for (const zrt::Operation& operation : zrt::kOperations) {
        options.Set(operation.option, Read(params, operation.parameter, 1, ZR_VALUE_BOOL) != 0);
    }
    return options;
}

}  // namespace

CCleanerImpl* CreateCleaner() {
    return new CCleanerImpl;
}

vl::ResultEnum CCleanerImpl::QueryInfo(vl::xml::Element* element, unsigned /*flags*/) try {
    vl::String name;
    name.Set(u"ZRDATA|CLEANER_QUERY_INFO", -1);
    const auto stream = vl::Ref<vl::Stream>::Adopt(vl::Stream::Create(g_hModule, name, 2));
    return stream ? element->Load(stream.Get()) : vl::kCannotOpen;
} catch (...) {
    return vl::kCannotOpen;
}

vl::ResultEnum CCleanerImpl::Invoke(int method, vl::Params* params, vl::Context* context) {
    if (method != kMethodCleanScene) return vl::kWrongClass;
    return CleanScene(params, context) ? vl::kSuccess : vl::kCannotOpen;
}

bool CCleanerImpl::CleanScene(vl::Params* params, vl::Context* context) try {
    auto* scene = vl::FromWord<vl::zr::Scene*>(Read(params, 0, 0, ZR_VALUE_SCENE));
    if (scene == nullptr) return true;
    // Read as a whole first: an operation may change what the parameters are kept in.
    const CI2BMap options = ReadOptions(params);
    for (const zrt::Operation& operation : zrt::kOperations) {
        if (options.IsOn(operation.option)) (this->*operation.run)(scene, context, nullptr);
    }
    return true;
} catch (...) {
    return false;
}

int CCleanerImpl::MergeEqualMaterials(vl::zr::Scene* scene, vl::Context* /*context*/,
                                      ChangeRecord* /*record*/) {
    if (scene == nullptr) return 0;
    return zrt::Counted([&](int& count) { count = scene->MergeEqualMaterials(); });
}
