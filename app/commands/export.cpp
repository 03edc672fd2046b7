// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "app/commands/animation_choice.h"
#include "app/commands/commands.h"
#include "app/commands/pass_options.h"
#include "app/commands/progress.h"
#include "app/commands/session.h"
#include "app/export/export_scene.h"

namespace zr {
namespace {

constexpr double kQuarterTurn = 1.5707963267948966;

// A flag of the command line that sets or clears a bit.
struct BitFlag {
    const char* name;
    std::uint32_t bit;
    bool sets;
    const char* help;
};

constexpr BitFlag kExportFlags[] = {
    {"--no-lights", vl::tk::kExportLights, false, "Leave lights out; their nodes stay as groups"},
    {"--no-cameras", vl::tk::kExportCameras, false, "Leave cameras out; their nodes stay as groups"},
    {"--system-camera", vl::tk::kExportSystemCamera, true, "Export the host's own view camera, which frames the scene"},
    {"--no-bones", vl::tk::kExportBones, false, "Bones are no reason to keep a node"},
    {"--no-notes", vl::tk::kExportNotes, false, "Leave notes out"},
    {"--no-lines", vl::tk::kNoSecondary, true, "Meshes of lines alone are no reason to export a mesh (with --no-empty-meshes)"},
    {"--no-empty-meshes", vl::tk::kAllRenderables, false, "Leave meshes without faces and lines out"},
    {"--chosen-only", vl::tk::kAllChoices, false, "Of a selector's children export the selected one"},
    {"--skeleton-only", vl::tk::kSkeletonOnly, true, "Export nodes that move a skin without their own object"},
    {"--root", vl::tk::kGroupingRoot, true, "Put one root above several top-level nodes"},
    {"--group-split", vl::tk::kGroupSplit, true, "Give the object of a node with children a node of its own"},
    {"--geometry-split", vl::tk::kGeometrySplit, true, "Give moved objects nodes of their own (implies --group-split)"},
    {"--static-pivot", vl::tk::kStaticPivot, true, "Split turned scale axes off in a scene that is not animated"},
    {"--no-static-pivot", vl::tk::kNoStaticPivot, true, "Never split turned scale axes off"},
    {"--no-offset-controllers", vl::tk::kOffsetControllers, false, "Ignore the pivots of nodes that are not animated"},
    {"--no-animation", vl::tk::kIgnoreAnimation, true, "Export the pose at rest, without keys"},
    {"--no-keys", vl::tk::kExtractKeys, false, "Export no keys of nodes"},
    {"--decompose-rest", vl::tk::kDecomposeRest, true, "Decompose rest poses also without keys"},
};

constexpr BitFlag kAnimFlags[] = {
    {"--angle-axis", vl::tk::kAngleAxisKeys, true, "Give rotation keys as relative angle-axis values too (JSON)"},
    {"--group-keys-only", vl::tk::kGroupKeysOnly, true, "Keys of group nodes only"},
    {"--reverse", vl::tk::kReverseTime, true, "Play backwards"},
};

struct ExportArguments {
    std::string scene;
    std::string out;
    std::string animation;
    bool keepAllNodes = true;
    float length = 0;
    std::string up = "y";
    double scale = 1;
    std::string optionWords;
    ExportOptions options;
    PassOptions passes;
};

void AddFlags(CLI::App& command, std::uint32_t& word, const BitFlag& flag) {
    command.add_flag_callback(
        flag.name,
        [&word, flag] {
            if (flag.sets) {
                word |= flag.bit;
            } else {
                word &= ~flag.bit;
            }
        },
        flag.help);
}

// Three hexadecimal words: export, names, animation.
void ReadOptionWords(const std::string& text, ExportOptions& options) {
    unsigned words[3];
    char rest = 0;
    if (std::sscanf(text.c_str(), "%x,%x,%x%c", &words[0], &words[1], &words[2], &rest) != 3) {
        throw UsageError("--option-words takes three hexadecimal words: EXPORT,NAME,ANIM");
    }
    options.exportFlags = words[0];
    options.nameFlags = words[1];
    options.animFlags = words[2];
}

void FinishOptions(const CLI::App& command, ExportArguments& arguments) {
    ExportOptions& options = arguments.options;
    if (!arguments.keepAllNodes) options.exportFlags &= ~std::uint32_t{vl::tk::kKeepAllNodes};
    if (command.count("--rescale") != 0) options.animFlags |= vl::tk::kRescaleTime;
    if (command.count("--length") != 0) {
        options.animFlags |= vl::tk::kSetLength;
        options.rescale = arguments.length;
    }
    options.sceneMatrix.Scale(vl::Vector3<double>{arguments.scale, arguments.scale, arguments.scale});
    if (arguments.up == "z") options.sceneMatrix.RotateX(kQuarterTurn);
    if (!arguments.optionWords.empty()) ReadOptionWords(arguments.optionWords, options);
}

bool EndsWith(const std::string& text, std::string_view end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

int RunExport(Session& session, ExportArguments& arguments) {
    arguments.passes.ApplyTo(session.GetHost(), arguments.options);
    LoadedScene loaded(gltf::Document::Load(gltf::PathOf(arguments.scene)));
    session.ThrowIfStopped();
    kernix::SceneModel& scene = loaded.Scene();
    if (!arguments.animation.empty()) {
        kernix::AnimationModel* chosen = ChooseAnimation(scene, arguments.animation);
        for (kernix::AnimationModel* animation : AnimationsOf(scene)) {
            if (animation != chosen) scene.DeleteAnimation(animation);
        }
        scene.SetActiveAnimation(chosen);
    }
    const auto out = gltf::PathOf(arguments.out);
    Progress bar("export");
    MotionReport report;
    // Paths from the root grow with the depth of the scene: the map is made only when it is asked for.
    std::string renameMap;
    std::string* const wantedMap = arguments.passes.RenameMapFile().empty() ? nullptr : &renameMap;
    if (EndsWith(arguments.out, ".json")) {
        report = ExportRecords(session.GetHost(), loaded, arguments.options, out, wantedMap);
    } else {
        const auto onProgress = [&](double done) {
            session.ThrowIfStopped();
            bar.Show(done);
        };
        report = ExportScene(session.GetHost(), loaded, arguments.options, onProgress, wantedMap);
        session.ThrowIfStopped();
        loaded.Document().Save(out);
    }
    if (wantedMap != nullptr) {
        gltf::FileTransaction files;
        files.Add(gltf::PathOf(arguments.passes.RenameMapFile()), gltf::BytesOf(renameMap));
        files.Commit();
    }
    std::printf("%s\n", Describe(report).c_str());
    return 0;
}

}  // namespace

void AddExportCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("export", "Prepare a scene for an exporter and write the result");
    auto arguments = std::make_shared<ExportArguments>();
    command->add_option("scene", arguments->scene, "Scene to read (.gltf, .glb)")->required();
    command->add_option("out", arguments->out, "File to write: .glb or .gltf, or .json for the records themselves")
        ->required()
        ->check([](const std::string& name) {
            const bool known = EndsWith(name, ".glb") || EndsWith(name, ".gltf") || EndsWith(name, ".json");
            return known ? std::string() : "the output is a .glb, .gltf or .json file: " + name;
        });
    command->add_option("--animation", arguments->animation, "Export this animation alone (name, or index)");
    command->add_flag("--keep-all-nodes,!--drop-empty", arguments->keepAllNodes,
                      "Keep nodes that carry and hold nothing (default)");
    for (const BitFlag& flag : kExportFlags) AddFlags(*command, arguments->options.exportFlags, flag);
    for (const BitFlag& flag : kAnimFlags) AddFlags(*command, arguments->options.animFlags, flag);
    command->add_option("--pivot-mode", arguments->options.pivotMode, "Pivot form that stays on its node: 0 none, 1 object, 2 group")
        ->check(CLI::Range(0, 2));
    auto* rescale = command->add_option("--rescale", arguments->options.rescale, "Multiply times by this factor")
                        ->check(CLI::PositiveNumber);
    command->add_option("--length", arguments->length, "Bring each animation to this length, seconds")
        ->check(CLI::PositiveNumber)
        ->excludes(rescale);
    command->add_option("--up", arguments->up, "Up axis of the result: y (as in glTF) or z")->check(CLI::IsMember({"y", "z"}));
    command->add_option("--scale", arguments->scale, "Factor from the scene's unit to the result's")->check(CLI::PositiveNumber);
    command->add_option("--option-words", arguments->optionWords,
                        "The three option words EXPORT,NAME,ANIM, hexadecimal; replaces the flags above");
    arguments->passes.AddTo(*command);
    command->callback([command, arguments, &session] {
        session.SetCommand([command, arguments, &session] {
            FinishOptions(*command, *arguments);
            return RunExport(session, *arguments);
        });
    });
}

}  // namespace zr
