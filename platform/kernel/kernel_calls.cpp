// SPDX-License-Identifier: MIT
#include <system_error>

#include "platform/kernel/objects.h"

using platform::HandleTable;
using platform::WaitObject;

HANDLE CreateThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD,
                    DWORD*) {
    try {
        return HandleTable::Instance().Open(WaitObject::StartThread(start, parameter));
    } catch (const std::system_error&) {
        return nullptr;
    }
}

HANDLE CreateEventA(SECURITY_ATTRIBUTES*, BOOL manualReset, BOOL initiallySet, LPCSTR) {
    return HandleTable::Instance().Open(std::make_shared<WaitObject>(manualReset != 0, initiallySet != 0));
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
