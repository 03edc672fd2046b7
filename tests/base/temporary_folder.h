// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zr::test {

// A folder of its own that goes with the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();

    // name: UTF-8.
    std::filesystem::path operator/(std::string_view name) const {
        return m_path / std::u8string(name.begin(), name.end());
    }
    std::vector<std::string> Files() const;  // relative names, sorted
    // Without those of files that have no name of their own yet, where the system shows them.
    std::vector<std::string> NamedFiles() const;
    void Write(std::string_view name, std::string_view content) const;
    std::string Read(std::string_view name) const;

private:
    std::filesystem::path m_path;
};

}  // namespace zr::test
