// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/commands/pass_options.h"
#include "app/operations/export/export_options.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zr {

// The export command's line. Outlives the run, as its pass options must.
class ExportArguments {
public:
    void AddTo(CLI::App& command);

    // What the line asks of the tools, once it is read. Call once. Throws UsageError and, for a settings file
    // that is wrong, std::runtime_error.
    const ExportOptions& Finish(Host& host);

    const std::string& Scene() const { return m_scene; }
    const std::string& Out() const { return m_out; }
    const std::string& Animation() const { return m_animation; }  // name or index; empty: all
    const std::string& RenameMapFile() const { return m_passes.RenameMapFile(); }
    bool WantsRecords() const;  // in place of a scene

private:
    std::string m_scene;
    std::string m_out;
    std::string m_animation;
    bool m_keepAllNodes = true;
    float m_length = 0;
    std::string m_up = "y";
    double m_scale = 1;
    std::string m_optionWords;
    CLI::Option* m_rescale = nullptr;
    CLI::Option* m_setLength = nullptr;
    ExportOptions m_options;
    PassOptions m_passes;
};

}  // namespace zr
