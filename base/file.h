// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

using Bytes = std::span<const std::byte>;

// A file's content, with one spare byte after it (for a terminator).
struct FileContent {
    std::unique_ptr<std::byte[]> data;
    std::size_t size = 0;

    Bytes View() const { return {data.get(), size}; }
    std::span<std::byte> MutableView() { return {data.get(), size}; }
};

// Reads a whole file; memory grows with what is really there. Throws Error.
FileContent ReadFile(const std::filesystem::path& path);

// Files that appear together or not at all: each is written beside its target under a temporary name, and
// Commit renames them in the order they were added. Without Commit the destructor removes what was written.
class FileTransaction {
public:
    FileTransaction() = default;
    FileTransaction(const FileTransaction&) = delete;
    FileTransaction& operator=(const FileTransaction&) = delete;
    ~FileTransaction();

    // Writes the pieces one after the other. Folders that are missing are made. Throws Error.
    void Add(const std::filesystem::path& target, std::span<const Bytes> pieces);
    void Add(const std::filesystem::path& target, Bytes piece) { Add(target, std::span(&piece, 1)); }
    // Throws Error when a target cannot be replaced.
    void Commit();

private:
    struct Pending {
        std::filesystem::path temporary;
        std::filesystem::path target;
    };

    std::vector<Pending> m_pending;
    std::vector<std::filesystem::path> m_folders;
};

inline Bytes BytesOf(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

// UTF-8 text of a path, and a path of UTF-8 text.
std::string PathToUtf8(const std::filesystem::path& path);
std::filesystem::path PathFromUtf8(std::string_view text);

}  // namespace zr
