// SPDX-License-Identifier: MIT
#pragma once

#include "host/module_entry.h"

// What the module exports. On Windows the module-definition file names it.
#ifdef _WIN32
#define ZR_MODULE_EXPORT
#else
#define ZR_MODULE_EXPORT __attribute__((visibility("default")))
#endif

extern "C" ZR_MODULE_EXPORT vl::Word ZRDLLFunc(std::uint32_t command, vl::Word arg, vl::Word arg2);
