// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>

#include "platform/windows/kernel.h"

namespace platform {

// The object behind a handle: a signal to wait for. A thread's object is signalled when it has returned.
class WaitObject {
public:
    WaitObject(bool manualReset, bool isSet) : m_manualReset(manualReset), m_isSet(isSet) {}
    ~WaitObject();

    // Starts the thread that will signal the object, once for an object. Throws std::system_error when the
    // system refuses it.
    static void StartThread(const std::shared_ptr<WaitObject>& object, LPTHREAD_START_ROUTINE start,
                            LPVOID parameter);

    void Set();

    // False after a time-out. Once it is true for a thread, none of the thread's code runs any more.
    bool Wait(DWORD milliseconds);

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::thread m_thread;
    const bool m_manualReset;
    bool m_isSet;
};

// The open handles. An object lives until its handle is closed and the last call that uses it is over.
class HandleTable {
public:
    static HandleTable& Instance();

    HANDLE Open(std::shared_ptr<WaitObject> object);
    bool Close(HANDLE handle);
    std::shared_ptr<WaitObject> Find(HANDLE handle);  // null for a handle that is not open

private:
    std::mutex m_mutex;
    std::uintptr_t m_last = 0;
    std::unordered_map<std::uintptr_t, std::shared_ptr<WaitObject>> m_open;
};

}  // namespace platform
