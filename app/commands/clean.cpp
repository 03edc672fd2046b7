// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <set>
#include <thread>

#include "app/commands/clean_dialog.h"
#include "app/commands/clean_report.h"
#include "app/commands/commands.h"
#include "app/commands/progress.h"
#include "app/commands/session.h"

namespace zr {

namespace {

namespace fs = std::filesystem;

struct Arguments {
    std::vector<std::string> files;
    std::string outDir;
    std::vector<std::string> only;
    std::vector<std::string> skip;
    bool all = false;
    bool dryRun = false;
    bool json = false;
    bool explain = false;
    bool dialog = false;
    unsigned jobs = 1;
    CleanOptions options;
};

struct Job {
    fs::path scene;
    fs::path output;  // empty: nothing is written
    CleanReport report;
    std::exception_ptr error;
    bool done = false;
};

std::size_t StepNamed(const std::string& name) {
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        if (kCleanStepInfo[step].name == name) return step;
    }
    std::string known;
    for (const CleanStepInfo& info : kCleanStepInfo) {
        if (!known.empty()) known += ", ";
        known += info.name;
    }
    throw UsageError("there is no operation \"" + name + "\"; the operations are " + known);
}

std::array<bool, kCleanSteps> ChosenSteps(const Arguments& arguments) {
    std::array<bool, kCleanSteps> steps{};
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        steps[step] = arguments.only.empty() && (arguments.all || kCleanStepInfo[step].unseen);
    }
    for (const std::string& name : arguments.only) steps[StepNamed(name)] = true;
    for (const std::string& name : arguments.skip) steps[StepNamed(name)] = false;
    return steps;
}

std::vector<Job> MakeJobs(const Arguments& arguments) {
    std::vector<Job> jobs;
    const auto add = [&](const fs::path& scene, fs::path output) {
        jobs.emplace_back();
        jobs.back().scene = scene;
        jobs.back().output = std::move(output);
    };
    if (arguments.dryRun) {
        for (const std::string& file : arguments.files) add(file, {});
    } else if (arguments.outDir.empty()) {
        if (arguments.files.size() != 2) {
            throw UsageError("give one scene and the file to write, or several scenes and --out-dir");
        }
        add(arguments.files[0], arguments.files[1]);
    } else {
        std::set<fs::path> outputs;
        for (const std::string& file : arguments.files) {
            const fs::path output = fs::path(arguments.outDir) / fs::path(file).filename();
            if (!outputs.insert(output).second) {
                throw UsageError("two scenes are named " + output.filename().string() +
                                 ", and both would be written to " + output.string());
            }
            add(file, output);
        }
        fs::create_directories(arguments.outDir);
    }
    return jobs;
}

// The size of a scene with the files that it names is not known without it; the scene's own file tells
// enough.
std::uintmax_t SizeOf(const fs::path& file) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    return error ? 0 : size;
}

class CleanRun {
public:
    CleanRun(Session& session, const Arguments& arguments)
        : m_session(session),
          m_arguments(arguments),
          m_environment(session.GetHost()),
          m_jobs(MakeJobs(arguments)),
          m_progress("cleaning") {
        m_options = arguments.options;
        m_options.steps = ChosenSteps(arguments);
    }

    int Run() {
        std::vector<std::thread> others;
        const std::size_t workers = std::min<std::size_t>(m_arguments.jobs, m_jobs.size());
        for (std::size_t i = 1; i < workers; ++i) others.emplace_back([this] { Work(false); });
        Work(true);
        for (std::thread& other : others) other.join();
        m_progress.reset();
        return Report();
    }

private:
    void Work(bool showProgress) {
        const vl::Ref<zr_CLEANER> cleaner = m_session.GetHost().Create<zr_CLEANER>(kTypeCleaner);
        for (std::size_t next; (next = m_next++) < m_jobs.size() && !m_session.IsStopRequested();) {
            Job& job = m_jobs[next];
            try {
                Clean(job, *cleaner, [&](double done) {
                    if (!showProgress) return;
                    m_progress->Show((static_cast<double>(m_finished) + done) /
                                     static_cast<double>(m_jobs.size()));
                });
            } catch (const Stopped&) {
                // The job is not done.
            } catch (...) {
                job.error = std::current_exception();
            }
            ++m_finished;
        }
    }

    void Clean(Job& job, zr_CLEANER& cleaner, const std::function<void(double)>& progress) {
        // The parts of the time, roughly: loading, cleaning, writing.
        constexpr double kLoaded = 0.25, kCleaned = 0.85;
        const auto onProgress = [&](double done) {
            m_session.ThrowIfStopped();
            progress(kLoaded + (kCleaned - kLoaded) * done);
        };
        gltf::Document document = m_session.LoadDocument(job.scene);
        onProgress(0);
        job.report.scene = job.scene;
        job.report.bytesBefore = SizeOf(job.scene);
        job.report.result =
            CleanDocument(document, cleaner, m_environment, m_session.GetContext(), m_options, onProgress);
        m_session.ThrowIfStopped();
        if (!job.output.empty()) {
            document.Save(job.output, [&] { m_session.ThrowIfStopped(); });
            job.report.output = job.output;
            job.report.bytesAfter = SizeOf(job.output);
        }
        job.done = true;
    }

