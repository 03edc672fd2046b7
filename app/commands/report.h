// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/commands/json_object.h"

namespace zr {

class Session;

// What a command has to tell, in the forms in which it can be asked for.
struct Report {
    std::vector<std::string> notes;  // warnings, one line each
    std::string text;                // for people
    JsonObject json;                 // the same for programs; the notes are added when it is printed
    bool isAnswer = false;           // the text is what the user asked for, not an account of what was done

    // Adds a line to the text.
    void Line(std::string_view line);
    // Adds a note for each line, after the label.
    void Note(std::string_view label, const std::vector<std::string>& lines);
};

// Prints the report of a command as the session's options want it: the answer to standard output, the notes
// to standard error. An account goes to standard error when the result itself went to standard output.
void PrintReport(const Session& session, std::string_view command, const Report& report);

// The notes and the text of a report, as above, without JSON.
void PrintForPeople(const Session& session, const Report& report);

}  // namespace zr
