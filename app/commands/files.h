// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "gltf/document.h"

namespace zr {

class Session;
struct Report;

inline constexpr std::string_view kStandardStream = "-";  // in place of a file's name

// The ending of a file of that format (".gltf"); ".glb" when the format is empty.
std::string EndingOf(const std::string& format);

// The scene of a file, or of standard input; its warnings become notes of the report. Throws Error.
gltf::Document LoadDocument(const Session& session, const std::string& name, Report& report);

// Where a command writes: the named file, or for "-" one in a folder of its own that Finish copies to
// standard output.
class OutputTarget {
public:
    // ending: of the file for "-", as ".glb". Throws Error when the file exists and may not be replaced, and
    // UsageError when standard output is taken.
    OutputTarget(Session& session, const std::string& name, std::string_view ending);
    ~OutputTarget();
    OutputTarget(const OutputTarget&) = delete;
    OutputTarget& operator=(const OutputTarget&) = delete;

    // The file to write now. Throws Error.
    const std::filesystem::path& Path();
    // When the file has been written. Throws Error.
    void Finish();

private:
    std::string m_ending;
    std::filesystem::path m_path;    // empty: not yet known
    std::filesystem::path m_folder;  // of its own; empty: none
};

// Writes the document; a stop that comes before all is written leaves everything as it was. Throws Error and
// Stopped.
void SaveDocument(const Session& session, gltf::Document& document, OutputTarget& out);

}  // namespace zr
