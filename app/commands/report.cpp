// SPDX-License-Identifier: MIT
#include "app/commands/report.h"

#include <cstdio>
#include <new>

#include "app/commands/session.h"
#include "base/memory_watch.h"
#include "base/text.h"

namespace zr {

void Report::Line(std::string_view line) {
    text += Printable(line) + "\n";
}

void Report::Note(std::string_view label, const std::vector<std::string>& lines) {
    for (const std::string& line : lines) notes.push_back(Join(label, ": ", line));
}

void PrintReport(const Session& session, std::string_view command, const Report& report) try {
    if (report.isAnswer) RequireMemory();
    if (session.Options().json) {
        JsonObject json;
        json.Set("schema", kJsonSchemaVersion).Set("command", command).Append(report.json);
        if (!report.notes.empty()) json.Set("notes", report.notes);
        std::fputs(json.PrettyText().c_str(), stdout);
        return;
    }
    PrintForPeople(session, report);
} catch (const std::bad_alloc&) {
    if (report.isAnswer) throw;
    throw ReportLost();
}

void PrintForPeople(const Session& session, const Report& report) try {
    const bool isQuiet = session.Options().quiet;
    if (!isQuiet) {
        for (const std::string& note : report.notes)
            std::fprintf(stderr, "zr: %s\n", Printable(note).c_str());
    }
    if (report.isAnswer || !isQuiet) {
        std::fputs(report.text.c_str(), session.IsStandardOutputTaken() ? stderr : stdout);
    }
} catch (const std::bad_alloc&) {
    if (report.isAnswer) throw;
    throw ReportLost();
}

}  // namespace zr
