// SPDX-License-Identifier: MIT
#include "base/filesystem.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <string>
#include <utility>

#include "base/windows/handle.h"

namespace zr::fs {
namespace {

constexpr std::wstring_view kAnyLength = LR"(\\?\)";
constexpr std::wstring_view kAnyLengthShare = LR"(\\?\UNC\)";
constexpr std::wstring_view kShare = LR"(\\)";
constexpr std::wstring_view kDevice = LR"(\\.\)";

// The text that a system call writes into a buffer; when the buffer is too small the call returns the size it
// needs.
template <typename Call>
std::wstring TextOf(Call call) {
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = call(text.data(), static_cast<DWORD>(text.size()));
        const bool fits = size < text.size();
        text.resize(fits ? size : size + 1);  // some calls count the terminator, some do not
        if (fits) return text;
    }
}

path Plain(const std::wstring& name) {
    if (name.starts_with(kAnyLengthShare)) return std::wstring(kShare) + name.substr(kAnyLengthShare.size());
    return name.starts_with(kAnyLength) ? name.substr(kAnyLength.size()) : name;
}

// Opens a file or folder to query it, whoever else has it open.
Handle OpenToAsk(const path& file) {
    return Handle(CreateFileW(Reachable(file).c_str(), FILE_READ_ATTRIBUTES,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

bool IsMissing(std::error_code failure) {
    return failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory ||
           failure.value() == ERROR_INVALID_NAME || failure.value() == ERROR_BAD_NETPATH;
}

bool IsLink(const path& file) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(Reachable(file).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return false;
    FindClose(search);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           found.dwReserved0 == IO_REPARSE_TAG_SYMLINK;
}

path FinalName(HANDLE file) {
    return Plain(TextOf([file](wchar_t* text, DWORD size) {
        return GetFinalPathNameByHandleW(file, text, size, FILE_NAME_NORMALIZED);
    }));
}

// The names in the pattern's folder that match its last component, unsorted.
std::vector<path> NamesLike(const path& pattern, std::error_code& failure) {
    failure.clear();
    std::vector<path> names;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(Reachable(pattern).c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        failure = LastError();
        return names;
    }
    do {
        path name(found.cFileName);
        if (name != "." && name != "..") names.push_back(std::move(name));
    } while (FindNextFileW(search, &found));
    if (GetLastError() != ERROR_NO_MORE_FILES) failure = LastError();
    FindClose(search);
    return names;
}

}  // namespace

path Reachable(const path& file) {
    const std::wstring& name = file.native();
    if (name.empty() || name.starts_with(kAnyLength)) return file;
    std::wstring full = TextOf(
        [&](wchar_t* text, DWORD size) { return GetFullPathNameW(name.c_str(), size, text, nullptr); });
    if (full.empty() || full.starts_with(kDevice)) return file;
    if (full.starts_with(kShare)) return std::wstring(kAnyLengthShare) + full.substr(kShare.size());
    return std::wstring(kAnyLength) + full;
}

file_status status(const path& file, std::error_code& failure) {
    failure.clear();
    const Handle handle = OpenToAsk(file);
    if (!handle) {
        failure = LastError();
        return file_status(IsMissing(failure) ? file_type::not_found : file_type::none);
    }
    const DWORD kind = GetFileType(handle.Get());
    if (kind == FILE_TYPE_CHAR) return file_status(file_type::character);
    if (kind == FILE_TYPE_PIPE) return file_status(file_type::fifo);
    BY_HANDLE_FILE_INFORMATION found;
    if (!GetFileInformationByHandle(handle.Get(), &found)) return file_status(file_type::unknown);
    const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return file_status(isFolder ? file_type::directory : file_type::regular);
}

file_status symlink_status(const path& file, std::error_code& failure) {
    failure.clear();
    return IsLink(file) ? file_status(file_type::symlink) : fs::status(file, failure);
}

path read_symlink(const path& file, std::error_code& failure) {
    return fs::canonical(file, failure);
}

std::uintmax_t file_size(const path& file, std::error_code& failure) {
    failure.clear();
    const Handle handle = OpenToAsk(file);
    LARGE_INTEGER size;
    if (handle && GetFileSizeEx(handle.Get(), &size)) return static_cast<std::uintmax_t>(size.QuadPart);
    failure = LastError();
    return static_cast<std::uintmax_t>(-1);
}

bool equivalent(const path& a, const path& b, std::error_code& failure) {
    failure.clear();
    BY_HANDLE_FILE_INFORMATION ofA, ofB;
    const Handle first = OpenToAsk(a), second = OpenToAsk(b);
    if (!first || !second || !GetFileInformationByHandle(first.Get(), &ofA) ||
        !GetFileInformationByHandle(second.Get(), &ofB)) {
        failure = LastError();
        return false;
    }
    return ofA.dwVolumeSerialNumber == ofB.dwVolumeSerialNumber && ofA.nFileIndexHigh == ofB.nFileIndexHigh &&
           ofA.nFileIndexLow == ofB.nFileIndexLow;
}

path canonical(const path& file, std::error_code& failure) {
    failure.clear();
    const Handle handle = OpenToAsk(file);
    if (!handle) {
        failure = LastError();
        return {};
    }
    if (path name = FinalName(handle.Get()); !name.empty()) return name;
    // Some systems return no final name for a path beyond 260 characters, but do so for its folder.
    const path plain = Plain(Reachable(file).native());
    if (!plain.has_relative_path()) return plain;
    return fs::canonical(plain.parent_path(), failure) / plain.filename();
}

path weakly_canonical(const path& file, std::error_code& failure) {
    failure.clear();
    path there = Plain(Reachable(file).native()), rest;
    for (;;) {
        std::error_code missing;
        if (const path found = fs::canonical(there, missing); !missing)
            return rest.empty() ? found : found / rest;
        path above = there.parent_path();
        if (above == there) return there / rest;
        rest = rest.empty() ? there.filename() : there.filename() / rest;
        there = std::move(above);
    }
}

bool create_directory(const path& folder, std::error_code& failure) {
    failure.clear();
    if (CreateDirectoryW(Reachable(folder).c_str(), nullptr)) return true;
    failure = LastError();
    std::error_code none;
    if (fs::is_directory(folder, none)) failure.clear();
    return false;
}

void create_hard_link(const path& to, const path& link, std::error_code& failure) {
    failure.clear();
    if (!CreateHardLinkW(Reachable(link).c_str(), Reachable(to).c_str(), nullptr)) failure = LastError();
}

// Clean-up after a failure must go on when memory has run out.
void rename(const path& from, const path& to, std::error_code& failure) try {
    failure.clear();
    if (!MoveFileExW(Reachable(from).c_str(), Reachable(to).c_str(), MOVEFILE_REPLACE_EXISTING))
        failure = LastError();
} catch (const std::bad_alloc&) {
    failure = std::make_error_code(std::errc::not_enough_memory);
}

bool remove(const path& file, std::error_code& failure) try {
    failure.clear();
    const path name = Reachable(file);
    if (DeleteFileW(name.c_str()) || RemoveDirectoryW(name.c_str())) return true;
    failure = LastError();
    if (IsMissing(failure)) failure.clear();
    return false;
} catch (const std::bad_alloc&) {
    failure = std::make_error_code(std::errc::not_enough_memory);
    return false;
}

path Folded(const path& file) {
    std::wstring name = file.native();
    CharUpperBuffW(name.data(), static_cast<DWORD>(name.size()));
    return name;
}

std::vector<path> NamesIn(const path& folder, std::error_code& failure) {
    return NamesLike(folder / "*", failure);
}

std::vector<path> Expanded(const path& file) {
    const std::wstring name = file.filename().native();
    if (name.find_first_of(L"*?") == name.npos) return {file};
    std::error_code none;
    std::vector<path> files = NamesLike(file, none);
    if (files.empty()) return {file};
    for (path& found : files) found = file.parent_path() / found;
    std::sort(files.begin(), files.end());
    return files;
}

bool IsWriteProtected(const path& file) {
    const path name = Reachable(file);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) return true;
    const Handle handle(CreateFileW(name.c_str(), FILE_WRITE_DATA,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return !handle && GetLastError() == ERROR_ACCESS_DENIED;
}

std::FILE* OpenToRead(const path& file) {
    Handle handle(CreateFileW(Reachable(file).c_str(), GENERIC_READ,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle) {
        errno = LastError().default_error_condition().value();
        return nullptr;
    }
    const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle.Get()), _O_RDONLY | _O_BINARY);
    if (descriptor < 0) return nullptr;
    handle.Release();
    std::FILE* const opened = _fdopen(descriptor, "rb");
    if (opened == nullptr) _close(descriptor);
    return opened;
}

}  // namespace zr::fs
