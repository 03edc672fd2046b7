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

inline constexpr std::string_view kStandardStream = "-";  // in place of a file's name

// The ending of a file of that format (".gltf"); ".glb" when the format is empty.
std::string EndingOf(const std::string& format);

// All of standard input. Throws Error, also when there are more than `limit` bytes.
std::vector<std::byte> ReadStandardInput(std::uint64_t limit);

// Loads a scene from a file or from standard input; its warnings are added to the report's notes. Throws
// Error.
gltf::Document LoadDocument(const Session& session, const std::string& name, Report& report);

// Where a command writes its result: the named file or, for "-", a file without a name whose content then
// goes to standard output. A command commits as the last thing that can fail, with its report made, so that a
// failure means that nothing has changed.
class OutputTarget {
public:
    // ending: that the result would have as a file, ".glb". Throws Error when the file exists and
    // --no-clobber was given, and UsageError when standard output is taken.
    OutputTarget(Session& session, const std::string& name, std::string_view ending);
    OutputTarget(const OutputTarget&) = delete;
    OutputTarget& operator=(const OutputTarget&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    // What the command writes, all of which appears with Commit.
    FileTransaction& Files() { return m_files; }
    // Throws Error, and Stopped when the user stopped it before.
    void Commit(const Session& session);

private:
    FileTransaction m_files;
    std::filesystem::path m_path;
    bool m_isStream = false;
};

// Writes the document, which is spent, for the target's Commit: the bytes of all its files. Throws Error.
std::uint64_t SaveDocument(gltf::Document& document, OutputTarget& out);

// The same for the document of a scene, without the data that only what went from it had used. What keeps
// such data is added to the report's notes. Throws Error.
void SaveScene(LoadedScene&& scene, OutputTarget& out, Report& report);

}  // namespace zr
