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

// The export command's line. Outlives the run, as its pass options must.
class ExportArguments {
public:
    void AddTo(CLI::App& command);

    // What the line asks of the tools, once it is read. Call once. Throws UsageError and, for a settings file
    // that is wrong, std::runtime_error.
    const ExportOptions& Finish(Host& host);

    const BatchArguments& Files() const { return m_files; }
    const std::vector<std::string>& Animations() const {
        return m_animations;
    }  // names or indices; none: all
    // The scene of the document that is exported alone; none: all that the output can hold.
    std::optional<std::size_t> Scene() const { return m_sceneIndex; }
    // How far motion may stray for fewer keys; empty: not at all.
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
    bool m_keepsEmpty = false;  // said, as it is anyway
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
