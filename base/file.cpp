// SPDX-License-Identifier: MIT
#include "base/file.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "base/error.h"
#include "base/text.h"

namespace zr {
namespace {

namespace fs = std::filesystem;

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

[[noreturn]] void Fail(const fs::path& path, const char* what, int error) {
    throw Error(PathToUtf8(path), "", Join(what, ": ", std::generic_category().message(error)));
}

// A name beside the target that no other writer uses; "x" makes opening fail where a file stands already.
fs::path TemporaryFor(const fs::path& target) {
    static std::atomic<unsigned> counter{0};
    fs::path temporary = target;
    const std::size_t mark = std::hash<std::string>{}(target.string()) & 0xFFFFFF;
    temporary += Join(".", mark, "-", counter++, ".tmp");
    return temporary;
}

}  // namespace

std::string PathToUtf8(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

fs::path PathFromUtf8(std::string_view text) {
    return {std::u8string(text.begin(), text.end())};
}

FileContent ReadFile(const fs::path& path) {
    std::error_code status;
    if (fs::is_directory(path, status)) Fail(path, "cannot be read", EISDIR);
    const File file(std::fopen(path.c_str(), "rb"));
    if (!file) Fail(path, "cannot be opened", errno);
    const std::uintmax_t stated = fs::file_size(path, status);
    std::size_t room = status ? std::size_t{1} << 16 : static_cast<std::size_t>(stated);
    FileContent content{std::make_unique_for_overwrite<std::byte[]>(room + 1), 0};
    for (;;) {
        // One byte more than fits tells the end of the file from a file that grew.
        const std::size_t got =
            std::fread(content.data.get() + content.size, 1, room + 1 - content.size, file.get());
        content.size += got;
        if (content.size <= room) break;
        auto wider = std::make_unique_for_overwrite<std::byte[]>(room * 2 + 2);
        std::memcpy(wider.get(), content.data.get(), content.size);
        content.data = std::move(wider);
        room = room * 2 + 1;
    }
    if (std::ferror(file.get()) != 0) Fail(path, "cannot be read", errno);
    return content;
}

void FileTransaction::Add(const fs::path& target, std::span<const Bytes> pieces) {
    std::error_code failure;
    for (fs::path folder = target.parent_path(); !folder.empty() && !fs::exists(folder, failure);
         folder = folder.parent_path())
        m_folders.push_back(folder);
    if (!target.parent_path().empty()) fs::create_directories(target.parent_path(), failure);
    if (failure) Fail(target, "cannot be written", failure.value());

    fs::path temporary = TemporaryFor(target);
    File file(std::fopen(temporary.c_str(), "wbx"));
    for (int attempt = 0; !file && errno == EEXIST && attempt < 16; ++attempt) {
        temporary = TemporaryFor(target);
        file.reset(std::fopen(temporary.c_str(), "wbx"));
    }
    if (!file) Fail(target, "cannot be written", errno);
    m_pending.push_back({temporary, target});
    for (Bytes piece : pieces)
        if (!piece.empty() && std::fwrite(piece.data(), 1, piece.size(), file.get()) != piece.size())
            Fail(target, "cannot be written", errno);
    if (std::fclose(file.release()) != 0) Fail(target, "cannot be written", errno);
}

void FileTransaction::Commit() {
    while (!m_pending.empty()) {
        std::error_code failure;
        fs::rename(m_pending.front().temporary, m_pending.front().target, failure);
        if (failure) Fail(m_pending.front().target, "cannot be replaced", failure.value());
        m_pending.erase(m_pending.begin());
    }
    m_folders.clear();
}

FileTransaction::~FileTransaction() {
    std::error_code ignored;
    for (const Pending& pending : m_pending) fs::remove(pending.temporary, ignored);
    // Only folders that are still empty go; deepest first, as Add met them.
    for (const fs::path& folder : m_folders) fs::remove(folder, ignored);
}

}  // namespace zr
