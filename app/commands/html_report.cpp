// SPDX-License-Identifier: MIT
#include "app/commands/html_report.h"

#include <CLI/CLI.hpp>

#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "base/error.h"
#include "base/filesystem.h"
#include "base/text.h"

namespace zr {

void AddPageOption(CLI::App& command, std::string& file, const char* description) {
    command.add_option("--report", file, description)->type_name(kFileType)->group("Output");
}

void CheckPageFile(const Session& session, const std::string& file,
                   std::initializer_list<std::string> others) {
    if (file.empty()) return;
    std::error_code ignored;
    const auto place = [&](const std::string& name) {
        return fs::weakly_canonical(std::filesystem::absolute(PathFromUtf8(name)), ignored);
    };
    for (const std::string& other : others) {
        if (other.empty()) continue;
        if (other == kStandardStream) throw UsageError("--report needs files, not standard streams");
        if (place(file) == place(other)) throw UsageError("--report would overwrite " + other);
    }
    if (session.Options().noClobber && fs::exists(PathFromUtf8(file), ignored))
        throw Error(file, "", "already exists, and --no-clobber was given");
    FileTransaction().Create(PathFromUtf8(file));  // fails before any work when it cannot be written
    if (!report::HasPages())
        throw std::runtime_error(
            "--report: this program was built without report pages, which need npm to build");
}

report::Page PageOf(const Session& session, const std::string& kind, const std::string& before,
                    const std::string& after) {
    const auto name = [](const std::string& file) { return PathToUtf8(PathFromUtf8(file).filename()); };
    const bool isComparison = kind == "compare";
    Report ignored;
    report::Page page;
    page.kind = kind;
    page.title = kind + ": " + name(before);
    page.subtitle = name(before) + " and " + name(after);
    page.scenes.push_back({isComparison ? "first" : "before", LoadDocument(session, before, ignored), {}});
    page.scenes.push_back({isComparison ? "second" : "after", LoadDocument(session, after, ignored), {}});
    return page;
}

void WritePage(const std::string& file, const std::string& output,
               const std::function<report::Page()>& make) {
    try {
        FileTransaction files;
        files.Create(PathFromUtf8(file)).Write(report::PageText(make()));
        files.Commit();
    } catch (const std::exception& error) {
        if (output.empty()) throw;
        throw std::runtime_error(Join(output, " was written; the page was not: ", error.what()));
    }
}

}  // namespace zr
