// SPDX-License-Identifier: MIT
#pragma once

#include <windows.h>

#include <system_error>
#include <utility>

namespace zr {

// Owns a handle that CreateFileW returned.
class Handle {
public:
    explicit Handle(HANDLE handle = INVALID_HANDLE_VALUE) : m_handle(handle) {}
    Handle(Handle&& other) noexcept : m_handle(other.Release()) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Handle() {
        if (*this) CloseHandle(m_handle);
    }

    explicit operator bool() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return m_handle; }
    HANDLE Release() noexcept { return std::exchange(m_handle, INVALID_HANDLE_VALUE); }

private:
    HANDLE m_handle;
};

inline std::error_code LastError() {
    return {static_cast<int>(GetLastError()), std::system_category()};
}

}  // namespace zr
