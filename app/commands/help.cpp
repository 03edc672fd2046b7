// SPDX-License-Identifier: MIT
#include "app/commands/help.h"

#include <algorithm>
#include <string_view>

#include "base/text.h"

namespace zr {
namespace {

constexpr std::size_t kWidth = 100;
constexpr std::size_t kNameColumn = 2;
constexpr std::size_t kTextColumn = 28;

const CLI::App& Program(const CLI::App& command) {
    const CLI::App* at = &command;
    while (at->get_parent() != nullptr) at = at->get_parent();
    return *at;
}

std::string FullName(const CLI::App& command) {
    const std::string& name = command.get_name();
    return command.get_parent() != nullptr ? FullName(*command.get_parent()) + " " + name : name;
}

// Breaks text into lines of at most `width` columns; all but the first are indented by `column` spaces.
std::string Wrapped(std::string_view text, std::size_t column, std::size_t width) {
    std::string out;
    std::size_t used = column;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        if (used > column && used + 1 + word.size() > width) {
            out += "\n" + std::string(column, ' ');
            used = column;
        } else if (used > column) {
            out += ' ';
            ++used;
        }
        out += word;
        used += word.size();
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return out;
}

std::string Row(const std::string& name, const std::string& text) {
    std::string row = std::string(kNameColumn, ' ') + name;
    if (row.size() + 2 > kTextColumn) {
        row += "\n" + std::string(kTextColumn, ' ');
    } else {
        row.resize(kTextColumn, ' ');
    }
    return row + Wrapped(text, kTextColumn, kWidth) + "\n";
}

void AddOptions(const CLI::App& command, std::vector<OptionGroup>& groups) {
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional() || option->get_group().empty()) continue;
        auto group = std::find_if(groups.begin(), groups.end(),
                                  [&](const OptionGroup& each) { return each.name == option->get_group(); });
        if (group == groups.end()) group = groups.insert(groups.end(), {option->get_group(), {}});
        group->options.push_back(option);
    }
}

std::string Commands(const CLI::App& app) {
    std::string text, group;
    for (const CLI::App* command : app.get_subcommands({})) {
        if (command->get_group() != group) text += Join("\n", group = command->get_group(), ":\n");
        text += Row(command->get_name(), command->get_description());
    }
    return text;
}

}  // namespace

std::vector<OptionGroup> OptionGroupsOf(const CLI::App& command) {
    std::vector<OptionGroup> groups;
    AddOptions(command, groups);
    const CLI::App& program = Program(command);
    if (&program == &command) return groups;
    // Each command has its own help option, and only the program has a version.
    std::vector<OptionGroup> common;
    AddOptions(program, common);
    for (OptionGroup& group : common) {
        std::erase_if(group.options, [](const CLI::Option* option) {
            return option->check_name("--help") || option->check_name("--version");
        });
        if (!group.options.empty()) groups.push_back(std::move(group));
    }
    return groups;
}

std::string NameAndValue(const CLI::Option& option) {
    const std::string name = option.get_positional() ? option.get_name() : option.get_name(false, true);
    const bool takesValue = option.get_items_expected_max() > 0 && !option.get_positional();
    return takesValue ? Join(name, " ", option.get_type_name()) : name;
}

std::string TextOf(const CLI::Option& option) {
    const std::string initial = option.get_default_str();
    return initial.empty() ? option.get_description()
                           : Join(option.get_description(), " [default: ", initial, "]");
}

std::vector<std::string> UsagesOf(const CLI::App& command) {
    const std::string name = FullName(command);
    std::string operands;
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional()) operands += " " + option->get_type_name();
    }
    if (!command.get_subcommands({}).empty()) operands += " COMMAND";
    std::vector<std::string> usages{Join(name, " [OPTIONS]", operands)};
    if (command.get_option_no_throw("--out-dir") != nullptr)
        usages.push_back(Join(name, " [OPTIONS] --out-dir FOLDER FILE|FOLDER..."));
    return usages;
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const {
    std::string text = Wrapped(app->get_description(), 0, kWidth) + "\n\n";
    const char* label = "Usage: ";
    for (const std::string& usage : UsagesOf(*app)) {
        text += label + usage + "\n";
        label = "       ";
    }
    text += Commands(*app);
    std::string operands;
    for (const CLI::Option* option : app->get_options()) {
        if (option->get_positional()) operands += Row(option->get_type_name(), TextOf(*option));
    }
    if (!operands.empty()) text += "\n" + operands;
    for (const OptionGroup& group : OptionGroupsOf(*app)) {
        text += Join("\n", group.name, ":\n");
        for (const CLI::Option* option : group.options) text += Row(NameAndValue(*option), TextOf(*option));
    }
    if (!app->get_footer().empty()) text += Join("\n", app->get_footer(), "\n");
    return text;
}

}  // namespace zr
