// SPDX-License-Identifier: MIT
#include "tests/base/temporary_folder.h"

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>

namespace zr::test {

TemporaryFolder::TemporaryFolder() {
    m_path = std::filesystem::temp_directory_path() / ("zr-test-" + std::to_string(std::random_device{}()));
    std::filesystem::create_directory(m_path);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::vector<std::string> TemporaryFolder::Files() const {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(m_path))
        if (entry.is_regular_file())
            files.push_back(entry.path().lexically_relative(m_path).generic_string());
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> TemporaryFolder::NamedFiles() const {
    std::vector<std::string> files = Files();
    std::erase_if(files, [](const std::string& name) { return name.starts_with(".zr-"); });
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
