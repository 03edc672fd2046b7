// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "app/commands/batch.h"
#include "app/commands/pass_options.h"
#include "app/operations/export/export_options.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zr {

inline const BatchFiles kExportFiles{{".gltf", ".glb"}, {"glb", "gltf", "json"}};

// The arguments of the export command. Must outlive the run, as its pass options do.
class ExportArguments {
public:
    void AddTo(CLI::App& command);

    // The options for the tools. Call once, after the command line has been parsed. Throws UsageError and,
    // for an invalid settings file, std::runtime_error.
    const ExportOptions& Finish(Host& host);

    const BatchArguments& Files() const { return m_files; }
    const std::vector<std::string>& Animations() const {
        return m_animations;
    }  // names or indices; none: all
    // The index of the only scene to export; none: all that the output can hold.
    std::optional<std::size_t> Scene() const { return m_sceneIndex; }
    // The tolerance for reducing keys, as ReadReduceTolerance reads it; empty: keys are not reduced.
    const std::string& Tolerance() const { return m_tolerance; }
    bool Force() const { return m_force; }
    const std::string& PageFile() const { return m_page; }
    const std::string& RenameMapFile() const { return m_passes.RenameMapFile(); }

private:
    BatchArguments m_files;
    std::vector<std::string> m_animations;
    std::string m_scene = "all";
    std::optional<std::size_t> m_sceneIndex;
    bool m_dropsEmpty = false;
    bool m_force = false;
    bool m_keepsEmpty = false;  // only excludes --drop-empty; it is the default
    float m_length = 0;
    std::string m_up = "y";
    std::string m_tolerance;
    std::string m_check = "quick";
    CLI::Option* m_maxDeviation = nullptr;
    double m_scale = 1;
    std::string m_optionWords;
    CLI::Option* m_rescale = nullptr;
    CLI::Option* m_setLength = nullptr;
    ExportOptions m_options;
    PassOptions m_passes;
    std::string m_page;
};

}  // namespace zr
