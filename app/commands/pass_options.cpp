// SPDX-License-Identifier: MIT
#include "app/commands/pass_options.h"

#include <CLI/CLI.hpp>

#include <map>

#include "app/commands/session.h"
#include "app/operations/export/tool_run.h"
#include "app/services/settings_file.h"

namespace zr {

namespace {

const std::map<std::string, std::uint32_t> kTargets = {
    {"records", vl::tk::kCameraTargetRecords | vl::tk::kLightTargetRecords},
    {"keys", vl::tk::kCameraTargetKeys | vl::tk::kLightTargetKeys},
    {"camera-records", vl::tk::kCameraTargetRecords},
    {"light-records", vl::tk::kLightTargetRecords},
    {"camera-keys", vl::tk::kCameraTargetKeys},
    {"light-keys", vl::tk::kLightTargetKeys},
};

const std::map<std::string, std::uint32_t> kNames = {
    {"unique", vl::tk::kNamesUnique},       {"exact-case", vl::tk::kNamesExactCase},
    {"wide", vl::tk::kNamesWide},           {"keep-characters", vl::tk::kNamesKeepCharacters},
    {"digits", vl::tk::kNamesLeadingDigit},
};

}  // namespace

void PassOptions::AddTo(CLI::App& command) {
    command.add_flag(
        "--merge-keys", m_mergeKeys,
        "Drop keys that lie on the straight line between their neighbours, but for float rounding");
    command.add_flag("--resample", m_resample, "Give the three tracks of a node keys at the same times");
    command.add_flag("--flip", m_flip, "Exchange the Y and Z axes");
    command
        .add_option(
            "--targets", m_targets,
            "What cameras and lights aim at: nodes of their own (records), or further keys of the camera "
            "or light (keys); camera-records and the like for one kind alone")
        ->delimiter(',')
        ->expected(1)
        ->take_all()
        ->check(CLI::IsMember(kTargets));
    command.add_flag("--assign-names", m_assignNames,
                     "Name nodes by the tools' rules (implied by --names, --max-name and --rename)");
    command
        .add_option(
            "--names", m_names,
            "Name nodes by these rules: unique, exact-case, wide, keep-characters, digits (a digit may come "
            "first)")
        ->delimiter(',')
        ->expected(1)
        ->take_all()
        ->check(CLI::IsMember(kNames));
    command.add_option("--max-name", m_maxName, "Greatest length of node names (default 32)")
        ->check(CLI::Range(4, 512));
    command
        .add_option("--max-material-name", m_maxMaterialName,
                    "Name materials, with at most so many characters")
        ->check(CLI::Range(3, 511));
    command.add_option("--settings", m_settings,
                       "The user's animation settings: an INI file with a section anim");
    command
        .add_option("--rename", m_renames,
                    "PATTERN=REPLACEMENT: change names by a regular expression; may be repeated")
        ->expected(1)
        ->take_all();
    command.add_option("--rename-map", m_renameMap,
                       "Write a JSON file that tells the exported name of every original name and path");
}

void PassOptions::ApplyTo(Host& host, ExportOptions& options) {
    if (m_mergeKeys) options.exportFlags |= vl::tk::kMergeKeys;
    if (m_resample) options.animFlags |= vl::tk::kResampleKeys;
    if (m_flip) options.exportFlags |= vl::tk::kFlipAxes;
    for (const std::string& targets : m_targets) options.exportFlags |= kTargets.at(targets);

    m_assignNames = m_assignNames || !m_names.empty() || m_maxName != 0 || !m_renames.empty();
    if (m_assignNames) options.exportFlags |= vl::tk::kAssignNames;
    for (const std::string& name : m_names) options.nameFlags |= kNames.at(name);
    if (m_maxName != 0) options.maxNameLength = m_maxName;
    if (m_maxMaterialName != 0) options.maxMaterialNameLength = m_maxMaterialName;
    try {
        for (const std::string& rule : m_renames) m_rules.Add(rule);
    } catch (const std::invalid_argument& error) {
        throw UsageError(std::string("--rename: ") + error.what());
    }
    if (!m_renames.empty()) {
        options.rename = RenameRules::Rename;
        options.renameContext = &m_rules;
    }
    if (!m_settings.empty()) ApplySettings(host, options);
}

// The tool itself knows what the settings mean.
void PassOptions::ApplySettings(Host& host, ExportOptions& options) const {
    SettingsFile settings(m_settings);
    const Tool tool = host.Create<vl::tk::Serializer>("TKSAVE");
    tool->m_dwExportFlags = options.exportFlags;
    tool->LoadSettings(&settings, "");
    options.exportFlags = tool->m_dwExportFlags;
    constexpr std::uint32_t kTime = vl::tk::kRescaleTime | vl::tk::kSetLength | vl::tk::kReverseTime;
    if ((options.animFlags & kTime) == 0) {
        options.animFlags |= tool->m_dwAnimFlags;
        options.rescale = tool->m_fRescale;
    }
}

}  // namespace zr
