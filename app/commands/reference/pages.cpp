// SPDX-License-Identifier: MIT
#include "app/commands/reference/pages.h"

#include <string_view>

#include "base/text.h"
#include "host/version.h"

namespace zr {
namespace {

constexpr std::string_view kStatus =
    "0 on success, 1 on failure (one line on standard error names the file and the place), 2 for a wrong "
    "command line, 130 when stopped. A failed or stopped run changes no file.";

std::string NameAndValue(const OptionEntry& option) {
    std::string text;
    for (const std::string& name : option.names) text += (text.empty() ? "" : ", ") + name;
    if (!option.value.empty()) text += (text.empty() ? "" : " ") + option.value;
    return text;
}

// Escapes paragraph text so that no character of it is a request or an escape.
std::string Roff(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '\\') {
            out += "\\e";
        } else if (c == '-') {
            out += "\\-";
        } else {
            if ((c == '.' || c == '\'') && (out.empty() || out.back() == '\n')) out += "\\&";
            out += c;
        }
    }
    return out;
}

std::string RoffEntries(const std::vector<OptionEntry>& entries) {
    std::string text;
    for (const OptionEntry& entry : entries)
        text += Join(".TP\n.B ", Roff(NameAndValue(entry)), "\n", Roff(entry.text), "\n");
    return text;
}

std::string Upper(std::string text) {
    for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    return text;
}

bool IsProgram(const CommandTable& program, const CommandTable& command) {
    return &program == &command;
}

// Escapes text for a cell of a Markdown table.
std::string Cell(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '|' || c == '<' || c == '*' || c == '_') out += '\\';
        out += c;
    }
    return out;
}

std::string Row(const OptionEntry& entry) {
    std::string name;
    for (const char c : NameAndValue(entry)) name += c == '|' ? std::string("\\|") : std::string(1, c);
    return Join("| `", name, "` | ", Cell(entry.text), " |\n");
}

}  // namespace

std::string ManualPage(const CommandTable& program, const CommandTable& command) {
    const bool isProgram = IsProgram(program, command);
    const std::string name = isProgram ? command.name : program.name + "-" + command.name;
    std::string text = Join(".TH ", Upper(name), " 1 \"\" \"zrtools ", ZR_VERSION, "\"\n.SH NAME\n",
                            Roff(name), " \\- ", Roff(command.text), "\n.SH SYNOPSIS\n.nf\n");
    for (const std::string& usage : command.usages) text += Roff(usage) + "\n";
    text += ".fi\n";
    if (!command.operands.empty()) text += ".SH OPERANDS\n" + RoffEntries(command.operands);
    if (!command.commands.empty()) text += ".SH COMMANDS\n";
    for (const CommandTable& each : command.commands)
        text += Join(".TP\n.B ", Roff(each.name), "\n", Roff(each.text), "\n");
    text += ".SH OPTIONS\n";
    for (const OptionHeading& heading : command.headings)
        text += Join(".SS ", Roff(heading.name), "\n", RoffEntries(heading.options));
    if (!command.footer.empty()) text += Join(".SH NOTES\n.nf\n", Roff(command.footer), "\n.fi\n");
    text += Join(".SH EXIT STATUS\n", Roff(kStatus), "\n.SH SEE ALSO\n");
    if (!isProgram) return Join(text, ".BR ", program.name, " (1)\n");
    for (const CommandTable& each : program.commands)
        text += Join(".BR ", Roff(program.name + "-" + each.name), " (1)\n");
    return text;
}

std::string DocumentPage(const CommandTable& program, const CommandTable& command) {
    const bool isProgram = IsProgram(program, command);
    std::string text =
        Join("# ", isProgram ? "zr" : "zr " + command.name, "\n\n", command.text, ".\n\n```\n");
    if (isProgram && text.ends_with("..\n\n```\n")) text.erase(text.size() - 8, 1);
    for (const std::string& usage : command.usages) text += usage + "\n";
    text += "```\n";
    std::string group;
    for (const CommandTable& each : command.commands) {
        if (each.group != group) text += Join("\n", group = each.group, "\n\n");
        text += isProgram ? Join("- [`zr ", each.name, "`](", each.name, ".md): ", each.text, "\n")
                          : Join("- `zr ", command.name, " ", each.name, "`: ", each.text, "\n");
    }
    if (!command.operands.empty()) {
        text += "\n| Operand | |\n|---|---|\n";
        for (const OptionEntry& entry : command.operands) text += Row(entry);
    }
    for (const OptionHeading& heading : command.headings) {
        text += Join("\n| ", heading.name, " | |\n|---|---|\n");
        for (const OptionEntry& entry : heading.options) text += Row(entry);
    }
    if (!command.footer.empty()) text += Join("\n```\n", command.footer, "\n```\n");
    return Join(text, "\nExit status: ", kStatus, "\n");
}

}  // namespace zr
