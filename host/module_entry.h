// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/word.h"

// A module is a shared library that exports one function, ZRDLLFunc(command, arg, arg2), with C linkage. The
// order:
//   1. Load the library (dlopen, LoadLibrary). Its handle is the HINSTANCE by which its resources are found.
//   2. Start it: ZRDLL_INIT, once, with a HostApp that outlives it. The module registers its type names.
//   3. Create extensions by type name, as many as are wanted: ZRDLL_CREATE, or HostApp::CreateExtension.
// The library stays loaded as long as an object of it lives. All of this is for one thread. Any other command
// answers 0.
enum ModuleCommand : std::uint32_t {
    ZRDLL_INIT = 0x1001,              // arg: HostApp*; arg2: the module's HINSTANCE. Answers 5.
    ZRDLL_VERSION = 0x1010,           // arg: the host's version number, or 0. Answers the module's.
    ZRDLL_GETVERSIONSTRING = 0x1020,  // arg: char16_t buffer for the text and its terminator. Answers 1.
    ZRDLL_GETDESCRIPTION = 0x1021,    // the same; 0, with the buffer untouched, before ZRDLL_INIT.
    ZRDLL_CREATE = 0x10002,           // arg: type name. Answers the new vl::Extension, or 0.
};

inline constexpr char kModuleEntryName[] = "ZRDLLFunc";

using ModuleEntry = vl::Word (*)(std::uint32_t command, vl::Word arg, vl::Word arg2);
