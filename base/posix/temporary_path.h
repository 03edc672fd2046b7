// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <utility>

namespace zr {

struct TemporarySlot;

// Makes EndBySignal handle the signals that would end the process, and makes writing beyond the file size
// limit fail as on a full disk. Only the first call has an effect.
void InstallHandlers();

// The name of a temporary file, which is removed with the object, and by EndBySignal.
class TemporaryPath {
public:
    TemporaryPath() = default;
    explicit TemporaryPath(const std::filesystem::path& path);
    TemporaryPath(TemporaryPath&& other) noexcept : m_slot(std::exchange(other.m_slot, nullptr)) {}
    TemporaryPath& operator=(TemporaryPath&& other) noexcept {
        std::swap(m_slot, other.m_slot);
        return *this;
    }
    ~TemporaryPath();

    const char* Get() const;
    // Leaves the file alone: it was renamed, or does not exist.
    void Forget() noexcept;

private:
    TemporarySlot* m_slot = nullptr;
};

}  // namespace zr
