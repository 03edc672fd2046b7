// SPDX-License-Identifier: MIT
#include "app/commands/batch.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/progress.h"
#include "app/commands/session.h"
#include "base/fatal_signals.h"
#include "base/file.h"
#include "base/filesystem.h"
#include "base/memory_watch.h"
#include "base/text.h"

namespace zr {
namespace {

enum class State { kWaiting, kDone, kFailed };

// What became of a task.
struct Outcome {
    State state = State::kWaiting;
    Report report;
    std::string error;
};

class Batch {
public:
    Batch(Session& session, std::string_view command, const BatchArguments& arguments,
          const std::vector<Task>& tasks, const Work& work)
        : m_session(session),
          m_command(command),
          m_arguments(arguments),
          m_tasks(tasks),
          m_work(work),
          m_outcomes(tasks.size()),
          m_progress(session.Options().quiet ? "" : std::string(command)) {
        // Created here, before other threads use it.
        session.GetHost();
    }

    int Run() {
        {
            std::vector<std::jthread> others;
            const std::size_t workers = std::min<std::size_t>(m_arguments.jobs, m_tasks.size());
            try {
                for (std::size_t i = 1; i < workers; ++i) others.emplace_back([this] { DoTasks(); });
            } catch (const std::exception&) {
                // The system has no room for another thread.
            }
            DoTasks();
        }
        if (m_fatal) std::rethrow_exception(m_fatal);
        m_progress.Clear();
        const std::size_t done = Count(State::kDone), failed = Count(State::kFailed);
        if (m_session.Options().json) {
            PrintJson(done, failed);
        } else if (m_tasks.size() > 1 && !m_session.Options().quiet) {
            std::fprintf(stderr, "zr: %s: %zu done, %zu failed, %zu left\n",
                         Counted(m_tasks.size(), "file").c_str(), done, failed,
                         m_tasks.size() - done - failed);
        }
        // Too late to stop anything once every task has finished.
        if (m_session.IsStopRequested() && done + failed < m_tasks.size()) throw Stopped();
        return failed == 0 ? 0 : 1;
    }

private:
    void DoTasks() {
        try {
            for (std::size_t next; !m_isOver && (next = m_next++) < m_tasks.size();)
                Finish(next, Do(m_tasks[next]));
        } catch (...) {
            m_isOver = true;
            const std::lock_guard lock(m_mutex);
            m_fatal = std::current_exception();
        }
    }

    void Finish(std::size_t task, Outcome outcome) {
        const bool isStop = outcome.state == State::kFailed && !m_arguments.keepGoing;
        if (isStop || m_session.IsStopRequested()) m_isOver = true;
        ++m_finished;
        const std::lock_guard lock(m_mutex);
        m_outcomes[task] = std::move(outcome);
        PrintFinished();
    }

    Outcome Do(const Task& task) {
        Outcome outcome;
        ++m_running;
        ForgetMissingMemory();
        try {
            outcome.report = m_work(task, [this](double done) {
                m_session.ThrowIfStopped();
                const std::unique_lock lock(m_mutex, std::try_to_lock);
                if (lock.owns_lock()) {
                    m_progress.Show((static_cast<double>(m_finished) + done) /
                                    static_cast<double>(m_tasks.size()));
                }
            });
            if (outcome.report.isAnswer) RequireMemory();
            outcome.state = State::kDone;
        } catch (const Stopped&) {
            // The task counts as not started.
        } catch (const UsageError&) {
            throw;
        } catch (const std::bad_alloc&) {
            outcome.state = State::kFailed;
            outcome.error = Join(task.input, ": out of memory");
        } catch (const std::exception& error) {
            outcome.state = State::kFailed;
            outcome.error =
                MissesMemory() ? Join(task.input, ": out of memory") : WithFile(task, error.what());
        }
        if (--m_running > 0) BeginWork();  // of the others, which can still be stopped
        return outcome;
    }

    static std::string WithFile(const Task& task, const std::string& text) {
        const auto names = [&](const std::string& file) {
            return !file.empty() && text.find(Printable(file)) != text.npos;
        };
        return names(task.input) || names(task.output) ? text : Join(task.input, ": ", text);
    }

