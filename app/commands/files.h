// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "gltf/document.h"

namespace zr {

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

// Where a command writes its result: the named file or, for "-", a temporary file that Finish copies to
// standard output.
class OutputTarget {
public:
    // ending: of the temporary file, ".glb". Throws Error when the file exists and --no-clobber was given,
    // and UsageError when standard output is taken.
    OutputTarget(Session& session, const std::string& name, std::string_view ending);
    ~OutputTarget();
    OutputTarget(const OutputTarget&) = delete;
    OutputTarget& operator=(const OutputTarget&) = delete;

    // The path to write to; call when about to write. Throws Error.
    const std::filesystem::path& Path();
    // Call once the file is complete. Throws Error.
    void Finish();

private:
    std::string m_ending;
    std::filesystem::path m_path;    // empty: not yet known
    std::filesystem::path m_folder;  // temporary; empty: none
};

// Writes the document: the bytes of all its files. When the user stops it before all is written, nothing has
// changed. Throws Error and Stopped.
std::uint64_t SaveDocument(const Session& session, gltf::Document& document, OutputTarget& out);

}  // namespace zr
