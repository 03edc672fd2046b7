// SPDX-License-Identifier: MIT
#include "app/commands/program.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <new>
#include <system_error>

#include "app/commands/commands.h"
#include "app/commands/dashed_text.h"
#include "app/commands/help.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/commands/suggestion.h"
#include "app/services/strings.h"
#include "base/fatal_signals.h"
#include "base/memory_watch.h"
#include "base/text.h"
#include "host/version.h"
#include "kernix/utf.h"

namespace zr {
namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;

void AddGlobalOptions(CLI::App& app, Session& session) {
    constexpr const char* kGroup = "With every command";
    GlobalOptions& options = session.Options();
    app.add_flag("--json", options.json, "Print the answer as JSON")->group(kGroup);
    app.add_flag("-q,--quiet", options.quiet, "Print only errors and the output that was asked for")
        ->group(kGroup);
    app.add_flag("-v,--verbose", options.verbose, "Also print the module's log")->group(kGroup);
    app.add_flag("--no-clobber", options.noClobber, "Never replace an existing file")->group(kGroup);
    app.add_flag("--allow-outside", options.load.allowOutside,
                 "Also read files of a scene that lie outside its folder")
        ->group(kGroup);
    constexpr Range kMemory{1, 1e6};
    auto* memory = app.add_option_function<double>(
                          "--max-memory",
                          [&options](double mebibytes) {
                              constexpr double kMebibyte = 1 << 20;
                              options.load.maxMemory = static_cast<std::uint64_t>(mebibytes * kMebibyte);
                          },
                          Join("Memory that a scene or text may take; default: 256, or 32 times its size if "
                               "that is more (",
                               Text(kMemory), ")"))
                       ->type_name("MIB")
                       ->group(kGroup);
    CheckRange(*memory, kMemory);
    app.add_flag("--decode", options.compressedData.makePlain,
                 "Write data compressed by meshopt, Draco or quantization uncompressed")
        ->group(kGroup);
    app.add_flag("--strict", options.strict, "Treat content that cannot be read as an error")->group(kGroup);
    app.add_option("--language", options.language, "Language of the module's texts; default: the user's")
        ->type_name("en|de|fr|ja|zh")
        ->check([](const std::string& language) {
            return kernix::LanguageTable(language) ? std::string()
                                                   : Join("unknown language \"", language, "\"");
        })
        ->group(kGroup);
}

std::string VersionText(Session& session) {
    Host& host = session.GetHost();
    return Join("zr ", ZR_VERSION, "\nmodule ", kernix::ToUtf8(host.ModuleVersion()), ", ",
                kernix::ToUtf8(host.ModuleDescription()), "\nhost interface ", host.InterfaceVersion());
}

// The innermost subcommand that was parsed.
const CLI::App& LastCommand(const CLI::App& app) {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
    return *command;
}

// Describes the first argument that was not understood.
std::string UnknownWord(const CLI::App& app) {
    const CLI::App* const command = &LastCommand(app);
    const std::vector<std::string> rest = app.remaining(true);
    std::vector<std::string> known;
    const std::string& word = rest.front();
    const bool isOption = word.starts_with('-');
    if (isOption) {
        for (const OptionGroup& group : OptionGroupsOf(*command)) {
            for (const CLI::Option* option : group.options) {
                for (const std::string& name : option->get_lnames()) known.push_back("--" + name);
            }
        }
    } else {
        for (const CLI::App* each : command->get_subcommands({})) known.push_back(each->get_name());
    }
    const char* const kind = isOption ? "option" : known.empty() ? "argument" : "command";
    std::string text = Join(isOption || known.empty() ? "unexpected " : "unknown ", kind, " \"", word, "\"");
    const std::string nearest = NearestWord(word, known);
    if (!nearest.empty()) text += Join("; did you mean \"", nearest, "\"?");
    return text;
}

std::string UsageText(const CLI::App& app, const CLI::ParseError& error) {
    const auto is = [&error](CLI::ExitCodes code) { return error.get_exit_code() == static_cast<int>(code); };
    const bool isMissing = is(CLI::ExitCodes::RequiredError);
    // An argument often seems to be missing because another is mistyped.
    if (!app.remaining(true).empty() && (isMissing || is(CLI::ExitCodes::ExtrasError)))
        return UnknownWord(app);
    std::string text = error.what();
    if (is(CLI::ExitCodes::ArgumentMismatch))
        return Join(text.substr(0, text.find(':')),
                    text.ends_with(" missing") ? ": its value is missing" : ": given more than once");
    if (!isMissing) return text;
    // The parser names operands by words that the usage does not show.
    return Join(text.starts_with('-') ? text : "missing argument",
                "; usage: ", UsagesOf(LastCommand(app)).front());
}

bool NamesFiles(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    return std::ranges::any_of(std::array{kSceneType, kFileType, kFolderType, kOutType},
                               [&](const char* each) { return type.find(each) != type.npos; });
}

// An empty name is most often a shell variable that was never set.
void RefuseEmptyNames(const CLI::App& command) {
    for (const CLI::Option* option : command.get_options()) {
        const std::vector<std::string>& values = option->results();
        if (NamesFiles(*option) && std::find(values.begin(), values.end(), "") != values.end())
            throw UsageError(Join(option->get_positional() ? option->get_type_name() : option->get_name(),
                                  ": the file name is empty"));
    }
}

void PrintError(std::string_view text) try {
    std::fprintf(stderr, "zr: %s\n", Printable(text).c_str());
} catch (const std::bad_alloc&) {
    std::fputs("zr: out of memory\n", stderr);
}

int Run(int argc, const char* const* argv) {
    Session session;
    const std::unique_ptr<CLI::App> app = MakeCommandLine(session);
    try {
        std::vector<std::string> words(argv + 1, argv + argc);
        MarkDashedText(*app, words);
        std::reverse(words.begin(), words.end());
        app->parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            app->exit(error);
            return kDone;
        }
        PrintError(UsageText(*app, error));
        return kUsage;
    }
    RefuseEmptyNames(LastCommand(*app));
    NoteMissingMemory();
    return session.Run();
}

