// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <map>

#include "app/commands/batch.h"
#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/session.h"
#include "base/file.h"
#include "base/filesystem.h"
#include "base/text.h"

namespace zr {
namespace {

bool IsWanted(const fs::path& file, const BatchFiles& files) {
    const std::string name = PathToUtf8(file);
    return std::any_of(files.inputs.begin(), files.inputs.end(),
                       [&](const std::string& ending) { return HasEnding(name, ending); });
}

// The files below the folder, sorted by path, except those in the output folder.
std::vector<fs::path> FilesBelow(const fs::path& folder, const fs::path& outDir, const BatchFiles& files) {
    std::vector<fs::path> found, left{folder};
    while (!left.empty()) {
        const fs::path inner = std::move(left.back());
        left.pop_back();
        std::error_code failure, ignored;
        for (const fs::path& name : fs::NamesIn(inner, failure)) {
            fs::path file = inner / name;
            if (fs::is_directory(file, ignored)) {
                const bool isLink = fs::is_symlink(fs::symlink_status(file, ignored));
                if (!isLink && !fs::equivalent(file, outDir, ignored)) left.push_back(std::move(file));
            } else if (fs::is_regular_file(file, ignored) && IsWanted(file, files)) {
                found.push_back(std::move(file));
            }
        }
        if (failure) FailWith(inner, "cannot be read", failure);
    }
    std::sort(found.begin(), found.end());
    return found;
}

class Plan {
public:
    Plan(const BatchArguments& arguments, const BatchFiles& files, bool writes)
        : m_arguments(arguments),
          m_files(files),
          m_writes(writes),
          m_outDir(PathFromUtf8(arguments.outDir)) {}

    std::vector<Task> Make() {
        for (const std::string& file : m_arguments.files) {
            for (const fs::path& path : fs::Expanded(PathFromUtf8(file))) {
                std::error_code ignored;
                if (!fs::is_directory(path, ignored)) {
                    Add(path, path.filename());
                    continue;
                }
                for (const fs::path& each : FilesBelow(path, m_outDir, m_files))
                    Add(each, each.lexically_relative(path));
            }
        }
        if (m_tasks.empty()) throw UsageError("the folders contain no file to read");
        return std::move(m_tasks);
    }

private:
    // place: the output's path relative to the output folder.
    void Add(const fs::path& input, fs::path place) {
        Task task{PathToUtf8(input), ""};
        if (m_writes) {
            if (task.input == kStandardStream)
                throw UsageError("- cannot be used with --out-dir: give one file and OUT");
            if (!m_arguments.format.empty()) place.replace_extension(m_arguments.format);
            const fs::path output = (m_outDir / place).lexically_normal();
            task.output = PathToUtf8(output);
            const auto [first, isNew] = m_inputs.emplace(fs::Folded(output), task.input);
            if (!isNew)
                throw UsageError(
                    Join(first->second, " and ", task.input, " would both be written to ", task.output));
        }
        m_tasks.push_back(std::move(task));
    }

    const BatchArguments& m_arguments;
    const BatchFiles& m_files;
    bool m_writes;
    fs::path m_outDir;
    std::map<fs::path, std::string> m_inputs;  // by output
    std::vector<Task> m_tasks;
};

}  // namespace

void AddBatchOptions(CLI::App& command, BatchArguments& arguments, const BatchFiles& files,
                     const char* operands, const char* description) {
    constexpr const char* kGroup = "Many files";
    command.add_option("files", arguments.files, description)->type_name(operands)->required();
    command
        .add_option(
            "--out-dir", arguments.outDir,
            "Write every file into this folder, under its own name; folders stand for the files below them")
        ->type_name(kFolderType)
        ->group(kGroup);
    AddChoice(command, "--format", arguments.format, files.formats,
              "Format of the output; default: that of the input file, or glb on standard output")
        ->group(kGroup);
    AddNumber(command, "-j,--jobs", arguments.jobs, {1, 256}, "N", "Files processed at the same time")
        ->capture_default_str()
        ->group(kGroup);
    command.add_flag("-k,--keep-going", arguments.keepGoing, "Continue with the other files when one fails")
        ->group(kGroup);
}

std::vector<Task> PlanTasks(const BatchArguments& arguments, const BatchFiles& files, bool writes) {
    if (writes && arguments.IsSingle()) {
        if (arguments.files.size() != 2)
            throw UsageError("give one file to read and one to write, or several to read and --out-dir");
        if (!arguments.format.empty() && arguments.files[1] != kStandardStream)
            throw UsageError(
                "--format is for --out-dir and for standard output; the name of OUT determines its format");
        return {{arguments.files[0], arguments.files[1]}};
    }
    return Plan(arguments, files, writes).Make();
}

}  // namespace zr
