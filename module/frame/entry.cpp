// SPDX-License-Identifier: MIT
#include "module/frame/entry.h"

#include <algorithm>
#include <string_view>

#include "host/version.h"
#include "module/frame/globals.h"
#include "module/frame/registry.h"

namespace {

constexpr vl::Word kInitialised = 5;
constexpr int kDescriptionString = 1;
constexpr std::u16string_view kVersion = u"" ZR_VERSION;

vl::Word Initialise(HostApp* host, HINSTANCE module) {
    g_hModule = module;
    g_pHost = host;
    g_hStrings = g_pHost->LoadModuleStrings(g_hModule);
    for (const zrt::ExtensionType& type : zrt::kExtensionTypes) {
        g_pHost->RegisterExtensionType(g_hModule, type.name, 0, 0);
    }
    return kInitialised;
}

// The caller's buffer must have room for the text and its terminator.
vl::Word CopyOut(std::u16string_view text, char16_t* buffer) {
    if (buffer == nullptr) return 0;
    *std::copy(text.begin(), text.end(), buffer) = 0;
    return 1;
}

vl::Word Description(char16_t* buffer) {
    return g_pHost != nullptr ? CopyOut(g_pHost->GetModuleString(g_hStrings, kDescriptionString), buffer) : 0;
}

vl::Word Create(const char* name) {
    if (name == nullptr) return 0;
    for (const zrt::ExtensionType& type : zrt::kExtensionTypes) {
        if (std::string_view(type.name) == name) return vl::ToWord(type.create());
    }
    return 0;
}

}  // namespace

vl::Word ZRDLLFunc(std::uint32_t command, vl::Word arg, vl::Word arg2) {
    switch (command) {
        case ZRDLL_INIT:
            return Initialise(vl::FromWord<HostApp*>(arg), vl::FromWord<HINSTANCE>(arg2));
        case ZRDLL_VERSION:
            if (arg != 0) g_nHostVersion = static_cast<std::uint32_t>(arg);
            return ZRDLL_SDK_VERSION;
        case ZRDLL_GETVERSIONSTRING:
            return CopyOut(kVersion, vl::FromWord<char16_t*>(arg));
        case ZRDLL_GETDESCRIPTION:
            return Description(vl::FromWord<char16_t*>(arg));
        case ZRDLL_CREATE:
            return Create(vl::FromWord<const char*>(arg));
        default:
            return 0;
    }
}
