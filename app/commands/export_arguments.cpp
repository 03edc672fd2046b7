// SPDX-License-Identifier: MIT
#include "app/commands/export_arguments.h"
#include "app/commands/reduction.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <limits>
#include <string_view>

#include "app/commands/commands.h"
#include "app/commands/html_report.h"
#include "app/commands/session.h"

namespace zr {
namespace {

constexpr double kQuarterTurn = 1.5707963267948966;

constexpr Range kScales{1e-6, 1e6};
constexpr Range kDeviations{0, 1e6};
constexpr Range kTimes{0, 1e6};  // seconds
constexpr Range kFrameRates{0.01, 1000};

// A flag of the command line that sets or clears a bit.
struct BitFlag {
    const char* name;
    std::uint32_t bit;
    bool sets;
    std::string_view group;
    const char* help;
};

constexpr BitFlag kExportFlags[] = {
    {"--no-lights", vl::tk::kExportLights, false, kHierarchyGroup,
     "Leave out lights; their nodes stay as groups"},
    {"--no-cameras", vl::tk::kExportCameras, false, kHierarchyGroup,
     "Leave out cameras; their nodes stay as groups"},
    {"--system-camera", vl::tk::kExportSystemCamera, true, kHierarchyGroup,
     "Export the host's own view camera, which frames the scene"},
    {"--no-bones", vl::tk::kExportBones, false, kHierarchyGroup, "Do not keep nodes just for being bones"},
    {"--no-notes", vl::tk::kExportNotes, false, kHierarchyGroup, "Leave out notes"},
    {"--no-lines", vl::tk::kNoSecondary, true, kHierarchyGroup,
     "Leave out meshes that have only lines (with --no-empty-meshes)"},
    {"--no-empty-meshes", vl::tk::kAllRenderables, false, kHierarchyGroup,
     "Leave out meshes without faces and lines"},
    {"--chosen-only", vl::tk::kAllChoices, false, kHierarchyGroup,
     "Export only the selected child of a selector"},
    {"--skeleton-only", vl::tk::kSkeletonOnly, true, kHierarchyGroup,
     "Export nodes that move a skin without their own object"},
    {"--root", vl::tk::kGroupingRoot, true, kHierarchyGroup,
     "Put one root above several top-level nodes, for each scene"},
    {"--group-split", vl::tk::kGroupSplit, true, kHierarchyGroup,
     "Give the object of a node with children a node of its own"},
    {"--geometry-split", vl::tk::kGeometrySplit, true, kHierarchyGroup,
     "Give moved objects nodes of their own (implies --group-split)"},
    {"--static-pivot", vl::tk::kStaticPivot, true, kHierarchyGroup,
     "Split off rotated scale axes in a scene that is not animated"},
    {"--no-static-pivot", vl::tk::kNoStaticPivot, true, kHierarchyGroup,
     "Never split off rotated scale axes"},
    {"--no-offset-controllers", vl::tk::kOffsetControllers, false, kHierarchyGroup,
     "Ignore the pivots of nodes that are not animated"},
    {"--no-animation", vl::tk::kIgnoreAnimation, true, kKeysGroup, "Export the pose at rest, without keys"},
    {"--no-keys", vl::tk::kExtractKeys, false, kKeysGroup, "Export no keys of nodes"},
    {"--decompose-rest", vl::tk::kDecomposeRest, true, kHierarchyGroup,
     "Decompose rest poses even without keys"},
};

constexpr BitFlag kAnimFlags[] = {
    {"--angle-axis", vl::tk::kAngleAxisKeys, true, kKeysGroup,
     "Give rotation keys as relative angle-axis values too (JSON)"},
    {"--at-least-one-key", vl::tk::kAtLeastOneKey, true, kKeysGroup,
     "Give tracks without keys one, the value at rest (JSON)"},
    {"--group-keys-only", vl::tk::kGroupKeysOnly, true, kKeysGroup, "Export keys of group nodes only"},
    {"--reverse", vl::tk::kReverseTime, true, kTimeGroup, "Play backwards"},
};

void AddFlag(CLI::App& command, std::uint32_t& word, const BitFlag& flag) {
    command
        .add_flag_callback(
            flag.name,
            [&word, flag] {
                if (flag.sets) {
                    word |= flag.bit;
                } else {
                    word &= ~flag.bit;
                }
            },
            flag.help)
        ->group(std::string(flag.group));
}

// Three hexadecimal words: export, names, animation.
void ReadOptionWords(const std::string& text, ExportOptions& options) {
    std::uint32_t* const words[] = {&options.exportFlags, &options.nameFlags, &options.animFlags};
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::uint32_t* word : words) {
        const auto [stop, error] = std::from_chars(at, end, *word, 16);
        const bool isLast = word == words[2];
        if (error != std::errc() || (isLast ? stop != end : stop == end || *stop != ','))
            throw UsageError("--option-words takes three hexadecimal words of 32 bits: EXPORT,NAME,ANIM");
        at = stop + 1;
    }
}

std::optional<std::size_t> ReadScene(const std::string& text) {
    if (text == "all") return std::nullopt;
    std::size_t index = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), index);
    if (error != std::errc() || stop != text.data() + text.size())
        throw UsageError("--scene takes the index of a scene, or all");
    return index;
}

}  // namespace

