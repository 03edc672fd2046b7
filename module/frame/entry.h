// SPDX-License-Identifier: MIT
#pragma once

#include "host/module_entry.h"

// The module's one exported function.
extern "C" vl::Word ZRDLLFunc(std::uint32_t command, vl::Word arg, vl::Word arg2);
