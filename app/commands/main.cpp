// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <cstdio>

#include "app/commands/commands.h"
#include "app/commands/large_heap.h"
#include "app/commands/session.h"

namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;
constexpr int kStopped = 130;

int RunCommand(zr::Session& session) {
    try {
        return session.Run();
    } catch (const zr::Stopped&) {
        std::fprintf(stderr, "zr: stopped\n");
        return kStopped;
    } catch (const zr::UsageError& error) {
        std::fprintf(stderr, "zr: %s\n", error.what());
        return kUsage;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "zr: out of memory\n");
        return kFailed;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zr: %s\n", error.what());
        return kFailed;
    }
}

}  // namespace

int main(int argc, char** argv) {
    zr::UseLargeHeap();
    zr::Session session;
    CLI::App app("Prepares, cleans and exports animated glTF scenes, and turns text into geometry.", "zr");
    app.require_subcommand(1);
    app.add_option("--language", session.m_language, "Language of the module's texts: en, de, fr, ja or zh");
    app.add_flag("--allow-outside", session.m_loadOptions.allowOutside,
                 "Also read files of a scene that stand outside its folder");
    app.fallthrough();
    zr::AddExportCommand(app, session);
    zr::AddInfoCommand(app, session);
    zr::AddTreeCommand(app, session);
    zr::AddTextCommand(app, session);
    zr::AddCleanCommand(app, session);
    zr::AddDescribeCommand(app, session);
    zr::AddAnimationsCommand(app, session);
    zr::AddRemoveAnimationsCommand(app, session);
    zr::AddMergeCommand(app, session);
    zr::AddSplitCommand(app, session);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : kUsage;
    }
    return RunCommand(session);
}
