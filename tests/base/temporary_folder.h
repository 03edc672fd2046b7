// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zr::test {

// A new folder, removed with the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();

    // name: UTF-8.
    std::filesystem::path operator/(std::string_view name) const {
        return m_path / std::u8string(name.begin(), name.end());
    }
    std::vector<std::string> Files() const;  // relative names, sorted
    // The same without the temporary names of unfinished files.
    std::vector<std::string> NamedFiles() const;
    void Write(std::string_view name, std::string_view content) const;
    std::string Read(std::string_view name) const;

private:
    std::filesystem::path m_path;
};

}  // namespace zr::test
