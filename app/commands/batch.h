// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/commands/report.h"

namespace CLI {
class App;
}

namespace zr {

// The options of a command that works on one file, "IN OUT", or on many: "--out-dir FOLDER IN...", where a
// folder stands for the files below it.
struct BatchArguments {
    std::vector<std::string> files;
    std::string outDir;
    std::string format;  // ending of the files written, "glb"; empty: as those read
    unsigned jobs = 1;
    bool keepGoing = false;

    bool IsSingle() const { return outDir.empty(); }
};

// What the command reads and writes, as endings (".glb").
struct BatchFiles {
    std::vector<std::string> inputs;   // which files of a folder are meant
    std::vector<std::string> formats;  // the words of --format
};

inline const BatchFiles kSceneFiles{{".gltf", ".glb"}, {"glb", "gltf"}};

// Adds the files and the options above. operands: how help shows the files of one task, "SCENE OUT".
void AddBatchOptions(CLI::App& command, BatchArguments& arguments, const BatchFiles& files,
                     const char* operands);

// One file's work.
struct Task {
    std::string input;
    std::string output;  // empty: nothing is written
};

// The tasks of the line, in the order of the line and of the names in a folder. writes: false for a command
// that only looks: each file is then an input. Throws UsageError when there is nothing to do, or two tasks
// would write one file.
std::vector<Task> PlanTasks(const BatchArguments& arguments, const BatchFiles& files, bool writes = true);

// Told how much of the task is done, 0 to 1; throws Stopped when the user wishes.
using Advance = std::function<void(double)>;
using Work = std::function<Report(const Task& task, const Advance& advance)>;

// Does the tasks, several at a time on threads of their own, and prints their reports in order. A failed task
// gives one line that names its file; without keepGoing no further task begins. Status: 1 when a task failed.
// Throws Stopped when the user's wish left tasks undone.
int RunBatch(Session& session, std::string_view command, const BatchArguments& arguments,
             const std::vector<Task>& tasks, const Work& work);

}  // namespace zr
