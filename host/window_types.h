// SPDX-License-Identifier: MIT
#pragma once

// Handles of the window system that occur in signatures of the host. They are declared as the system's own
// headers declare them, so that one source may include both.

struct HWND__;
using HWND = HWND__*;

struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;
