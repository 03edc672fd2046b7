// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zr {

// What an option's value is, as help shows it; the completions of shells follow it. Of several words joined
// by
// "|" one is meant.
inline constexpr const char* kSceneType = "SCENE";
inline constexpr const char* kFileType = "FILE";
inline constexpr const char* kFolderType = "FOLDER";
inline constexpr const char* kOutType = "OUT";

// The group of the options that say where results go.
inline constexpr const char* kOutputGroup = "Output";

// The numbers that an option takes, both ends included.
struct Range {
    double least;
    double greatest;
};
std::string Text(Range range);  // "0 to 1000"

// An option for a number; the text is refused unless it is one, finite and in the range.
CLI::Option* AddNumber(CLI::App& command, const std::string& name, double& value, Range range,
                       const char* unit, const std::string& help);
CLI::Option* AddNumber(CLI::App& command, const std::string& name, float& value, Range range,
                       const char* unit, const std::string& help);
CLI::Option* AddNumber(CLI::App& command, const std::string& name, int& value, Range range, const char* unit,
                       const std::string& help);
CLI::Option* AddNumber(CLI::App& command, const std::string& name, unsigned& value, Range range,
                       const char* unit, const std::string& help);

// For options made otherwise: refuses what is no number in the range.
void CheckRange(CLI::Option& option, Range range);

// An option for one of the words, or for several of them separated by commas; case does not matter.
CLI::Option* AddChoice(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string>& words, const std::string& help);
CLI::Option* AddChoices(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                        const std::vector<std::string>& words, const std::string& help);

// An option for several names separated by commas, that may be repeated. It takes one argument at a time.
CLI::Option* AddList(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                     const std::string& help);

// An option that may be repeated for names that may hold commas.
CLI::Option* AddRepeated(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                         const std::string& help);

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
// At the end of the command's help.
void AddExamples(CLI::App& command, const std::vector<Example>& examples);

// Whether a file's name has the ending (".glb"), in any case.
bool HasEnding(std::string_view name, std::string_view ending);

}  // namespace zr
