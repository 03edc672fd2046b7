// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/word.h"

// Commands of a module's one exported function, ZRDLLFunc(command, arg, arg2).
enum ModuleCommand : std::uint32_t {
    ZRDLL_INIT = 0x1001,              // arg: HostApp*; arg2: the module's HINSTANCE. Answers 5.
    ZRDLL_VERSION = 0x1010,           // arg: the host's version number, or 0. Answers the module's.
    ZRDLL_GETVERSIONSTRING = 0x1020,  // arg: char16_t buffer for the text and its terminator. Answers 1.
    ZRDLL_GETDESCRIPTION = 0x1021,    // the same; 0, with the buffer untouched, before ZRDLL_INIT.
    ZRDLL_CREATE = 0x10002,           // arg: type name. Answers the new vl::Extension, or 0.
};

using ModuleEntry = vl::Word (*)(std::uint32_t command, vl::Word arg, vl::Word arg2);
