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

// Under which headings the export command's options stand.
inline constexpr const char* kHierarchyGroup = "Hierarchy";
inline constexpr const char* kKeysGroup = "Keys";
inline constexpr const char* kTimeGroup = "Time";
inline constexpr const char* kNamesGroup = "Names";
inline constexpr const char* kTargetGroup = "Target";

// Far beyond what scenes need, and nowhere near where floats end.
inline constexpr Range kTimeFactors{1e-6, 1e6};
inline constexpr Range kLengths{1e-3, 1e6};  // seconds

// The export command's options for keys, axes, aims and names. Outlives the run: the tools call back into
// its rules.
class PassOptions {
public:
    void AddTo(CLI::App& command);

    // Sets what the user asked for on top of what stands in options. Stored settings of the time give way to
    // options of the command line that stand there. Throws UsageError and, for a settings file that is wrong,
    // std::runtime_error.
    void ApplyTo(Host& host, ExportOptions& options);

    const std::string& RenameMapFile() const { return m_renameMap; }  // empty: none is wished

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
