// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

// Replacements for those calls of the standard library that pass names to the C library, which rejects more
// than 260 characters. These pass them to the system, in the form that has no such limit.
namespace zr::fs {

using std::filesystem::file_status;
using std::filesystem::file_type;
using std::filesystem::path;

// The name in that form: absolute, with "." and ".." resolved, but not links.
path Reachable(const path& file);

file_status status(const path& file, std::error_code& failure);
file_status symlink_status(const path& file, std::error_code& failure);
path read_symlink(const path& file, std::error_code& failure);
std::uintmax_t file_size(const path& file, std::error_code& failure);
bool equivalent(const path& a, const path& b, std::error_code& failure);
path canonical(const path& file, std::error_code& failure);
path weakly_canonical(const path& file, std::error_code& failure);

bool create_directory(const path& folder, std::error_code& failure);
void create_hard_link(const path& to, const path& link, std::error_code& failure);
void rename(const path& from, const path& to, std::error_code& failure);
bool remove(const path& file, std::error_code& failure);

inline bool exists(file_status found) {
    return std::filesystem::exists(found);
}
inline bool exists(const path& file, std::error_code& failure) {
    return std::filesystem::exists(fs::status(file, failure));
}
inline bool is_directory(file_status found) {
    return std::filesystem::is_directory(found);
}
inline bool is_directory(const path& file, std::error_code& failure) {
    return std::filesystem::is_directory(fs::status(file, failure));
}
inline bool is_regular_file(file_status found) {
    return std::filesystem::is_regular_file(found);
}
inline bool is_regular_file(const path& file, std::error_code& failure) {
    return std::filesystem::is_regular_file(fs::status(file, failure));
}

}  // namespace zr::fs
