// SPDX-License-Identifier: MIT
#pragma once

#include "platform/windows/base.h"

// Reading the resources that a module carries. A module handle is the handle with which the module was
// loaded; null means the running program. Names and types are compared without case, and either may be a
// number (MAKEINTRESOURCEA). The data belongs to the module and lives as long as it stays loaded.

struct HRSRC__;
using HRSRC = HRSRC__*;
using HGLOBAL = HANDLE;

// The first resource of that type and name, whatever its language; null when the module has none.
HRSRC FindResourceA(HMODULE module, LPCSTR name, LPCSTR type);

// Null (size 0) for a null resource.
HGLOBAL LoadResource(HMODULE module, HRSRC resource);
DWORD SizeofResource(HMODULE module, HRSRC resource);

LPVOID LockResource(HGLOBAL data);
