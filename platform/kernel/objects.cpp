// SPDX-License-Identifier: MIT
#include "platform/kernel/objects.h"

#include <chrono>

namespace platform {

WaitObject::~WaitObject() {
    if (m_thread.joinable()) m_thread.detach();
}

void WaitObject::StartThread(const std::shared_ptr<WaitObject>& object, LPTHREAD_START_ROUTINE start,
                             LPVOID parameter) {
    const std::lock_guard lock(object->m_mutex);
    object->m_thread = std::thread([object, start, parameter] {
        start(parameter);
        object->Set();
    });
}

void WaitObject::Set() {
    const std::lock_guard lock(m_mutex);
    m_isSet = true;
    m_changed.notify_all();
}

bool WaitObject::Wait(DWORD milliseconds) {
    std::unique_lock lock(m_mutex);
    const auto isSet = [this] { return m_isSet; };
    if (milliseconds == INFINITE) {
        m_changed.wait(lock, isSet);
    } else if (!m_changed.wait_for(lock, std::chrono::milliseconds(milliseconds), isSet)) {
        return false;
    }
    if (!m_manualReset) m_isSet = false;
    if (m_thread.joinable()) m_thread.join();
    return true;
}

HandleTable& HandleTable::Instance() {
    // Threads may outlive the statics of the program, so the table is never destroyed.
    static HandleTable& table = *new HandleTable;
    return table;
}

HANDLE HandleTable::Open(std::shared_ptr<WaitObject> object) {
    const std::lock_guard lock(m_mutex);
    m_open.emplace(++m_last, std::move(object));
    return reinterpret_cast<HANDLE>(m_last);
}

bool HandleTable::Close(HANDLE handle) {
    const std::lock_guard lock(m_mutex);
    return m_open.erase(reinterpret_cast<std::uintptr_t>(handle)) != 0;
}

std::shared_ptr<WaitObject> HandleTable::Find(HANDLE handle) {
    const std::lock_guard lock(m_mutex);
    const auto found = m_open.find(reinterpret_cast<std::uintptr_t>(handle));
    return found == m_open.end() ? nullptr : found->second;
}

}  // namespace platform
