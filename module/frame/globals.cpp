// SPDX-License-Identifier: MIT
#include "module/frame/globals.h"

HostApp* g_pHost = nullptr;
HINSTANCE g_hModule = nullptr;
void* g_hStrings = nullptr;
std::uint32_t g_nHostVersion = ZRDLL_SDK_VERSION;
