// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <system_error>

#include "base/file.h"

namespace zr {

// A file on its way to its name: under no name at all where the system can do that, else under a temporary
// one, which goes with the object, or with the process when a signal ends that. What fails is returned.
class NewFile {
public:
    NewFile();
    ~NewFile();
    NewFile(NewFile&&) noexcept;
    NewFile& operator=(NewFile&&) noexcept;

    // In the folder, which is there.
    std::error_code Open(const std::filesystem::path& folder);
    std::error_code Write(std::uint64_t offset, Bytes bytes);
    // Takes on the permissions of another file.
    std::error_code SetModeOf(const std::filesystem::path& other);
    // All is on the disk when this returns; no more may be written.
    std::error_code Finish();

    // Gives the finished file a name on the file system of the folder. LinkTo fails (errc::file_exists) where
    // something has the name already, Replace takes its place in one step.
    std::error_code LinkTo(const std::filesystem::path& name);
    std::error_code Replace(const std::filesystem::path& name);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

// A name in the folder that nothing has.
std::filesystem::path TemporaryName(const std::filesystem::path& folder);

// The names that were given or taken in the folder are on the disk when this returns, where the system can do
// that.
void SyncFolder(const std::filesystem::path& folder) noexcept;

}  // namespace zr
