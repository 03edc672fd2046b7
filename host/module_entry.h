// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/word.h"

// A module is a shared library that exports one function, ZRDLLFunc(command, arg, arg2), with C linkage. The
// order:
//   1. Load the library (dlopen, LoadLibrary). Its handle is the HINSTANCE by which its resources are found.
//   2. Start it: ZRDLL_INIT, once, with a HostApp that outlives it. The module registers its type names.
//   3. Create any number of extensions by type name: ZRDLL_CREATE, or HostApp::CreateExtension.
// The library must stay loaded as long as one of its objects lives. All of this happens on one thread. Any
// other command returns 0.
enum ModuleCommand : std::uint32_t {
    ZRDLL_INIT = 0x1001,              // arg: HostApp*; arg2: the module's HINSTANCE. Returns 5.
    ZRDLL_VERSION = 0x1010,           // arg: the host's version number, or 0. Returns the module's.
    ZRDLL_GETVERSIONSTRING = 0x1020,  // arg: char16_t buffer for the text and its terminator. Returns 1.
    ZRDLL_GETDESCRIPTION = 0x1021,    // the same; 0, with the buffer untouched, before ZRDLL_INIT.
    ZRDLL_CREATE = 0x10002,           // arg: type name. Returns the new vl::Extension, or 0.
};

inline constexpr char kModuleEntryName[] = "ZRDLLFunc";

using ModuleEntry = vl::Word (*)(std::uint32_t command, vl::Word arg, vl::Word arg2);
