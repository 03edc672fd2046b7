// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <set>
#include <string_view>
#include <vector>

#include "base/file.h"
#include "base/new_file.h"

namespace zr {

// One file of a transaction, written through a buffer. Throws Error when writing fails.
class OutputFile {
public:
    void Write(Bytes bytes);
    void Write(std::string_view text) { Write(BytesOf(text)); }
    // Overwrites bytes that were written earlier.
    void Overwrite(std::uint64_t offset, Bytes bytes);
    std::uint64_t Size() const { return m_flushed + m_buffer.size(); }

private:
    friend class FileTransaction;

    void Flush();
    void Finish();
    void CopyTo(std::FILE* stream);
    void Check(std::error_code failure) const;

    std::filesystem::path m_target;  // as requested, for messages
    std::filesystem::path m_name;    // with links followed
    std::filesystem::path m_backup;  // a second name of the file that was replaced
    NewFile m_file;
    std::vector<std::byte> m_buffer;
    std::uint64_t m_flushed = 0;
    bool m_isNew = false;       // the name must be unused
    bool m_isFinished = false;  // on the disk
    bool m_isNamed = false;
};

// Files that appear together or not at all. They are written out of sight; Commit flushes them to the disk
// and then gives them their names: first the new ones, then, in the order they were begun, those that replace
// existing files. When only one file replaces another, that replacement is the commit, in one step. Without
// Commit, or when a signal ends the process before it, nothing changes.
//
// The permissions of a replaced file are kept. Where the target is a link, the file it points to is replaced.
class FileTransaction {
public:
    FileTransaction() = default;
    FileTransaction(const FileTransaction&) = delete;
    FileTransaction& operator=(const FileTransaction&) = delete;

    // Begins a file. Commit creates missing folders. The reference is valid as long as the transaction.
    // Throws Error, also when the transaction already has a file of that name, or the target is
    // write-protected.
    OutputFile& Create(const std::filesystem::path& target) { return Begin(target, false); }
    // The same for a name that must be unused, now and when Commit reaches it.
    OutputFile& CreateNew(const std::filesystem::path& target) { return Begin(target, true); }
    // The same with the whole content.
    void Add(const std::filesystem::path& target, Bytes content);
    void AddNew(const std::filesystem::path& target, Bytes content);

    // Whether it has a file of that name.
    bool Has(const std::filesystem::path& target) const;

    // Deletes a file once all others are in place, unless it is write-protected. Failing to delete it is not
    // an error.
    void RemoveAfterwards(const std::filesystem::path& file) { m_superseded.push_back(file); }

    // Throws Error and restores everything when a file cannot be put in place.
    void Commit();
    // The same, but the content of the file begun as `target` goes to the stream, and no file or folder is
    // created for it. Errors of the stream are left for the caller to check. Throws Error, with nothing
    // changed, when other files belong in its folder.
    void CommitTo(std::FILE* stream, const std::filesystem::path& target);

private:
    OutputFile& Begin(const std::filesystem::path& target, bool isNew);
    void MakeFolders();
    void Name(OutputFile& file, bool isLast);
    void Undo() noexcept;
    void TidyUp() noexcept;

    std::deque<OutputFile> m_files;
    std::set<std::filesystem::path> m_names;       // folded
    std::vector<std::filesystem::path> m_missing;  // folders, outer ones first
    std::vector<std::filesystem::path> m_made;
    std::vector<std::filesystem::path> m_superseded;
};

}  // namespace zr
