// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

namespace zr {

using Bytes = std::span<const std::byte>;

// A file's content, with one spare byte after it (for a terminator).
struct FileContent {
    std::unique_ptr<std::byte[]> data;
    std::size_t size = 0;

    Bytes View() const { return {data.get(), size}; }
    std::span<std::byte> MutableView() { return {data.get(), size}; }
};

inline constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

// Reads a whole file. Memory grows with what is actually read, even from an endless device. Throws Error,
// also for more than `limit` bytes.
FileContent ReadFile(const std::filesystem::path& path, std::uint64_t limit = kNoLimit);

inline Bytes BytesOf(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

// UTF-8 text of a path, with / between names on every system, and a path of UTF-8 text.
std::string PathToUtf8(const std::filesystem::path& path);
std::filesystem::path PathFromUtf8(std::string_view text);

// Throws Error: "PATH: WHAT: the system's message for the failure".
[[noreturn]] void FailWith(const std::filesystem::path& path, std::string_view what, std::error_code failure);

}  // namespace zr
