// SPDX-License-Identifier: MIT
#include <exception>
#include <memory>

#include "platform/kernel/objects.h"

using platform::HandleTable;
using platform::WaitObject;

HANDLE CreateThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD,
                    DWORD*) {
    try {
        // The handle first: a running thread cannot be undone.
        const auto object = std::make_shared<WaitObject>(true, false);
        const HANDLE handle = HandleTable::Instance().Open(object);
        try {
            WaitObject::StartThread(object, start, parameter);
        } catch (...) {
            HandleTable::Instance().Close(handle);
            throw;
        }
        return handle;
    } catch (const std::exception&) {
        return nullptr;
    }
}

HANDLE CreateEventA(SECURITY_ATTRIBUTES*, BOOL manualReset, BOOL initiallySet, LPCSTR) try {
    return HandleTable::Instance().Open(std::make_shared<WaitObject>(manualReset != 0, initiallySet != 0));
} catch (const std::exception&) {
    return nullptr;
}

BOOL SetEvent(HANDLE event) {
    const auto object = HandleTable::Instance().Find(event);
    if (object) object->Set();
    return object != nullptr;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    const auto object = HandleTable::Instance().Find(handle);
    if (!object) return WAIT_FAILED;
    return object->Wait(milliseconds) ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

BOOL CloseHandle(HANDLE handle) {
    return HandleTable::Instance().Close(handle);
}
