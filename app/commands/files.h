// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_transaction.h"
#include "gltf/document.h"

namespace zr {

class LoadedScene;
class Session;
struct Report;

inline constexpr std::string_view kStandardStream = "-";  // in place of a file name

// The ending of a file of that format (".gltf"); ".glb" when the format is empty.
std::string EndingOf(const std::string& format);

// Reads standard input to its end. Throws Error when that fails or yields more than `limit` bytes.
std::vector<std::byte> ReadStandardInput(std::uint64_t limit);

// Loads a scene from a file or from standard input; its warnings are added to the report's notes. Throws
// Error.
gltf::Document LoadDocument(const Session& session, const std::string& name, Report& report);

// Where a command writes its result: the named file or, for "-", an unnamed file whose content then goes to
// standard output. A command prepares its report first and commits last, so that any failure leaves
// everything unchanged.
class OutputTarget {
public:
    // ending: the format of a result on standard output, ".glb". Throws Error when the file cannot be
    // written, or exists and --no-clobber was given, and UsageError when standard output is taken.
    OutputTarget(Session& session, const std::string& name, std::string_view ending);
    OutputTarget(const OutputTarget&) = delete;
    OutputTarget& operator=(const OutputTarget&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    // The files to write; all of them appear on Commit.
    FileTransaction& Files() { return m_files; }
    // Throws Error, std::bad_alloc when memory ran out since the work began, and Stopped when the user asked
    // to stop.
    void Commit(const Session& session);

private:
    FileTransaction m_files;
    std::filesystem::path m_path;
    bool m_isStream = false;
};

// Writes the document, consuming it; its files appear on the target's Commit. Returns their total size in
// bytes. Throws Error.
std::uint64_t SaveDocument(gltf::Document& document, OutputTarget& out);

// Writes the scene back to its document and saves that, without data that only removed elements used.
// Extensions that prevent its removal are added to the report's notes. Throws Error.
void SaveScene(LoadedScene&& scene, OutputTarget& out, Report& report);

}  // namespace zr
