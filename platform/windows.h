// SPDX-License-Identifier: MIT
#pragma once

// The Windows names that the module uses. On Windows they are the system's; elsewhere the headers of
// platform/windows/ declare the same names and platform/ implements them.
#ifdef _WIN32
#include <windows.h>
// commctrl.h needs windows.h before it.
#include <commctrl.h>
// A macro for old systems; classes of the host have functions of that name.
#undef GetCurrentTime
#else
#include "platform/windows/base.h"
#include "platform/windows/gdi.h"
#include "platform/windows/kernel.h"
#include "platform/windows/resource.h"
#include "platform/windows/ui.h"
#endif

#include "platform/wide.h"