    int Report() const {
        int status = 0;
        std::vector<std::string> objects;
        for (const Job& job : m_jobs) {
            if (job.error) {
                status = 1;
                PrintError(job);
            }
            if (!job.done) continue;
            std::fputs(CleanRefusals(job.report).c_str(), stderr);
            if (m_arguments.json) {
                objects.push_back(CleanReportJson(job.report, m_arguments.explain));
            } else {
                std::fputs(CleanReportText(job.report, m_arguments.dryRun, m_arguments.explain).c_str(),
                           stdout);
            }
        }
        if (m_arguments.json) PrintArray(objects);
        // A stop that came after the last scene was written stops nothing.
        if (std::any_of(m_jobs.begin(), m_jobs.end(), [](const Job& job) { return !job.done && !job.error; }))
            throw Stopped();
        return status;
    }

    static void PrintError(const Job& job) {
        try {
            std::rethrow_exception(job.error);
        } catch (const std::bad_alloc&) {
            std::fprintf(stderr, "zr: %s: out of memory\n", job.scene.c_str());
        } catch (const std::exception& error) {
            std::fprintf(stderr, "zr: %s\n", error.what());
        }
    }

    static void PrintArray(const std::vector<std::string>& objects) {
        std::fputs("[", stdout);
        for (std::size_t i = 0; i < objects.size(); ++i)
            std::printf("%s\n%s", i == 0 ? "" : ",", objects[i].c_str());
        std::fputs("\n]\n", stdout);
    }

    Session& m_session;
    const Arguments& m_arguments;
    EnvironmentService m_environment;
    CleanOptions m_options;
    std::vector<Job> m_jobs;
    std::optional<Progress> m_progress;
    std::atomic<std::size_t> m_next = 0;
    std::atomic<std::size_t> m_finished = 0;
};

int RunDialog(Session& session, const Arguments& arguments) {
    const Job job = MakeJobs(arguments).front();
    CleanInDialog(session.LoadDocument(job.scene), job.output, session.GetHost(), arguments.options);
    return 0;
}

}  // namespace

void AddCleanCommand(CLI::App& app, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command = app.add_subcommand("clean", "Takes unused and repeated content out of scenes");
    std::string steps = "Operations:";
    for (const CleanStepInfo& info : kCleanStepInfo) {
        steps += "\n  " + std::string(info.name) + ": " + std::string(info.what) +
                 (info.unseen ? "" : " (with --all)");
    }
    command->footer(steps);
    command->add_option("files", arguments->files, "SCENE OUT; with --out-dir or --dry-run: SCENE...")
        ->required()
        ->type_name("FILE");
    command->add_option("--out-dir", arguments->outDir,
                        "Write every scene into this folder, under its own name");
    CLI::Option* dialog =
        command->add_flag("--dialog", arguments->dialog, "Choose in a window what goes, and watch it go");
    command->add_flag("--all", arguments->all, "Also metadata, model views, notes and the environment");
    command->add_option("--only", arguments->only, "Only these operations, separated by commas")
        ->delimiter(',');
    command->add_option("--skip", arguments->skip, "All but these operations, separated by commas")
        ->delimiter(',');
    command->add_option("--keep", arguments->options.keep,
                        "Nodes, materials and animations whose name matches this pattern stay (*, ?, [a-z])");
    command->add_flag("--keep-data", arguments->options.keepData,
                      "Leave in the file what nothing refers to: meshes, skins, textures, binary data ...");
    command->add_flag("--force", arguments->options.force,
                      "Remove also where an extension that is not known could refer to what goes");
    command->add_flag("--dry-run", arguments->dryRun, "Write nothing; list what would go");
    command->add_flag("--explain", arguments->explain, "List what stays only because something refers to it");
    command->add_flag("--json", arguments->json, "The result as JSON");
    command->add_option("--jobs", arguments->jobs, "Scenes cleaned at the same time")
        ->check(CLI::Range(1, 256))
        ->type_name("N");
    for (const char* other :
         {"--out-dir", "--all", "--only", "--skip", "--dry-run", "--explain", "--json", "--jobs"}) {
        dialog->excludes(command->get_option(other));
    }
    command->callback([&session, arguments] {
        session.SetCommand([&session, arguments] {
            return arguments->dialog ? RunDialog(session, *arguments) : CleanRun(session, *arguments).Run();
        });
    });
}

}  // namespace zr
