// SPDX-License-Identifier: MIT
#include "tests/base/temporary_folder.h"

#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace zr::test {

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zr-gltf-XXXXXX").string();
    m_path = mkdtemp(pattern.data());
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<std::string> TemporaryFolder::Files() const {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_path))
        if (entry.is_regular_file()) files.push_back(entry.path().lexically_relative(m_path).string());
    std::sort(files.begin(), files.end());
    return files;
}

void TemporaryFolder::Write(std::string_view name, std::string_view content) const {
    std::filesystem::create_directories((*this / name).parent_path());
    std::ofstream(*this / name, std::ios::binary) << content;
}

std::string TemporaryFolder::Read(std::string_view name) const {
    std::ostringstream content;
    content << std::ifstream(*this / name, std::ios::binary).rdbuf();
    return content.str();
}

}  // namespace zr::test
