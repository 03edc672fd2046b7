// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace zr {

// The command line as pages and completions describe it, read from the options that the program itself
// parses.

enum class ValueKind {
    kNone,  // a flag
    kFile,
    kScene,  // a file to read
    kFolder,
    kWord,        // one of a fixed set
    kWordOrFile,  // a file's name as well
    kOther,
};

struct OptionEntry {
    std::vector<std::string> names;  // "-q", "--quiet"; none for an operand
    std::string value;               // as help shows it, "SECONDS"; empty: a flag
    std::string text;
    ValueKind kind = ValueKind::kNone;
    std::vector<std::string> words;  // of kWord and kWordOrFile
    bool isList = false;             // several values, separated by commas
    bool isRepeatable = false;
};

struct OptionHeading {
    std::string name;
    std::vector<OptionEntry> options;
};

struct CommandTable {
    std::string name;   // "export"; of the program "zr"
    std::string group;  // the heading under which help lists it
    std::string text;
    std::vector<std::string> usages;
    std::vector<OptionEntry> operands;
    std::vector<OptionHeading> headings;
    std::string footer;  // examples and what else follows the options
    std::vector<CommandTable> commands;
};

// The whole program.
CommandTable ReadCommandTable();

}  // namespace zr