void ExportArguments::AddTo(CLI::App& command) {
    for (const char* group : {kHierarchyGroup, kKeysGroup, kTimeGroup}) {
        for (const BitFlag& flag : kExportFlags) {
            if (flag.group == group) AddFlag(command, m_options.exportFlags, flag);
        }
        for (const BitFlag& flag : kAnimFlags) {
            if (flag.group == group) AddFlag(command, m_options.animFlags, flag);
        }
    }
    auto* drop =
        command
            .add_flag("--drop-empty", m_dropsEmpty, "Leave out nodes without an object and without children")
            ->group(kHierarchyGroup);
    command.add_flag("--keep-all-nodes", m_keepsEmpty, "Keep them, which is the default")
        ->excludes(drop)
        ->group(kHierarchyGroup);
    NodeChoice& nodes = m_options.nodes;
    AddList(command, "--only-nodes", nodes.only,
            "Export only nodes whose names match one of these patterns (*, ?, [a-z]), and what is below them")
        ->type_name("PATTERN,...")
        ->group(kNodesGroup);
    AddList(command, "--exclude", nodes.exclude,
            "Leave out nodes whose names match one of these patterns, and what is below them")
        ->type_name("PATTERN,...")
        ->group(kNodesGroup);
    AddRepeated(command, "--layer", nodes.layers, "Only nodes on this layer; may be repeated")
        ->group(kNodesGroup);
    AddNumber(command, "--pivot-mode", m_options.pivotMode, {0, 2}, "N",
              "Pivot form that stays on its node: 0 none, 1 object, 2 group")
        ->capture_default_str()
        ->group(kHierarchyGroup);
    command
        .add_option("--scene", m_scene,
                    "Export only the scene with this index, or all scenes; records hold the default scene "
                    "unless an index is given")
        ->type_name("N|all")
        ->capture_default_str()
        ->group(kHierarchyGroup);
    AddRepeated(command, "--animation", m_animations,
                "Export only this animation (name or index); may be repeated; default: all")
        ->group(kKeysGroup);
    command
        .add_option("--tolerance", m_tolerance,
                    "Then drop and refit keys within this tolerance, such as 0.1mm,0.05deg (see zr reduce)")
        ->type_name(kToleranceType)
        ->group(kKeysGroup);
    ClipOptions& clip = m_options.clip;
    AddNumber(command, "--from", clip.from, kTimes, "SECONDS",
              "Leave out what comes earlier; every animation is cut here")
        ->group(kTimeGroup);
    AddNumber(command, "--to", clip.to, kTimes, "SECONDS", "Leave out what comes later")->group(kTimeGroup);
    AddNumber(command, "--speed", clip.speed, kTimeFactors, "FACTOR", "Play this many times as fast")
        ->group(kTimeGroup);
    command.add_flag("--start-at-zero", clip.startsAtZero, "Let every animation begin at 0")
        ->group(kTimeGroup);
    AddNumber(command, "--fps", clip.frameRate, kFrameRates, "N",
              "Sample every track at this many keys per second, and at its end")
        ->group(kTimeGroup);
    m_rescale = AddNumber(command, "--rescale", m_options.rescale, kTimeFactors, "FACTOR",
                          "Multiply times by this factor")
                    ->group(kTimeGroup);
    m_setLength = AddNumber(command, "--length", m_length, kLengths, "SECONDS",
                            "Stretch or compress each animation to this length")
                      ->excludes(m_rescale)
                      ->group(kTimeGroup);
    AddChoice(command, "--up", m_up, {"y", "z"}, "Up axis of the result; y as in glTF")
        ->capture_default_str()
        ->group(kTargetGroup);
    AddNumber(command, "--scale", m_scale, kScales, "FACTOR", "Factor from the scene's unit to the result's")
        ->capture_default_str()
        ->group(kTargetGroup);
    command
        .add_option(
            "--option-words", m_optionWords,
            "The three option words in hexadecimal; they replace the options of hierarchy, keys and time")
        ->type_name("EXPORT,NAME,ANIM")
        ->group(kTargetGroup);
    command.add_flag("--force", m_force, kForceHelp);
    AddChoice(command, "--check", m_check, {"thorough", "quick", "off"},
              "How closely the motion is compared with the scene's; quick takes at most a tenth of the time")
        ->capture_default_str()
        ->group(kTargetGroup);
    m_maxDeviation = AddNumber(command, "--max-deviation", m_options.maxDeviation, kDeviations, "SHARE",
                               "Fail when the motion is off by more than this fraction of the scene's size; "
                               "with --fps only when given")
                         ->capture_default_str()
                         ->group(kTargetGroup);
    m_passes.AddTo(command);
    AddPageOption(command, m_page);
    AddBatchOptions(command, m_files, kExportFiles, "SCENE OUT");
}

const ExportOptions& ExportArguments::Finish(Host& host) {
    m_sceneIndex = ReadScene(m_scene);
    if (m_dropsEmpty) m_options.exportFlags &= ~std::uint32_t{vl::tk::kKeepAllNodes};
    if (!(m_options.clip.from < m_options.clip.to)) throw UsageError("--from must come before --to");
    if (m_options.clip.frameRate != 0 && m_maxDeviation->count() == 0)
        m_options.maxDeviation = std::numeric_limits<double>::infinity();
    if (m_rescale->count() != 0) m_options.animFlags |= vl::tk::kRescaleTime;
    if (m_setLength->count() != 0) {
        m_options.animFlags |= vl::tk::kSetLength;
        m_options.rescale = m_length;
    }
    m_options.sceneMatrix.Scale(vl::Vector3<double>{m_scale, m_scale, m_scale});
    if (m_up == "z") m_options.sceneMatrix.RotateX(kQuarterTurn);
    if (!m_optionWords.empty()) ReadOptionWords(m_optionWords, m_options);
    m_options.check = m_check == "off"        ? MotionCheck::kOff
                      : m_check == "thorough" ? MotionCheck::kThorough
                                              : MotionCheck::kQuick;
    m_passes.ApplyTo(host, m_options);
    return m_options;
}

}  // namespace zr
