// SPDX-License-Identifier: MIT
#include "app/commands/batch.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

#include "app/commands/options.h"
#include "app/commands/progress.h"
#include "app/commands/session.h"
#include "base/fatal_signals.h"
#include "base/memory_watch.h"
#include "base/text.h"

namespace zr {
namespace {

enum class State { kWaiting, kDone, kFailed };

// The outcome of a task so far.
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
                // Fewer threads will do.
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
        if (--m_running > 0) BeginWork();  // the other tasks' work can still be stopped
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
    std::mutex m_mutex;                  // guards the members below
    std::vector<Outcome> m_outcomes;
    std::exception_ptr m_fatal;  // ends the program rather than a task
    std::size_t m_printed = 0;
    Progress m_progress;
};

}  // namespace

int RunBatch(Session& session, std::string_view command, const BatchArguments& arguments,
             const std::vector<Task>& tasks, const Work& work) {
    return Batch(session, command, arguments, tasks, work).Run();
}

}  // namespace zr
