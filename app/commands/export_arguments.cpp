// SPDX-License-Identifier: MIT
#include "app/commands/export_arguments.h"

#include <CLI/CLI.hpp>

#include <cstdio>

#include "app/commands/session.h"

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
    {"--system-camera", vl::tk::kExportSystemCamera, true,
     "Export the host's own view camera, which frames the scene"},
    {"--no-bones", vl::tk::kExportBones, false, "Bones are no reason to keep a node"},
    {"--no-notes", vl::tk::kExportNotes, false, "Leave notes out"},
    {"--no-lines", vl::tk::kNoSecondary, true,
     "Meshes of lines alone are no reason to export a mesh (with --no-empty-meshes)"},
    {"--no-empty-meshes", vl::tk::kAllRenderables, false, "Leave meshes without faces and lines out"},
    {"--chosen-only", vl::tk::kAllChoices, false, "Of a selector's children export the selected one"},
    {"--skeleton-only", vl::tk::kSkeletonOnly, true,
     "Export nodes that move a skin without their own object"},
    {"--root", vl::tk::kGroupingRoot, true, "Put one root above several top-level nodes"},
    {"--group-split", vl::tk::kGroupSplit, true, "Give the object of a node with children a node of its own"},
    {"--geometry-split", vl::tk::kGeometrySplit, true,
     "Give moved objects nodes of their own (implies --group-split)"},
    {"--static-pivot", vl::tk::kStaticPivot, true,
     "Split turned scale axes off in a scene that is not animated"},
    {"--no-static-pivot", vl::tk::kNoStaticPivot, true, "Never split turned scale axes off"},
    {"--no-offset-controllers", vl::tk::kOffsetControllers, false,
     "Ignore the pivots of nodes that are not animated"},
    {"--no-animation", vl::tk::kIgnoreAnimation, true, "Export the pose at rest, without keys"},
    {"--no-keys", vl::tk::kExtractKeys, false, "Export no keys of nodes"},
    {"--decompose-rest", vl::tk::kDecomposeRest, true, "Decompose rest poses also without keys"},
};

constexpr BitFlag kAnimFlags[] = {
    {"--angle-axis", vl::tk::kAngleAxisKeys, true,
     "Give rotation keys as relative angle-axis values too (JSON)"},
    {"--at-least-one-key", vl::tk::kAtLeastOneKey, true,
     "Give tracks without keys one, the value at rest (JSON)"},
    {"--group-keys-only", vl::tk::kGroupKeysOnly, true, "Keys of group nodes only"},
    {"--reverse", vl::tk::kReverseTime, true, "Play backwards"},
};

void AddFlag(CLI::App& command, std::uint32_t& word, const BitFlag& flag) {
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

bool EndsWith(const std::string& text, std::string_view end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

void ExportArguments::AddTo(CLI::App& command) {
    command.add_option("scene", m_scene, "Scene to read (.gltf, .glb)")->required();
    command.add_option("out", m_out, "File to write: .glb or .gltf, or .json for the records themselves")
        ->required()
        ->check([](const std::string& name) {
            const bool known = EndsWith(name, ".glb") || EndsWith(name, ".gltf") || EndsWith(name, ".json");
            return known ? std::string() : "the output is a .glb, .gltf or .json file: " + name;
        });
    command.add_option("--animation", m_animation, "Export this animation alone (name, or index)");
    command.add_flag("--keep-all-nodes,!--drop-empty", m_keepAllNodes,
                     "Keep nodes that carry and hold nothing (default)");
    for (const BitFlag& flag : kExportFlags) AddFlag(command, m_options.exportFlags, flag);
    for (const BitFlag& flag : kAnimFlags) AddFlag(command, m_options.animFlags, flag);
    command
        .add_option("--pivot-mode", m_options.pivotMode,
                    "Pivot form that stays on its node: 0 none, 1 object, 2 group")
        ->check(CLI::Range(0, 2));
    m_rescale = command.add_option("--rescale", m_options.rescale, "Multiply times by this factor")
                    ->check(CLI::PositiveNumber);
    m_setLength = command.add_option("--length", m_length, "Bring each animation to this length, seconds")
                      ->check(CLI::PositiveNumber)
                      ->excludes(m_rescale);
    command.add_option("--up", m_up, "Up axis of the result: y (as in glTF) or z")
        ->check(CLI::IsMember({"y", "z"}));
    command.add_option("--scale", m_scale, "Factor from the scene's unit to the result's")
        ->check(CLI::PositiveNumber);
    command.add_option("--option-words", m_optionWords,
                       "The three option words EXPORT,NAME,ANIM, hexadecimal; replaces the flags above");
    m_passes.AddTo(command);
}

const ExportOptions& ExportArguments::Finish(Host& host) {
    if (!m_keepAllNodes) m_options.exportFlags &= ~std::uint32_t{vl::tk::kKeepAllNodes};
    if (m_rescale->count() != 0) m_options.animFlags |= vl::tk::kRescaleTime;
    if (m_setLength->count() != 0) {
        m_options.animFlags |= vl::tk::kSetLength;
        m_options.rescale = m_length;
    }
    m_options.sceneMatrix.Scale(vl::Vector3<double>{m_scale, m_scale, m_scale});
    if (m_up == "z") m_options.sceneMatrix.RotateX(kQuarterTurn);
    if (!m_optionWords.empty()) ReadOptionWords(m_optionWords, m_options);
    m_passes.ApplyTo(host, m_options);
    return m_options;
}

bool ExportArguments::WantsRecords() const {
    return EndsWith(m_out, ".json");
}

}  // namespace zr
