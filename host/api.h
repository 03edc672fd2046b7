// SPDX-License-Identifier: MIT
#pragma once

// Marks what the core library exports.
#if defined(_WIN32)
#ifdef KERNIX_BUILD
#define KERNIX_API __declspec(dllexport)
#else
#define KERNIX_API __declspec(dllimport)
#endif
#else
#define KERNIX_API __attribute__((visibility("default")))
#endif
