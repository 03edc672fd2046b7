// SPDX-License-Identifier: MIT
// A module with one extension. Method 1 counts the nodes of a scene: parameter 0 of the call is the scene;
// the result becomes parameter 0 of the extension.
#include <cstring>

#include "host/extension.h"
#include "host/host_app.h"
#include "host/module_entry.h"
#include "host/params.h"
#include "host/scene.h"

namespace {

constexpr char kTypeName[] = "EXAMPLE_NODE_COUNTER";
constexpr vl::Word kVersion = 1;
constexpr int kMethodCount = 1;

class NodeCounter final : public vl::Extension {
public:
    const char* GetTypeName() override { return kTypeName; }

    vl::ResultEnum Invoke(int method, vl::Params* params, vl::Context*) override {
        if (method != kMethodCount || params == nullptr) return vl::kWrongClass;
        auto* scene = vl::FromWord<vl::zr::Scene*>(params->GetParam(0, 0, ZR_VALUE_SCENE));
        if (scene == nullptr) return vl::kWrongClass;
        SetParam(0, vl::ToWord(vl::ArrayOf<vl::zr::Node*>(scene->m_pNodes).Count()), ZR_VALUE_INT);
        return vl::kSuccess;
    }

private:
    void DeleteThis() override { delete this; }
};

vl::Word CopyOut(const char16_t* text, vl::Word buffer) {
    std::memcpy(vl::FromWord<char16_t*>(buffer), text, (vl::Length(text) + 1) * sizeof *text);
    return 1;
}

}  // namespace

#ifdef _WIN32
#define EXPORTED __declspec(dllexport)
#else
#define EXPORTED __attribute__((visibility("default")))
#endif

extern "C" EXPORTED vl::Word ZRDLLFunc(std::uint32_t command, vl::Word arg, vl::Word arg2) {
    switch (command) {
        case ZRDLL_INIT:
            vl::FromWord<HostApp*>(arg)->RegisterExtensionType(vl::FromWord<HINSTANCE>(arg2), kTypeName, 0,
                                                               0);
            return 5;
        case ZRDLL_VERSION:
            return kVersion;
        case ZRDLL_GETVERSIONSTRING:
            return CopyOut(u"1.0", arg);
        case ZRDLL_GETDESCRIPTION:
            return CopyOut(u"Counts nodes", arg);
        case ZRDLL_CREATE:
            if (std::strcmp(vl::FromWord<const char*>(arg), kTypeName) != 0) return 0;
            return vl::ToWord<vl::Extension*>(new NodeCounter);
        default:
            return 0;
    }
}
