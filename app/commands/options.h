// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zr {

class Session;

// Names of an option's value, as help shows them and shell completions interpret them. Words joined by "|"
// are the choices.
inline constexpr const char* kSceneType = "SCENE";
inline constexpr const char* kFileType = "FILE";
inline constexpr const char* kFolderType = "FOLDER";
inline constexpr const char* kOutType = "OUT";

// The numbers an option accepts, both ends included.
struct Range {
    double least;
    double greatest;
};
std::string Text(Range range);  // "0 to 1000"

// Adds an option for a number; rejects text that is not a finite number within the range.
CLI::Option* AddNumber(CLI::App& command, const std::string& name, double& value, Range range,
                       const char* unit, const std::string& help);
CLI::Option* AddNumber(CLI::App& command, const std::string& name, float& value, Range range,
                       const char* unit, const std::string& help);
CLI::Option* AddNumber(CLI::App& command, const std::string& name, int& value, Range range, const char* unit,
                       const std::string& help);
CLI::Option* AddNumber(CLI::App& command, const std::string& name, unsigned& value, Range range,
                       const char* unit, const std::string& help);

// The same check for an existing option.
void CheckRange(CLI::Option& option, Range range);

// Adds an option that accepts one of the words, or several separated by commas, ignoring case.
CLI::Option* AddChoice(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string>& words, const std::string& help);
CLI::Option* AddChoices(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                        const std::vector<std::string>& words, const std::string& help);

// Adds a repeatable option for names separated by commas. Each use consumes one argument.
CLI::Option* AddList(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                     const std::string& help);

// Adds a repeatable option for a single name, which may contain commas.
CLI::Option* AddRepeated(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                         const std::string& help);

// The file of a command that reads one scene.
void AddScene(CLI::App& command, std::string& scene);

// The two files of a command that changes one scene.
void AddSceneAndOut(CLI::App& command, std::string& scene, std::string& out);

// The animations that a command works on, by name or index.
struct AnimationNames {
    std::vector<std::string> listed;  // --animations a,b
    std::vector<std::string> single;  // --animation a --animation b

    void AddTo(CLI::App& command, const std::string& what);
    std::vector<std::string> All() const;  // the listed ones first
};

struct Example {
    const char* line;  // after "zr "
    const char* what;
};
// Appends the examples to the command's help.
void AddExamples(CLI::App& command, const std::vector<Example>& examples);

// Sets what the session runs when the command was given; it returns the exit status.
void OnRun(CLI::App& command, Session& session, std::function<int()> run);

}  // namespace zr
