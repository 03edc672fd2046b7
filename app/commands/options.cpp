// SPDX-License-Identifier: MIT
#include "app/commands/options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <type_traits>
#include <utility>

#include "app/commands/session.h"
#include "base/text.h"
#include "host/text.h"

namespace zr {
namespace {

bool IsInRange(std::string_view text, Range range, bool isWhole) {
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool isNumber = error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
    return isNumber && range.least <= value && value <= range.greatest &&
           (!isWhole || text.find_first_not_of("-0123456789") == text.npos);
}

void CheckRange(CLI::Option& option, Range range, bool isWhole) {
    option.check([range, isWhole](const std::string& text) {
        if (IsInRange(text, range, isWhole)) return std::string();
        return Join("\"", text, "\" is not a ", isWhole ? "whole number" : "number", " from ", Text(range));
    });
}

template <typename T>
CLI::Option* AddNumberOf(CLI::App& command, const std::string& name, T& value, Range range, const char* unit,
                         const std::string& help) {
    auto* option = command.add_option(name, value, Join(help, " (", Text(range), ")"))->type_name(unit);
    CheckRange(*option, range, std::is_integral_v<T>);
    return option;
}

std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : "|") + word;
    return text;
}

// Accepts a word of the list in any case and replaces it with the list's spelling.
CLI::Validator WordOf(const std::vector<std::string>& words) {
    return CLI::Validator(
        [words](std::string& text) {
            for (const std::string& word : words) {
                if (vl::CompareNoCase(word.c_str(), text.c_str()) != 0) continue;
                text = word;
                return std::string();
            }
            return Join("\"", text, "\" is not one of ", Joined(words));
        },
        "");
}

}  // namespace

std::string Text(Range range) {
    return Join(Short(range.least, 10), " to ", Short(range.greatest, 10));
}

void CheckRange(CLI::Option& option, Range range) {
    CheckRange(option, range, false);
}

CLI::Option* AddNumber(CLI::App& command, const std::string& name, double& value, Range range,
                       const char* unit, const std::string& help) {
    return AddNumberOf(command, name, value, range, unit, help);
}

CLI::Option* AddNumber(CLI::App& command, const std::string& name, float& value, Range range,
                       const char* unit, const std::string& help) {
    return AddNumberOf(command, name, value, range, unit, help);
}

CLI::Option* AddNumber(CLI::App& command, const std::string& name, int& value, Range range, const char* unit,
                       const std::string& help) {
    return AddNumberOf(command, name, value, range, unit, help);
}

CLI::Option* AddNumber(CLI::App& command, const std::string& name, unsigned& value, Range range,
                       const char* unit, const std::string& help) {
    return AddNumberOf(command, name, value, range, unit, help);
}

CLI::Option* AddChoice(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string>& words, const std::string& help) {
    return command.add_option(name, value, help)->type_name(Joined(words))->transform(WordOf(words));
}

CLI::Option* AddChoices(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                        const std::vector<std::string>& words, const std::string& help) {
    return AddList(command, name, values, help)->type_name(Joined(words))->transform(WordOf(words));
}

CLI::Option* AddList(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                     const std::string& help) {
    return AddRepeated(command, name, values, help)->type_name("NAME,...")->delimiter(',');
}

CLI::Option* AddRepeated(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                         const std::string& help) {
    return command.add_option(name, values, help)
        ->type_name("NAME")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false);
}

void AddScene(CLI::App& command, std::string& scene) {
    command.add_option("scene", scene, "The scene to read: .gltf, .glb, or - for standard input")
        ->type_name(kSceneType)
        ->required();
}

void AddSceneAndOut(CLI::App& command, std::string& scene, std::string& out) {
    AddScene(command, scene);
    command.add_option("out", out, "The scene to write: .gltf, .glb, or - for standard output")
        ->type_name(kOutType)
        ->required();
}

void AnimationNames::AddTo(CLI::App& command, const std::string& what) {
    AddList(command, "--animations", listed, what + ", by name or index, separated by commas");
    AddRepeated(command, "--animation", single,
                "A single animation, whose name may contain commas; may be repeated");
}

std::vector<std::string> AnimationNames::All() const {
    std::vector<std::string> all = listed;
    all.insert(all.end(), single.begin(), single.end());
    return all;
}

void AddExamples(CLI::App& command, const std::vector<Example>& examples) {
    std::string text = command.get_footer();
    if (!text.empty()) text += "\n\n";
    text += "Examples:";
    for (const Example& example : examples) text += Join("\n  zr ", example.line, "\n      ", example.what);
    command.footer(text);
}

void OnRun(CLI::App& command, Session& session, std::function<int()> run) {
    command.callback([&session, run = std::move(run)] { session.SetCommand(run); });
}

}  // namespace zr
