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

// The options of a command that works on one file, "IN OUT", or on many, "--out-dir FOLDER IN...". An input
// folder stands for the files below it.
struct BatchArguments {
    std::vector<std::string> files;
    std::string outDir;
    std::string format;  // ending of the output files, "glb"; empty: that of each input
    unsigned jobs = 1;
    bool keepGoing = false;

    bool IsSingle() const { return outDir.empty(); }
};

// What a command reads and writes.
struct BatchFiles {
    std::vector<std::string> inputs;   // endings of the files taken from a folder, ".glb"
    std::vector<std::string> formats;  // choices of --format, "glb"
};

inline const BatchFiles kSceneFiles{{".gltf", ".glb"}, {"glb", "gltf"}};

// Adds the positional files and the options above. operands: how help shows those of a single task, "SCENE
// OUT"; description: what they are.
void AddBatchOptions(
    CLI::App& command, BatchArguments& arguments, const BatchFiles& files, const char* operands,
    const char* description = "The file to read and the file to write; - is standard input or output");

// One file's work.
struct Task {
    std::string input;
    std::string output;  // empty: writes nothing
};

// The tasks in the order of the command line, files of a folder sorted by name. With writes false every file
// is an input and nothing is written. Throws UsageError when there is nothing to do or two tasks would write
// the same file, Error when a folder cannot be read.
std::vector<Task> PlanTasks(const BatchArguments& arguments, const BatchFiles& files, bool writes = true);

// Called with the task's progress in [0, 1]; throws Stopped when the user asked to stop.
using Advance = std::function<void(double)>;
using Work = std::function<Report(const Task& task, const Advance& advance)>;

// Runs the tasks on as many threads as asked for and prints their reports in order. A failed task prints one
// line that names its file; unless keepGoing, no further task is then started. Returns 1 when a task failed,
// else 0. Throws Stopped when the user stopped it before all tasks were done.
int RunBatch(Session& session, std::string_view command, const BatchArguments& arguments,
             const std::vector<Task>& tasks, const Work& work);

}  // namespace zr
