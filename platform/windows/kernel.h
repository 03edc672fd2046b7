// SPDX-License-Identifier: MIT
#pragma once

#include "platform/windows/base.h"

// Threads, events and waiting. Every call may be made on any thread. Calls fail for a handle that was closed
// or never opened; values of handles are never reused.

struct SECURITY_ATTRIBUTES;
using LPTHREAD_START_ROUTINE = DWORD (*)(LPVOID);

constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 258;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

// Starts `start(parameter)` on a new thread, with default security, stack size and flags whatever the
// arguments say. The handle is signalled when the thread has returned; closing it does not stop the thread.
// Null when the system refuses the thread.
HANDLE CreateThread(SECURITY_ATTRIBUTES* security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start,
                    LPVOID parameter, DWORD flags, DWORD* threadId);

// An unnamed event. A manual-reset event stays signalled; any other releases one wait and resets itself.
HANDLE CreateEventA(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initiallySet, LPCSTR name);
BOOL SetEvent(HANDLE event);

// Waits until the thread has returned or the event is signalled, at most `milliseconds`.
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);

BOOL CloseHandle(HANDLE handle);
