// SPDX-License-Identifier: MIT
#include "app/commands/pass_options.h"

#include <CLI/CLI.hpp>

#include <map>

#include "app/commands/session.h"
#include "app/operations/export/tool_run.h"
#include "app/services/settings_file.h"
#include "base/error.h"
#include "base/file.h"
#include "base/text.h"

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

std::vector<std::string> WordsOf(const std::map<std::string, std::uint32_t>& table) {
    std::vector<std::string> words;
    for (const auto& [word, bits] : table) words.push_back(word);
    return words;
}

void CheckSetting(const std::string& file, float value, Range range) {
    if (range.least <= value && value <= range.greatest) return;
    throw Error(file, "", Join("the time factor or length is not a number from ", Text(range)));
}

}  // namespace

void PassOptions::AddTo(CLI::App& command) {
    command
        .add_flag("--merge-keys", m_mergeKeys,
                  "Drop keys that lie on the straight line between their neighbours, up to float rounding")
        ->group(kKeysGroup);
    command.add_flag("--resample", m_resample, "Give the three tracks of a node keys at the same times")
        ->group(kKeysGroup);
    AddChoices(command, "--targets", m_targets, WordsOf(kTargets),
               "What cameras and lights aim at: nodes of their own (records), or further keys of the camera "
               "or light (keys); camera-records and so on for one kind only; separated by commas")
        ->group(kTargetGroup);
    command.add_flag("--flip", m_flip, "Exchange the Y and Z axes")->group(kTargetGroup);
    command
        .add_option("--settings", m_settings,
                    "The user's animation settings: an INI file with a section anim")
        ->type_name(kFileType)
        ->group(kTimeGroup);
    command
        .add_flag("--assign-names", m_assignNames,
                  "Name nodes by the tools' rules (implied by --names, --max-name and --rename)")
        ->group(kNamesGroup);
    AddChoices(command, "--names", m_names, WordsOf(kNames),
               "Name nodes by these rules, separated by commas; digits: a digit may come first")
        ->group(kNamesGroup);
    AddNumber(command, "--max-name", m_maxName, {4, 512}, "N", "Greatest length of node names; default: 32")
        ->group(kNamesGroup);
    AddNumber(command, "--max-material-name", m_maxMaterialName, {3, 511}, "N",
              "Name materials, with at most this many characters")
        ->group(kNamesGroup);
    AddRepeated(command, "--rename", m_renames, "Change names by a regular expression; may be repeated")
        ->type_name("PATTERN=REPLACEMENT")
        ->group(kNamesGroup);
    command
        .add_option("--rename-map", m_renameMap,
                    "Write a JSON file with the exported name of every original name and path")
        ->type_name(kFileType)
        ->group(kNamesGroup);
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

// Only the tool itself can interpret the settings.
void PassOptions::ApplySettings(Host& host, ExportOptions& options) const {
    SettingsFile settings(PathFromUtf8(m_settings));
    const Tool tool = host.Create<vl::tk::Serializer>(kTypeKeyframeTool);
    tool->m_dwExportFlags = options.exportFlags;
    tool->LoadSettings(&settings, "");
    options.exportFlags = tool->m_dwExportFlags;
    constexpr std::uint32_t kTime = vl::tk::kRescaleTime | vl::tk::kSetLength | vl::tk::kReverseTime;
    if ((options.animFlags & kTime) == 0) {
        options.animFlags |= tool->m_dwAnimFlags;
        options.rescale = tool->m_fRescale;
        if (options.Has(vl::tk::kRescaleTime)) CheckSetting(m_settings, options.rescale, kTimeFactors);
        if (options.Has(vl::tk::kSetLength)) CheckSetting(m_settings, options.rescale, kLengths);
    }
}

}  // namespace zr
