// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace zr {

// A command's options by heading, in the order they were added. The options common to all commands come last.
struct OptionGroup {
    std::string name;
    std::vector<const CLI::Option*> options;
};
std::vector<OptionGroup> OptionGroupsOf(const CLI::App& command);

// "--gap SECONDS", "-h,--help", "SCENE".
std::string NameAndValue(const CLI::Option& option);
// The option's description and default.
std::string TextOf(const CLI::Option& option);
// How a command is called: "zr export [OPTIONS] SCENE OUT".
std::vector<std::string> UsagesOf(const CLI::App& command);

// Lays out help in 100 columns.
class HelpFormatter final : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override;
};

}  // namespace zr
