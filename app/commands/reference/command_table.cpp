// SPDX-License-Identifier: MIT
#include "app/commands/reference/command_table.h"

#include <CLI/CLI.hpp>

#include <cctype>

#include "app/commands/help.h"
#include "app/commands/options.h"
#include "app/commands/program.h"
#include "app/commands/session.h"

namespace zr {
namespace {

std::vector<std::string> Parts(const std::string& text, char separator) {
    std::vector<std::string> parts;
    for (std::size_t at = 0, end = 0; end != text.npos; at = end + 1) {
        end = text.find(separator, at);
        parts.push_back(text.substr(at, end == text.npos ? end : end - at));
    }
    return parts;
}

OptionEntry ReadOption(const CLI::Option& option) {
    OptionEntry entry;
    entry.text = TextOf(option);
    for (const std::string& name : option.get_snames()) entry.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) entry.names.push_back("--" + name);
    if (option.get_items_expected_max() == 0) return entry;
    entry.value = option.get_type_name();
    entry.kind = ValueKind::kOther;
    entry.isRepeatable = option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    entry.isList = option.get_delimiter() == ',';
    if (entry.value == kFolderType) entry.kind = ValueKind::kFolder;
    if (entry.value == kSceneType) entry.kind = ValueKind::kScene;
    if (entry.value == kFileType || entry.value == kOutType) entry.kind = ValueKind::kFile;
    if (entry.value.find('|') != entry.value.npos) {
        entry.kind = ValueKind::kWord;
        for (const std::string& word : Parts(entry.value, '|')) {
            if (word == kFileType)
                entry.kind = ValueKind::kWordOrFile;
            else if (!std::isupper(static_cast<unsigned char>(word.front())))  // "N" is no word
                entry.words.push_back(word);
        }
    }
    return entry;
}

CommandTable ReadCommand(const CLI::App& command) {
    CommandTable table{command.get_name(),
                       command.get_group(),
                       command.get_description(),
                       UsagesOf(command),
                       {},
                       {},
                       command.get_footer(),
                       {}};
    for (const CLI::Option* option : command.get_options()) {
        if (!option->get_positional()) continue;
        table.operands.push_back(ReadOption(*option));
        table.operands.back().value = option->get_type_name();
    }
    for (const OptionGroup& group : OptionGroupsOf(command)) {
        table.headings.push_back({group.name, {}});
        for (const CLI::Option* option : group.options)
            table.headings.back().options.push_back(ReadOption(*option));
    }
    for (const CLI::App* each : command.get_subcommands({})) table.commands.push_back(ReadCommand(*each));
    return table;
}

}  // namespace

CommandTable ReadCommandTable() {
    Session session;
    return ReadCommand(*MakeCommandLine(session));
}

}  // namespace zr
