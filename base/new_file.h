// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <system_error>

#include "base/file.h"

namespace zr {

// A file without its final name: unnamed where the system allows that, else under a temporary name, which is
// removed with the object or when a signal ends the process. Errors are returned.
class NewFile {
public:
    NewFile();
    ~NewFile();
    NewFile(NewFile&&) noexcept;
    NewFile& operator=(NewFile&&) noexcept;

    // Creates it in an existing folder.
    std::error_code Open(const std::filesystem::path& folder);
    std::error_code Write(std::uint64_t offset, Bytes bytes);
    // Fills all of `bytes` with what was written at the offset. Not after Finish.
    std::error_code Read(std::uint64_t offset, std::span<std::byte> bytes);
    // Takes on the permissions of another file.
    std::error_code SetModeOf(const std::filesystem::path& other);
    // Flushes everything to the disk; nothing may be written afterwards.
    std::error_code Finish();

    // Gives the finished file its name, on the same file system as the folder. LinkTo fails with
    // errc::file_exists when the name is in use; Replace replaces the file of that name atomically.
    std::error_code LinkTo(const std::filesystem::path& name);
    std::error_code Replace(const std::filesystem::path& name);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// An unused name in the folder.
std::filesystem::path TemporaryName(const std::filesystem::path& folder);

// Flushes names that were given or removed in the folder to the disk, where the system can do that.
void SyncFolder(const std::filesystem::path& folder) noexcept;

}  // namespace zr
