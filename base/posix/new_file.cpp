// SPDX-License-Identifier: MIT
#include "base/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "base/filesystem.h"
#include "base/posix/temporary_path.h"
#include "base/text.h"

namespace zr {
namespace {

constexpr int kTries = 16;
constexpr mode_t kMode = 0666;

// A file without a name stays open until it gets one; beyond this many in the process, files get temporary
// names.
constexpr int kMaxUnnamed = 128;
std::atomic<int> g_unnamed{0};

std::error_code LastError() {
    return {errno, std::generic_category()};
}

std::string DescriptorPath(int descriptor) {
    return Join("/proc/self/fd/", descriptor);
}

}  // namespace

struct NewFile::State {
    fs::path folder;
    int descriptor = -1;
    bool isUnnamed = false;
    TemporaryPath temporary;  // of a file that has a name

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { Close(); }

    void Close() {
        if (descriptor >= 0) close(descriptor);
        descriptor = -1;
        if (isUnnamed) --g_unnamed;
        isUnnamed = false;
    }

    bool OpenUnnamed() {
        if (g_unnamed >= kMaxUnnamed) return false;
        descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, kMode);
        if (descriptor < 0) return false;
        isUnnamed = true;
        ++g_unnamed;
        // It gets its name through this path.
        if (access(DescriptorPath(descriptor).c_str(), F_OK) == 0) return true;
        Close();
        return false;
    }

    std::error_code OpenTemporary() {
        for (int i = 0; i < kTries; ++i) {
            // The signal handler must know it before it exists.
            TemporaryPath path(TemporaryName(folder));
            descriptor = open(path.Get(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kMode);
            if (descriptor >= 0) {
                temporary = std::move(path);
                return {};
            }
            const std::error_code failure = LastError();
            path.Forget();
            if (failure != std::errc::file_exists) return failure;
        }
        return std::make_error_code(std::errc::file_exists);
    }

    std::error_code NameUnnamed(const fs::path& name) const {
        const std::string from = DescriptorPath(descriptor);
        if (linkat(AT_FDCWD, from.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) return {};
        return LastError();
    }
};

NewFile::NewFile() : m_state(std::make_unique<State>()) {}
NewFile::~NewFile() = default;
NewFile::NewFile(NewFile&&) noexcept = default;
NewFile& NewFile::operator=(NewFile&&) noexcept = default;

std::error_code NewFile::Open(const fs::path& folder) {
    InstallHandlers();
    m_state->folder = folder;
    return m_state->OpenUnnamed() ? std::error_code() : m_state->OpenTemporary();
}

std::error_code NewFile::Write(std::uint64_t offset, Bytes bytes) {
    while (!bytes.empty()) {
        const ssize_t written =
            pwrite(m_state->descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return LastError();
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
    return {};
}

std::error_code NewFile::Read(std::uint64_t offset, std::span<std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t got =
            pread(m_state->descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return LastError();
        if (got == 0) return std::make_error_code(std::errc::io_error);
        bytes = bytes.subspan(static_cast<std::size_t>(got));
        offset += static_cast<std::uint64_t>(got);
    }
    return {};
}

std::error_code NewFile::SetModeOf(const fs::path& other) {
    struct stat status {};
    if (stat(other.c_str(), &status) != 0) return LastError();
    if (fchmod(m_state->descriptor, status.st_mode & 07777) != 0) return LastError();
    return {};
}

std::error_code NewFile::Finish() {
    if (fsync(m_state->descriptor) != 0) return LastError();
    if (m_state->isUnnamed) return {};
    const int descriptor = std::exchange(m_state->descriptor, -1);
    return close(descriptor) == 0 ? std::error_code() : LastError();
}

std::error_code NewFile::LinkTo(const fs::path& name) {
    if (m_state->isUnnamed) return m_state->NameUnnamed(name);
    if (link(m_state->temporary.Get(), name.c_str()) == 0) {
        m_state->temporary = {};
        return {};
    }
    const std::error_code failure = LastError();
    if (failure == std::errc::file_exists) return failure;
    // The file system may allow only one name per file.
    std::error_code missing;
    if (fs::exists(fs::symlink_status(name, missing))) return std::make_error_code(std::errc::file_exists);
    return Replace(name);
}

std::error_code NewFile::Replace(const fs::path& name) {
    if (m_state->isUnnamed) {
        std::error_code failure = std::make_error_code(std::errc::file_exists);
        for (int i = 0; i < kTries && failure == std::errc::file_exists; ++i) {
            TemporaryPath path(TemporaryName(m_state->folder));
            failure = m_state->NameUnnamed(path.Get());
            if (failure)
                path.Forget();
            else
                m_state->temporary = std::move(path);
        }
        if (failure) return failure;
    }
    if (rename(m_state->temporary.Get(), name.c_str()) != 0) return LastError();
    m_state->temporary.Forget();
    return {};
}

void SyncFolder(const fs::path& folder) noexcept {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
}

}  // namespace zr
