// SPDX-License-Identifier: MIT
#include "base/new_file.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "base/filesystem.h"
#include "base/windows/handle.h"

namespace zr {
namespace {

constexpr int kTries = 16;
constexpr std::size_t kLargestPiece = std::size_t{1} << 30;

OVERLAPPED PlaceAt(std::uint64_t offset) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

// Makes the system delete the file when its handle is closed, or the process ends, unless `goes` is false.
std::error_code SetGoesWithHandle(HANDLE file, bool goes) {
    FILE_DISPOSITION_INFO info{goes};
    if (SetFileInformationByHandle(file, FileDispositionInfo, &info, sizeof info)) return {};
    return LastError();
}

}  // namespace

struct NewFile::State {
    Handle handle;
    fs::path name;

    std::error_code MoveTo(const fs::path& target, DWORD flags) {
        const fs::path to = fs::Reachable(target);  // nothing below may allocate
        if (const std::error_code failure = SetGoesWithHandle(handle.Get(), false)) return failure;
        handle = Handle();
        std::error_code failure;
        if (MoveFileExW(name.c_str(), to.c_str(), flags)) return failure;
        failure = LastError();
        DeleteFileW(name.c_str());
        return failure;
    }
};

NewFile::NewFile() : m_state(std::make_unique<State>()) {}
NewFile::~NewFile() = default;
NewFile::NewFile(NewFile&&) noexcept = default;
NewFile& NewFile::operator=(NewFile&&) noexcept = default;

std::error_code NewFile::Open(const fs::path& folder) {
    std::error_code failure;
    for (int i = 0; i < kTries; ++i) {
        m_state->name = fs::Reachable(TemporaryName(folder));
        m_state->handle =
            Handle(CreateFileW(m_state->name.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE | WRITE_DAC,
                               FILE_SHARE_DELETE, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (m_state->handle) return SetGoesWithHandle(m_state->handle.Get(), true);
        failure = LastError();
        if (failure != std::errc::file_exists) break;
    }
    return failure;
}

std::error_code NewFile::Write(std::uint64_t offset, Bytes bytes) {
    while (!bytes.empty()) {
        OVERLAPPED place = PlaceAt(offset);
        const auto size = static_cast<DWORD>(std::min(bytes.size(), kLargestPiece));
        DWORD written = 0;
        if (!WriteFile(m_state->handle.Get(), bytes.data(), size, &written, &place)) return LastError();
        bytes = bytes.subspan(written);
        offset += written;
    }
    return {};
}

std::error_code NewFile::Read(std::uint64_t offset, std::span<std::byte> bytes) {
    while (!bytes.empty()) {
        OVERLAPPED place = PlaceAt(offset);
        const auto size = static_cast<DWORD>(std::min(bytes.size(), kLargestPiece));
        DWORD got = 0;
        if (!ReadFile(m_state->handle.Get(), bytes.data(), size, &got, &place)) return LastError();
        if (got == 0) return std::make_error_code(std::errc::io_error);
        bytes = bytes.subspan(got);
        offset += got;
    }
    return {};
}

std::error_code NewFile::SetModeOf(const fs::path& other) {
    const fs::path name = fs::Reachable(other);
    DWORD size = 0;
    GetFileSecurityW(name.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<std::byte> descriptor(size);
    if (!GetFileSecurityW(name.c_str(), DACL_SECURITY_INFORMATION, descriptor.data(), size, &size) ||
        !SetKernelObjectSecurity(m_state->handle.Get(), DACL_SECURITY_INFORMATION, descriptor.data()))
        return LastError();
    return {};
}

std::error_code NewFile::Finish() {
    return FlushFileBuffers(m_state->handle.Get()) ? std::error_code() : LastError();
}

std::error_code NewFile::LinkTo(const fs::path& name) {
    return m_state->MoveTo(name, 0);
}

std::error_code NewFile::Replace(const fs::path& name) {
    return m_state->MoveTo(name, MOVEFILE_REPLACE_EXISTING);
}

void SyncFolder(const fs::path&) noexcept {}

}  // namespace zr
