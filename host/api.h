// SPDX-License-Identifier: MIT
#pragma once

// The contract between a host, its modules and the tools that use both.
//
// BINARY INTERFACE. Host and module are compiled separately and call each other through the classes of this
// folder. The order of a class's virtual functions, the order and the types of its public fields, the layout
// of the records and every number stated here are therefore the interface itself: they never change, and
// additions go at the end. A class that has "private:" in its middle declares a function there that must keep
// that slot of the table but is not to be called from outside.
//
// TOOLCHAINS. Both sides must agree on the layout of classes, on run-time type information (dynamic_cast
// crosses the boundary) and on the types of the standard library that occur in signatures and classes:
// - on Linux and similar systems: GCC or Clang with libstdc++, both sides of the same word size;
// - on Windows: GCC of MinGW-w64 with the posix thread model. Compilers with another class layout do not fit.
// C++20 or later.
//
// UNLESS STATED OTHERWISE
// - Pointer arguments are not null, are read or filled during the call and not kept. Objects of a scene that
//   are returned belong to the scene, carry no count for the caller and stay valid as long as the scene.
// - A function named Create... or Clone returns a new object with count 1, which is the caller's to release.
// - Text buffers: the size counts characters with the terminator; the text is cut to fit and terminated.
//   Wide text is UTF-16, narrow text UTF-8.
// - Times are in seconds, angles in radians, lengths in units of the scene. int arguments named mode are 0.
// - An object is used by one thread at a time. Counts, vl::mem and Context::SetBreak are for any thread.
// - When memory runs out, a function named Create... returns null. Any other function of a host throws
//   std::bad_alloc and leaves the object unchanged; it throws no other exception. Modules catch it: a
//   function of an extension never throws and returns what its comment says.

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
