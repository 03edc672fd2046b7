// SPDX-License-Identifier: MIT
#include "base/file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>

#include "base/error.h"
#include "base/filesystem.h"
#include "base/text.h"

namespace zr {
namespace {

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

[[noreturn]] void Fail(const fs::path& path, const char* what, int error) {
    FailWith(path, what, {error, std::generic_category()});
}

[[noreturn]] void FailTooLarge(const fs::path& path, std::uint64_t limit) {
    throw Error(PathToUtf8(path), "", Join("is larger than the ", limit, " bytes that may be read"));
}

}  // namespace

std::string PathToUtf8(const fs::path& path) {
    const std::u8string text = path.u8string();
    std::string utf8(text.begin(), text.end());
    if constexpr (fs::path::preferred_separator != '/') std::replace(utf8.begin(), utf8.end(), '\\', '/');
    return utf8;
}

fs::path PathFromUtf8(std::string_view text) {
    return {std::u8string(text.begin(), text.end())};
}

void FailWith(const fs::path& path, std::string_view what, std::error_code failure) {
    throw Error(PathToUtf8(path), "", Join(what, ": ", failure.default_error_condition().message()));
}

FileContent ReadFile(const fs::path& path, std::uint64_t limit) {
    std::error_code status;
    if (fs::is_directory(path, status)) Fail(path, "cannot be read", EISDIR);
    const File file(fs::OpenToRead(path));
    if (!file) Fail(path, "cannot be opened", errno);
    limit = std::min<std::uint64_t>(limit, std::numeric_limits<std::ptrdiff_t>::max());
    const std::uintmax_t stated = fs::file_size(path, status);
    if (!status && stated > limit) FailTooLarge(path, limit);
    std::size_t room = status ? std::size_t{1} << 16 : static_cast<std::size_t>(stated);
    FileContent content{std::make_unique_for_overwrite<std::byte[]>(room + 1), 0};
    constexpr std::size_t kPiece = std::size_t{4} << 20;  // a process may end between two of them
    for (;;) {
        // Asking for one byte more than fits tells the end of the file from a file that grew.
        const std::size_t wanted = std::min(kPiece, room + 1 - content.size);
        const std::size_t got = std::fread(content.data.get() + content.size, 1, wanted, file.get());
        content.size += got;
        if (got < wanted) break;
        if (content.size <= room) continue;
        if (content.size > limit) FailTooLarge(path, limit);
        room = room * 2 + 1;
        auto wider = std::make_unique_for_overwrite<std::byte[]>(room + 1);
        std::memcpy(wider.get(), content.data.get(), content.size);
        content.data = std::move(wider);
    }
    if (std::ferror(file.get()) != 0) Fail(path, "cannot be read", errno);
    if (content.size > limit) FailTooLarge(path, limit);
    return content;
}

}  // namespace zr
