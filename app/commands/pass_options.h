// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/commands/options.h"
#include "app/operations/export/export_options.h"
#include "app/services/rename_rules.h"

namespace CLI {
class App;
}

namespace zr {

class Host;

// Headings of the export command's options.
inline constexpr const char* kNodesGroup = "Nodes";
inline constexpr const char* kHierarchyGroup = "Hierarchy";
inline constexpr const char* kKeysGroup = "Keys";
inline constexpr const char* kTimeGroup = "Time";
inline constexpr const char* kNamesGroup = "Names";
inline constexpr const char* kTargetGroup = "Target";

// Far more than scenes need, yet far from the limits of a float.
inline constexpr Range kTimeFactors{1e-6, 1e6};
inline constexpr Range kLengths{1e-3, 1e6};  // seconds

// The export command's options for keys, axes, aims and names. Outlives the run: the tools call back into
// its rules.
class PassOptions {
public:
    void AddTo(CLI::App& command);

    // Adds the user's choices to the options. Time options already set there take precedence over stored
    // settings. Throws UsageError and, for an invalid settings file, std::runtime_error.
    void ApplyTo(Host& host, ExportOptions& options);

    const std::string& RenameMapFile() const { return m_renameMap; }  // empty: none

private:
    void ApplySettings(Host& host, ExportOptions& options) const;

    bool m_mergeKeys = false;
    bool m_resample = false;
    bool m_flip = false;
    std::vector<std::string> m_targets;
    bool m_assignNames = false;
    std::vector<std::string> m_names;
    int m_maxName = 0;
    int m_maxMaterialName = 0;
    std::string m_settings;
    std::vector<std::string> m_renames;
    std::string m_renameMap;
    RenameRules m_rules;
};

}  // namespace zr
