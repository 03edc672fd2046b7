// SPDX-License-Identifier: MIT
#pragma once

// Handles and records of the window system that stand in signatures of the host. They are declared the
// way the system's own headers declare them, so both may be included in one source.

struct HWND__;
using HWND = HWND__*;

struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;