// Output is buffered, so only flushing shows whether it could be written.
int Flushed(int status) {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    const int error = errno;
    if (status == kDone) PrintError("standard output: " + std::generic_category().message(error));
    return status == kDone ? kFailed : status;
}

}  // namespace

std::unique_ptr<CLI::App> MakeCommandLine(Session& session) {
    auto app = std::make_unique<CLI::App>(
        "Prepares, cleans and exports animated glTF scenes, and turns text into geometry.", "zr");
    app->formatter(std::make_shared<HelpFormatter>());
    app->set_help_flag("-h,--help", "Print this help");
    app->set_version_flag(
        "-V,--version", [&session] { return VersionText(session); },
        "Print the versions of the program, the module and the host interface");
    app->allow_windows_style_options(false);  // a name may begin with a slash
    app->require_subcommand(1);
    app->fallthrough();
    AddGlobalOptions(*app, session);
    for (const auto& [group, add] : kCommands) {
        add(*app, session);
        app->get_subcommands({}).back()->group(group);
    }
    app->footer("zr help COMMAND describes a command.");
    return app;
}

int RunProgram(int argc, const char* const* argv) {
    int status = kFailed;
    EndWithoutMemory();
    try {
        status = Run(argc, argv);
    } catch (const Stopped&) {
        EndWork();
        std::fputs(kStoppedLine, stderr);
        status = kStoppedStatus;
    } catch (const UsageError& error) {
        PrintError(error.what());
        status = kUsage;
    } catch (const ReportLost&) {
        std::fputs("zr: the work was done, but memory ran out while reporting it\n", stderr);
    } catch (const std::bad_alloc&) {
        std::fputs("zr: out of memory\n", stderr);
    } catch (const std::exception& error) {
        PrintError(MissesMemory() ? "out of memory" : error.what());
    }
    return Flushed(status);
}

}  // namespace zr
