// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <optional>

#include "app/commands/commands.h"
#include "app/commands/export_arguments.h"
#include "app/commands/progress.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_choice.h"
#include "app/operations/export/export_scene.h"

namespace zr {
namespace {

int RunExport(Session& session, ExportArguments& arguments) {
    const ExportOptions& options = arguments.Finish(session.GetHost());
    std::optional<Progress> bar("export");
    // The parts of the time, roughly: loading, making the scene, exporting, writing.
    constexpr double kLoaded = 0.25, kSceneMade = 0.5, kExported = 0.85;
    const auto advance = [&](double done) {
        session.ThrowIfStopped();
        bar->Show(done);
    };
    gltf::Document document = session.LoadDocument(PathFromUtf8(arguments.Scene()));
    SceneOptions sceneOptions;
    sceneOptions.progress = [&](double done) { advance(kLoaded + (kSceneMade - kLoaded) * done); };
    LoadedScene loaded(std::move(document), sceneOptions);
    advance(kSceneMade);
    kernix::SceneModel& scene = loaded.Scene();
    if (!arguments.Animation().empty()) {
        kernix::AnimationModel* chosen = ChooseAnimation(scene, arguments.Animation());
        for (kernix::AnimationModel* animation : AnimationsOf(scene)) {
            if (animation != chosen) scene.DeleteAnimation(animation);
        }
        scene.SetActiveAnimation(chosen);
    }
    const auto out = PathFromUtf8(arguments.Out());
    MotionReport report;
    // Paths from the root grow with the depth of the scene: the map is made only when it is asked for.
    std::string renameMap;
    std::string* const wantedMap = arguments.RenameMapFile().empty() ? nullptr : &renameMap;
    FileTransaction files;
    OutputFile* const mapFile =
        wantedMap != nullptr ? &files.Create(PathFromUtf8(arguments.RenameMapFile())) : nullptr;
    if (arguments.WantsRecords()) {
        report = ExportRecords(session.GetHost(), loaded, options, files.Create(out), wantedMap);
    } else {
        const auto onProgress = [&](double done) { advance(kSceneMade + (kExported - kSceneMade) * done); };
        report = ExportScene(session.GetHost(), loaded, options, onProgress, wantedMap);
        session.ThrowIfStopped();
        loaded.Document().Save(out, files);
    }
    if (mapFile != nullptr) mapFile->Write(renameMap);
    session.ThrowIfStopped();
    files.Commit();
    bar.reset();
    if (!report.unreadKeys.empty()) {
        std::fprintf(stderr, "zr: %s: %s\n", arguments.Scene().c_str(), report.unreadKeys.c_str());
    }
    std::printf("%s\n", Describe(report).c_str());
    return 0;
}

}  // namespace

void AddExportCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("export", "Prepare a scene for an exporter and write the result");
    auto arguments = std::make_shared<ExportArguments>();
    arguments->AddTo(*command);
    command->callback([arguments, &session] {
        session.SetCommand([arguments, &session] { return RunExport(session, *arguments); });
    });
}

}  // namespace zr
