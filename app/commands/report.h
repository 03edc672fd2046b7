// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/commands/json_object.h"

namespace zr {

class Session;

// What a command reports, as text and as JSON.
struct Report {
    std::vector<std::string> notes;  // warnings, one line each
    std::string text;                // for people
    JsonObject json;                 // the same for programs; the notes are added when it is printed
    bool isAnswer = false;           // the text is what was asked for, not an account of work done

    // Adds a line to the text.
    void Line(std::string_view line);
    // Adds a note for each line, after the label.
    void Note(std::string_view label, const std::vector<std::string>& lines);
};

// Thrown when the work was done and its result written, but memory ran out while reporting it.
struct ReportLost {};

// Prints a command's report as the session's options ask: the text to standard output and the notes to
// standard error. When standard output carries the result itself, the text goes to standard error too. When
// memory runs out, throws ReportLost, or std::bad_alloc for a report that is itself the answer.
void PrintReport(const Session& session, std::string_view command, const Report& report);

// Prints notes and text as above, even with --json.
void PrintForPeople(const Session& session, const Report& report);

}  // namespace zr
