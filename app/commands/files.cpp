// SPDX-License-Identifier: MIT
#include "app/commands/files.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <system_error>
#include <vector>

#include "app/commands/refusals.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/scene/loaded_scene.h"
#include "base/budget.h"
#include "base/error.h"
#include "base/fatal_signals.h"
#include "base/file.h"
#include "base/filesystem.h"
#include "base/memory_watch.h"
#include "base/text.h"

namespace zr {

std::string EndingOf(const std::string& format) {
    return "." + (format.empty() ? "glb" : format);
}

// Reads the stream itself: reopening it by name would wait for another writer if it is a named pipe.
std::vector<std::byte> ReadStandardInput(std::uint64_t limit) {
    constexpr std::size_t kStep = 1 << 20;
    std::vector<std::byte> content;
    for (std::size_t size = 0;;) {
        content.resize(size + kStep);
        const std::size_t got = std::fread(content.data() + size, 1, kStep, stdin);
        content.resize(size += got);
        if (std::ferror(stdin) != 0)
            throw Error("standard input", "", "cannot be read: " + std::generic_category().message(errno));
        if (size > limit)
            throw Error("standard input", "", Join("is larger than the ", limit, " bytes that may be read"));
        if (got < kStep) return content;
    }
}

gltf::Document LoadDocument(const Session& session, const std::string& name, Report& report) {
    BeginWork();
    const gltf::LoadOptions& options = session.Options().load;
    gltf::Document document =
        name == kStandardStream
            ? gltf::Document::FromBytes(ReadStandardInput(Budget(options.maxMemory).Total()),
                                        "standard input", options)
            : gltf::Document::Load(PathFromUtf8(name), options);
    if (session.Options().strict && !document.Warnings().empty())
        throw gltf::Error(document.Warnings().front());
    for (const gltf::Error& warning : document.Warnings()) report.notes.emplace_back(warning.what());
    return document;
}

OutputTarget::OutputTarget(Session& session, const std::string& name, std::string_view ending) {
    if (name == kStandardStream) {
        session.TakeStandardOutput();
        m_isStream = true;
        // In a folder that is never created, so files beside the result count as missing.
        m_path = TemporaryName(fs::temp_directory_path()) / Join("out", ending);
        return;
    }
    m_path = PathFromUtf8(name);
    std::error_code ignored;
    if (session.Options().noClobber && fs::exists(m_path, ignored)) {
        throw Error(name, "", "already exists, and --no-clobber was given");
    }
    FileTransaction().Create(m_path);  // what cannot be written is better known now
}

void OutputTarget::Commit(const Session& session) {
    session.ThrowIfStopped();
    RequireMemory();
    if (m_isStream)
        m_files.CommitTo(stdout, m_path);
    else
        m_files.Commit();
}

std::uint64_t SaveDocument(gltf::Document& document, OutputTarget& out) {
    return document.Save(out.Path(), out.Files());
}

void SaveScene(LoadedScene&& scene, OutputTarget& out, Report& report) {
    WrittenBack written = std::move(scene).WriteBackAndCollect();
    for (const std::string& line : RefusalLines("unused content", written.refusals))
        report.notes.push_back(line);
    SaveDocument(written.document, out);
}

}  // namespace zr
