// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <system_error>

#include "base/file.h"

namespace zr {

// A file that does not have its name yet: it has none at all where the system allows that, else a temporary
// one, which is removed with the object, or when a signal ends the process. Failures are returned.
class NewFile {
public:
    NewFile();
    ~NewFile();
    NewFile(NewFile&&) noexcept;
    NewFile& operator=(NewFile&&) noexcept;

    // Creates it in an existing folder.
    std::error_code Open(const std::filesystem::path& folder);
    std::error_code Write(std::uint64_t offset, Bytes bytes);
    // Reads what was written there: all of `bytes`. Not after Finish.
    std::error_code Read(std::uint64_t offset, std::span<std::byte> bytes);
    // Takes on the permissions of another file.
    std::error_code SetModeOf(const std::filesystem::path& other);
    // Flushes everything to the disk; nothing may be written afterwards.
    std::error_code Finish();

    // Gives the finished file a name on the file system of the folder. LinkTo fails (errc::file_exists) where
    // the name is in use, Replace replaces what has it in one step.
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
