// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/host_app.h"

// What the entry function keeps for the extensions. Written while the host initialises the module, read
// afterwards; not locked.
inline constexpr std::uint32_t ZRDLL_SDK_VERSION = 1555;

extern HostApp* g_pHost;              // null before ZRDLL_INIT
extern HINSTANCE g_hModule;           // the module's own handle
extern void* g_hStrings;              // the module's localized strings
extern std::uint32_t g_nHostVersion;  // ZRDLL_SDK_VERSION until the host reports its own