    // Prints the outcomes of all tasks before the first unfinished one.
    void PrintFinished() {
        for (; m_printed < m_outcomes.size() && m_outcomes[m_printed].state != State::kWaiting; ++m_printed) {
            m_progress.Clear();
            const Outcome& outcome = m_outcomes[m_printed];
            if (outcome.state == State::kFailed)
                std::fprintf(stderr, "zr: %s\n", Printable(outcome.error).c_str());
            else if (!m_session.Options().json)
                PrintForPeople(m_session, outcome.report);
        }
    }

    void PrintJson(std::size_t done, std::size_t failed) const try {
        JsonArray results;
        for (std::size_t i = 0; i < m_tasks.size(); ++i) {
            const Outcome& outcome = m_outcomes[i];
            JsonObject result;
            result.Set("input", m_tasks[i].input);
            if (!m_tasks[i].output.empty()) result.Set("output", m_tasks[i].output);
            result.Set("done", outcome.state == State::kDone);
            if (outcome.state == State::kFailed) result.Set("error", outcome.error);
            result.Append(outcome.report.json);
            if (!outcome.report.notes.empty()) result.Set("notes", outcome.report.notes);
            results.Append(result);
        }
        JsonObject json;
        json.Set("schema", kJsonSchemaVersion).Set("command", m_command).Set("results", results);
        json.Set("done", done).Set("failed", failed).Set("left", m_tasks.size() - done - failed);
        std::fputs(json.PrettyText().c_str(), stdout);
    } catch (const std::bad_alloc&) {
        if (failed != 0) throw;
        throw ReportLost();
    }

    std::size_t Count(State state) const {
        return static_cast<std::size_t>(
            std::count_if(m_outcomes.begin(), m_outcomes.end(),
                          [state](const Outcome& outcome) { return outcome.state == state; }));
    }

    Session& m_session;
    std::string_view m_command;
    const BatchArguments& m_arguments;
    const std::vector<Task>& m_tasks;
    const Work& m_work;
    std::atomic<std::size_t> m_next = 0;
    std::atomic<std::size_t> m_finished = 0;
    std::atomic<std::size_t> m_running = 0;
    std::atomic<bool> m_isOver = false;  // start no further task
    std::mutex m_mutex;                  // guards what follows
    std::vector<Outcome> m_outcomes;
    std::exception_ptr m_fatal;  // ends the program rather than a task
    std::size_t m_printed = 0;
    Progress m_progress;
};

bool IsWanted(const fs::path& file, const BatchFiles& files) {
    const std::string name = PathToUtf8(file);
    return std::any_of(files.inputs.begin(), files.inputs.end(),
                       [&](const std::string& ending) { return HasEnding(name, ending); });
}

// The files below the folder, sorted by name; the output folder is passed over.
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
        if (m_tasks.empty()) throw UsageError("the folders hold no file to read");
        return std::move(m_tasks);
    }

private:
    // place: of the output, relative to the output folder.
    void Add(const fs::path& input, fs::path place) {
        Task task{PathToUtf8(input), ""};
        if (m_writes) {
            if (task.input == kStandardStream)
                throw UsageError("- has no name to write by: give one file and OUT");
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
              "Form of the files written to a folder or to standard output; else as they were read")
        ->group(kGroup);
    AddNumber(command, "-j,--jobs", arguments.jobs, {1, 256}, "N", "Files worked on at the same time")
        ->capture_default_str()
        ->group(kGroup);
    command.add_flag("-k,--keep-going", arguments.keepGoing, "Go on with the other files when one fails")
        ->group(kGroup);
}

std::vector<Task> PlanTasks(const BatchArguments& arguments, const BatchFiles& files, bool writes) {
    if (writes && arguments.IsSingle()) {
        if (arguments.files.size() != 2)
            throw UsageError("give one file to read and one to write, or several to read and --out-dir");
        if (!arguments.format.empty() && arguments.files[1] != kStandardStream)
            throw UsageError("--format is for --out-dir and for standard output; OUT tells its own form");
        return {{arguments.files[0], arguments.files[1]}};
    }
    return Plan(arguments, files, writes).Make();
}

int RunBatch(Session& session, std::string_view command, const BatchArguments& arguments,
             const std::vector<Task>& tasks, const Work& work) {
    return Batch(session, command, arguments, tasks, work).Run();
}

}  // namespace zr
