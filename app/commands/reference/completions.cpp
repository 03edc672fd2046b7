// SPDX-License-Identifier: MIT
#include "app/commands/reference/completions.h"

#include <string_view>

#include "base/text.h"

namespace zr {
namespace {

std::string Joined(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : separator) + word;
    return text;
}

std::vector<std::string> NamesOf(const std::vector<CommandTable>& commands) {
    std::vector<std::string> names;
    for (const CommandTable& command : commands) names.push_back(command.name);
    return names;
}

template <typename Visit>
void ForEachOption(const CommandTable& command, Visit visit) {
    for (const OptionHeading& heading : command.headings) {
        for (const OptionEntry& option : heading.options) visit(option);
    }
}

std::string OptionNames(const CommandTable& command) {
    std::vector<std::string> names;
    ForEachOption(command, [&](const OptionEntry& option) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    });
    return Joined(names, " ");
}

// The values of an operand that is not a file.
std::vector<std::string> OperandWords(const CommandTable& program, const CommandTable& command) {
    return command.name == "help" ? NamesOf(program.commands) : NamesOf(command.commands);
}

// The commands that complete an option's value; ":" leaves it to the shell's own file completion.
std::string BashValue(const OptionEntry& option) {
    switch (option.kind) {
        case ValueKind::kFolder:
            return "compopt -o dirnames +o default";
        case ValueKind::kWord:
            return "compopt +o default; COMPREPLY=($(compgen -W '" + Joined(option.words, " ") +
                   "' -- \"$word\"))";
        case ValueKind::kOther:
            return "compopt +o default";
        default:
            return ":";
    }
}

std::string Replaced(std::string text, std::string_view what, std::string_view by) {
    for (std::size_t at = 0; (at = text.find(what, at)) != text.npos; at += by.size())
        text.replace(at, what.size(), by);
    return text;
}

// In single quotes for a POSIX shell.
std::string Quoted(const std::string& text) {
    return "'" + Replaced(text, "'", "'\\''") + "'";
}

// Text inside an argument specification of zsh.
std::string ZshText(std::string text) {
    for (const char* special : {"\\", "[", "]", ":"})
        text = Replaced(std::move(text), special, std::string("\\") + special);
    return text;
}

std::string ZshOption(const OptionEntry& option) {
    std::string value;
    if (option.kind != ValueKind::kNone) {
        value = ":" + ZshText(option.value) + ":";
        if (option.kind == ValueKind::kFile) value += "_files";
        if (option.kind == ValueKind::kFolder) value += "_files -/";
        if (option.kind == ValueKind::kWord) value += "(" + Joined(option.words, " ") + ")";
    }
    std::string lines;
    for (const std::string& name : option.names) {
        const std::string others = option.isRepeatable ? "*" : "(" + Joined(option.names, " ") + ")";
        lines += " \\\n        " + Quoted(others + name + "[" + ZshText(option.text) + "]" + value);
    }
    return lines;
}

std::string FishText(std::string text) {
    return "'" + Replaced(Replaced(std::move(text), "\\", "\\\\"), "'", "\\'") + "'";
}

std::string FishOption(const std::string& condition, const OptionEntry& option) {
    std::string line = "complete -c zr -n " + FishText(condition);
    for (const std::string& name : option.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (option.kind == ValueKind::kFile) line += " -r -F";
    if (option.kind == ValueKind::kFolder) line += " -x -a '(__fish_complete_directories)'";
    if (option.kind == ValueKind::kWord) line += " -x -a " + FishText(Joined(option.words, " "));
    if (option.kind == ValueKind::kOther) line += " -x";
    return line + " -d " + FishText(option.text) + "\n";
}

}  // namespace

std::string BashCompletion(const CommandTable& program) {
    std::string names = Joined(NamesOf(program.commands), "|");
    std::string text = Join(
        "# bash completion of zr\n"
        "_zr() {\n"
        "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command= i\n"
        "    COMPREPLY=()\n"
        "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
        "        case ${COMP_WORDS[i]} in ",
        names, ") command=${COMP_WORDS[i]}; break ;; esac\n    done\n    case $command:$before in\n");
    std::string options, operands;
    const auto add = [&](const CommandTable& command, const std::string& name) {
        ForEachOption(command, [&](const OptionEntry& option) {
            if (option.kind == ValueKind::kNone) return;
            for (const std::string& each : option.names)
                text += Join("        ", name, ":", each, ") ", BashValue(option), "; return ;;\n");
        });
        options += Join("            ", name.empty() ? "''" : name, ") COMPREPLY=($(compgen -W '",
                        OptionNames(command), "' -- \"$word\")) ;;\n");
        const std::vector<std::string> words = OperandWords(program, command);
        if (!words.empty())
            operands += Join("        ", name.empty() ? "''" : name,
                             ") compopt +o default; COMPREPLY=($(compgen -W '", Joined(words, " "),
                             "' -- \"$word\")) ;;\n");
    };
    add(program, "");
    for (const CommandTable& command : program.commands) add(command, command.name);
    return Join(text, "    esac\n    if [[ $word == -* ]]; then\n        case $command in\n", options,
                "        esac\n        return\n    fi\n    case $command in\n", operands,
                "    esac\n}\ncomplete -o default -F _zr zr\n");
}

std::string ZshCompletion(const CommandTable& program) {
    std::string text =
        "#compdef zr\n# zsh completion of zr\n_zr() {\n    local context state line\n    _arguments -C";
    ForEachOption(program, [&](const OptionEntry& option) { text += ZshOption(option); });
    text +=
        " \\\n        '1:command:->command' '*::argument:->argument'\n    case $state in\n    command)\n"
        "        local -a commands=(";
    for (const CommandTable& command : program.commands)
        text += "\n            " + Quoted(command.name + ":" + ZshText(command.text));
    text += ")\n        _describe command commands ;;\n    argument)\n        case $words[1] in\n";
    for (const CommandTable& command : program.commands) {
        text += Join("        ", command.name, ") _arguments");
        ForEachOption(command, [&](const OptionEntry& option) { text += ZshOption(option); });
        const std::vector<std::string> words = OperandWords(program, command);
        text += words.empty() ? " \\\n        '*:file:_files' ;;\n"
                              : " \\\n        '1:word:(" + Joined(words, " ") + ")' ;;\n";
    }
    return text + "        esac ;;\n    esac\n}\n_zr \"$@\"\n";
}

std::string FishCompletion(const CommandTable& program) {
    std::string text = "# fish completion of zr\n";
    for (const CommandTable& command : program.commands)
        text += Join("complete -c zr -f -n __fish_use_subcommand -a ", command.name, " -d ",
                     FishText(command.text), "\n");
    ForEachOption(program,
                  [&](const OptionEntry& option) { text += FishOption("__fish_use_subcommand", option); });
    for (const CommandTable& command : program.commands) {
        const std::string condition = "__fish_seen_subcommand_from " + command.name;
        ForEachOption(command, [&](const OptionEntry& option) { text += FishOption(condition, option); });
        const std::vector<std::string> words = OperandWords(program, command);
        if (!words.empty())
            text += Join("complete -c zr -f -n ", FishText(condition), " -a ", FishText(Joined(words, " ")),
                         "\n");
    }
    return text;
}

}  // namespace zr
