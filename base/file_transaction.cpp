// SPDX-License-Identifier: MIT
#include "base/file_transaction.h"

#include <algorithm>

#include "base/error.h"
#include "base/fatal_signals.h"
#include "base/filesystem.h"

namespace zr {
namespace {

constexpr std::size_t kBuffer = std::size_t{256} << 10;
constexpr const char* kCannotWrite = "cannot be written";
constexpr const char* kCannotReplace = "cannot be replaced";

fs::path FolderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

// Follows links, even to a file that does not exist yet.
fs::path Followed(fs::path file) {
    constexpr int kMaxLinks = 40;
    const fs::path first = file;
    std::error_code none;
    for (int links = 0; fs::is_symlink(fs::symlink_status(file, none)); ++links) {
        if (links == kMaxLinks)
            FailWith(first, kCannotWrite, std::make_error_code(std::errc::too_many_symbolic_link_levels));
        std::error_code failure;
        file = FolderOf(file) / fs::read_symlink(file, failure);
        if (failure) FailWith(first, kCannotWrite, failure);
    }
    return file;
}

// A canonical form of a name, so that two paths to one file are recognised.
fs::path Identity(const fs::path& file) {
    std::error_code failure;
    const fs::path canonical = fs::weakly_canonical(fs::absolute(FolderOf(file), failure), failure);
    return failure ? file : canonical / file.filename();
}

}  // namespace

void OutputFile::Check(std::error_code failure) const {
    if (failure) FailWith(m_target, kCannotWrite, failure);
}

void OutputFile::Write(Bytes bytes) {
    if (m_buffer.size() + bytes.size() > kBuffer) Flush();
    if (bytes.size() >= kBuffer) {
        Check(m_file.Write(m_flushed, bytes));
        m_flushed += bytes.size();
        return;
    }
    if (m_buffer.capacity() == 0) m_buffer.reserve(kBuffer);
    m_buffer.insert(m_buffer.end(), bytes.begin(), bytes.end());
}

void OutputFile::Overwrite(std::uint64_t offset, Bytes bytes) {
    Flush();
    Check(m_file.Write(offset, bytes));
}

void OutputFile::Flush() {
    Check(m_file.Write(m_flushed, m_buffer));
    m_flushed += m_buffer.size();
    m_buffer.clear();
}

void OutputFile::Finish() {
    if (m_isFinished) return;
    Flush();
    m_buffer = {};
    std::error_code none;
    if (!m_isNew && fs::exists(m_name, none)) Check(m_file.SetModeOf(m_name));
    Check(m_file.Finish());
    m_isFinished = true;
}

void OutputFile::CopyTo(std::FILE* stream) {
    m_buffer.resize(kBuffer);
    for (std::uint64_t at = 0; at < m_flushed;) {
        const auto piece = std::span(m_buffer).first(std::min<std::uint64_t>(kBuffer, m_flushed - at));
        Check(m_file.Read(at, piece));
        std::fwrite(piece.data(), 1, piece.size(), stream);
        at += piece.size();
    }
}

bool FileTransaction::Has(const fs::path& target) const {
    return m_names.contains(fs::Folded(Identity(Followed(target))));
}

OutputFile& FileTransaction::Begin(const fs::path& target, bool isNew) {
    const fs::path name = Identity(isNew ? target : Followed(target));
    if (m_names.contains(fs::Folded(name)))
        throw Error(PathToUtf8(target), "", "cannot be two files at once");
    std::error_code none, unknown;
    const fs::file_status status = fs::status(name, unknown);
    if (status.type() == fs::file_type::none) FailWith(target, kCannotWrite, unknown);
    if (fs::is_directory(status))
        FailWith(target, kCannotReplace, std::make_error_code(std::errc::is_a_directory));
    if (!isNew && fs::exists(status) && !fs::is_regular_file(status))
        throw Error(PathToUtf8(target), "", "cannot be replaced: it is not a regular file");

    if (!isNew && fs::IsWriteProtected(name))
        throw Error(PathToUtf8(target), "", "cannot be replaced: it is write-protected");

    fs::path folder = FolderOf(name);
    std::vector<fs::path> missing;
    for (; folder.has_relative_path() && !fs::exists(folder, none); folder = FolderOf(folder))
        missing.push_back(folder);
    m_missing.insert(m_missing.end(), missing.rbegin(), missing.rend());

    OutputFile& file = m_files.emplace_back();
    file.m_target = target;
    file.m_name = name;
    file.m_isNew = isNew;
    if (const std::error_code failure = file.m_file.Open(folder)) {
        m_files.pop_back();
        FailWith(target, kCannotWrite, failure);
    }
    m_names.insert(fs::Folded(name));
    return file;
}

void FileTransaction::Add(const fs::path& target, Bytes content) {
    OutputFile& file = Create(target);
    file.Write(content);
    file.Finish();
}

void FileTransaction::AddNew(const fs::path& target, Bytes content) {
    OutputFile& file = CreateNew(target);
    file.Write(content);
    file.Finish();
}

void FileTransaction::MakeFolders() {
    for (const fs::path& folder : m_missing) {
        std::error_code failure;
        m_made.reserve(m_made.size() + 1);
        if (fs::create_directory(folder, failure)) m_made.push_back(folder);
        if (failure) FailWith(folder, kCannotWrite, failure);
    }
}

// Gives the file its name. Unless it is the last one, the file it replaces can still be put back.
void FileTransaction::Name(OutputFile& file, bool isLast) {
    std::error_code failure;
    if (file.m_isNew) {
        failure = file.m_file.LinkTo(file.m_name);
    } else {
        if (!isLast && fs::exists(file.m_name, failure)) {
            fs::path backup = TemporaryName(FolderOf(file.m_name));
            fs::create_hard_link(file.m_name, backup, failure);
            if (!failure) file.m_backup = std::move(backup);
        }
        failure = file.m_file.Replace(file.m_name);
    }
    if (failure) FailWith(file.m_target, file.m_isNew ? kCannotWrite : kCannotReplace, failure);
    file.m_isNamed = true;
}

void FileTransaction::Commit() {
    for (OutputFile& file : m_files) file.Finish();
    // New names first.
    std::vector<OutputFile*> order;
    order.reserve(m_files.size());
    for (OutputFile& file : m_files) order.push_back(&file);
    std::stable_partition(order.begin(), order.end(), [](const OutputFile* file) { return file->m_isNew; });

    // Once all files have their names nothing may fail.
    const fs::path folder = m_files.empty() ? fs::path() : FolderOf(m_files.back().m_name);
    const HoldFatalSignals hold;
    try {
        MakeFolders();
        for (OutputFile* file : order) {
            const bool isLast = file == order.back();
            // What the last file may refer to must reach the disk before it.
            if (isLast && order.size() > 1) SyncFolder(FolderOf(file->m_name));
            Name(*file, isLast);
        }
    } catch (...) {
        Undo();
        throw;
    }
    EndWork();
    TidyUp();
    if (!folder.empty()) SyncFolder(folder);
}

void FileTransaction::CommitTo(std::FILE* stream, const fs::path& target) {
    const auto found = std::find_if(m_files.begin(), m_files.end(),
                                    [&](const OutputFile& file) { return file.m_target == target; });
    OutputFile sent = std::move(*found);
    m_files.erase(found);
    const fs::path folder = FolderOf(sent.m_name);
    const bool isAlone = std::none_of(m_files.begin(), m_files.end(), [&](const OutputFile& file) {
        return FolderOf(file.m_name) == folder;
    });
    if (!isAlone)
        throw Error("standard output", "", "the result needs files beside it and must be written to a file");
    std::erase(m_missing, folder);
    sent.Flush();
    Commit();
    sent.CopyTo(stream);
}

void FileTransaction::Undo() noexcept {
    std::error_code ignored;
    for (OutputFile& file : m_files) {
        if (!file.m_backup.empty()) {
            fs::rename(file.m_backup, file.m_name, ignored);
            // Renaming one name of a file to another name of the same file does nothing.
            fs::remove(file.m_backup, ignored);
        } else if (file.m_isNamed) {
            fs::remove(file.m_name, ignored);
        }
    }
    for (std::size_t i = m_made.size(); i-- > 0;) fs::remove(m_made[i], ignored);
    m_made.clear();
    m_files.clear();
}

void FileTransaction::TidyUp() noexcept {
    std::error_code ignored;
    for (const OutputFile& file : m_files)
        if (!file.m_backup.empty()) fs::remove(file.m_backup, ignored);
    for (const fs::path& file : m_superseded)
        if (!fs::IsWriteProtected(file)) fs::remove(file, ignored);
    m_files.clear();
    m_missing.clear();
    m_made.clear();
    m_superseded.clear();
}

}  // namespace zr
