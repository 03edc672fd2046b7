// SPDX-License-Identifier: MIT
#pragma once

#include "host/module_entry.h"

// The module's one exported function.
#pragma GCC visibility push(default)
extern "C" vl::Word ZRDLLFunc(std::uint32_t command, vl::Word arg, vl::Word arg2);
#pragma GCC visibility pop
