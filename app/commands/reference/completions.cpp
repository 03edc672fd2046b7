// SPDX-License-Identifier: MIT
#include "app/commands/reference/completions.h"

#include <string_view>

#include "app/commands/options.h"
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

// What the shell offers for the operands of a command that has no words for them.
ValueKind OperandKind(const CommandTable& command) {
    if (command.operands.empty()) return ValueKind::kOther;
    const std::string& value = command.operands.front().value;
    if (value.starts_with(kSceneType)) return ValueKind::kScene;
    return value.find(kOutType) != value.npos ? ValueKind::kFile : ValueKind::kOther;
}

// The commands that complete an option's value; ":" leaves it to the shell's own file completion.
std::string BashValue(const OptionEntry& option) {
    const std::string words = Join("'", Joined(option.words, " "), "'");
    switch (option.kind) {
        case ValueKind::kFolder:
            return "compopt -o dirnames +o default";
        case ValueKind::kWord:
            return Join("compopt +o default; ", option.isList ? "_zr_list " : "_zr_words ", words);
        case ValueKind::kWordOrFile:
            return Join("_zr_words ", words, "; _zr_files");
        case ValueKind::kScene:
            return "_zr_scenes";
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

constexpr const char* kZshScenes = "_files -g \"*.(glb|gltf)(-.)\"";

std::string ZshValue(const OptionEntry& option) {
    const std::string words = Joined(option.words, " ");
    switch (option.kind) {
        case ValueKind::kFile:
            return "_files";
        case ValueKind::kScene:
            return kZshScenes;
        case ValueKind::kFolder:
            return "_files -/";
        case ValueKind::kWord:
            return option.isList ? Join("_values -s , value ", words) : Join("(", words, ")");
        case ValueKind::kWordOrFile:
            // The space keeps _arguments from adding options of its own.
            return Join(" _alternative \"words\\:word\\:(", words, ")\" \"files\\:file\\:_files\"");
        default:
            return "";
    }
}

std::string ZshOption(const OptionEntry& option) {
    std::string lines;
    for (const std::string& name : option.names) {
        const bool takesValue = option.kind != ValueKind::kNone;
        const std::string others = option.isRepeatable ? "*" : "(" + Joined(option.names, " ") + ")";
        std::string text = Join(others, name, takesValue && name.starts_with("--") ? "=" : "", "[",
                                ZshText(option.text), "]");
        if (takesValue) text += Join(":", ZshText(option.value), ":", ZshValue(option));
        lines += " \\\n        " + Quoted(text);
    }
    return lines;
}

std::string FishText(std::string text) {
    return "'" + Replaced(Replaced(std::move(text), "\\", "\\\\"), "'", "\\'") + "'";
}

constexpr const char* kFishScenes = "'(__fish_complete_suffix .glb; __fish_complete_suffix .gltf)'";

std::string FishValue(const OptionEntry& option) {
    const std::string words = Joined(option.words, " ");
    switch (option.kind) {
        case ValueKind::kNone:
            return "";
        case ValueKind::kFile:
            return " -r -F";
        case ValueKind::kScene:
            return Join(" -x -k -a ", kFishScenes);
        case ValueKind::kFolder:
            return " -x -a '(__fish_complete_directories)'";
        case ValueKind::kWord:
            return Join(" -x -a ", option.isList ? Join("'(__fish_append , ", words, ")'") : FishText(words));
        case ValueKind::kWordOrFile:
            return Join(" -r -F -a ", FishText(words));
        case ValueKind::kOther:
            break;
    }
    return " -x";
}

std::string FishOption(const std::string& condition, const OptionEntry& option) {
    std::string line = "complete -c zr -n " + FishText(condition);
    for (const std::string& name : option.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    line += FishValue(option);
    return line + " -d " + FishText(option.text) + "\n";
}

}  // namespace

std::string BashCompletion(const CommandTable& program) {
    std::string names = Joined(NamesOf(program.commands), "|");
    std::string text = Join(
        "# bash completion of zr\n"
        "_zr_words() { mapfile -t COMPREPLY < <(compgen -W \"$1\" -- \"$word\"); }\n"
        "_zr_list() {\n"
        "    local last=${word##*,}\n"
        "    mapfile -t COMPREPLY < <(compgen -P \"${word%\"$last\"}\" -W \"$1\" -- \"$last\")\n"
        "}\n"
        "_zr_files() {\n"
        "    compopt -o filenames\n"
        "    mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- \"$word\")\n"
        "}\n"
        "_zr_scenes() {\n"
        "    compopt -o filenames -o plusdirs\n"
        "    mapfile -t COMPREPLY < <(compgen -f -X '!*.glb' -- \"$word\"; compgen -f -X '!*.gltf' -- "
        "\"$word\")\n"
        "}\n"
        "_zr() {\n"
        "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command= i\n"
        "    COMPREPLY=()\n"
        "    if [[ $before == = ]]; then\n"
        "        before=${COMP_WORDS[COMP_CWORD - 2]}\n"
        "    elif [[ $word == = ]]; then\n"
        "        word=\n"
        "    fi\n"
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
        options +=
            Join("            ", name.empty() ? "''" : name, ") _zr_words '", OptionNames(command), "' ;;\n");
        const std::vector<std::string> words = OperandWords(program, command);
        if (!words.empty())
            operands += Join("        ", name.empty() ? "''" : name, ") compopt +o default; _zr_words '",
                             Joined(words, " "), "' ;;\n");
        else if (OperandKind(command) == ValueKind::kScene)
            operands += Join("        ", name, ") _zr_scenes ;;\n");
        else if (OperandKind(command) == ValueKind::kOther)
            operands += Join("        ", name.empty() ? "''" : name, ") compopt +o default ;;\n");
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
        if (!words.empty())
            text += Join(" \\\n        '1:word:(", Joined(words, " "), ")'");
        else if (OperandKind(command) == ValueKind::kScene)
            text += Join(" \\\n        '*:file:", kZshScenes, "'");
        else if (OperandKind(command) == ValueKind::kFile)
            text += " \\\n        '*:file:_files'";
        text += " ;;\n";
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
        else if (OperandKind(command) == ValueKind::kScene)
            text += Join("complete -c zr -k -x -n ", FishText(condition), " -a ", kFishScenes, "\n");
        else if (OperandKind(command) == ValueKind::kOther)
            text += Join("complete -c zr -f -n ", FishText(condition), "\n");
    }
    return text;
}

}  // namespace zr
