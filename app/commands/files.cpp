// SPDX-License-Identifier: MIT
#include "app/commands/files.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <system_error>

#include "app/commands/report.h"
#include "app/commands/session.h"
#include "base/error.h"
#include "base/file.h"

namespace zr {
namespace {

namespace fs = std::filesystem;

fs::path NewFolder() {
    std::string pattern = (fs::temp_directory_path() / "zr-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw Error(pattern, "", "cannot be made: " + std::generic_category().message(errno));
    }
    return pattern;
}

}  // namespace

std::string EndingOf(const std::string& format) {
    return "." + (format.empty() ? "glb" : format);
}

gltf::Document LoadDocument(const Session& session, const std::string& name, Report& report) {
    const gltf::LoadOptions& options = session.Options().load;
    gltf::Document document =
        name == kStandardStream
            ? gltf::Document::FromBytes(ReadFile("/dev/stdin").View(), "standard input", options)
            : gltf::Document::Load(PathFromUtf8(name), options);
    for (const gltf::Error& warning : document.Warnings()) report.notes.emplace_back(warning.what());
    return document;
}

OutputTarget::OutputTarget(Session& session, const std::string& name, std::string_view ending)
    : m_ending(ending) {
    if (name == kStandardStream) {
        session.TakeStandardOutput();
        return;
    }
    m_path = PathFromUtf8(name);
    std::error_code ignored;
    if (session.Options().noClobber && fs::exists(m_path, ignored)) {
        throw Error(name, "", "exists, and --no-clobber keeps it");
    }
}

OutputTarget::~OutputTarget() {
    std::error_code ignored;
    if (!m_folder.empty()) fs::remove_all(m_folder, ignored);
}

const fs::path& OutputTarget::Path() {
    if (m_path.empty()) {
        m_folder = NewFolder();
        m_path = m_folder / ("out" + m_ending);
    }
    return m_path;
}

void OutputTarget::Finish() {
    if (m_folder.empty()) return;
    if (std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()) > 1) {
        throw Error("standard output", "", "the result needs files beside it and must be written to a file");
    }
    const FileContent content = ReadFile(m_path);
    std::fwrite(content.data.get(), 1, content.size, stdout);
}

void SaveDocument(const Session& session, gltf::Document& document, OutputTarget& out) {
    document.Save(out.Path(), [&session] { session.ThrowIfStopped(); });
    out.Finish();
}

}  // namespace zr
