// SPDX-License-Identifier: MIT
#include "app/commands/dashed_text.h"

#include <CLI/CLI.hpp>

namespace zr {
namespace {

constexpr char kMark = '\x1F';

const CLI::Option* OptionOf(const CLI::App* command, const std::string& word) {
    return command && word.starts_with('-') ? command->get_option_no_throw(word) : nullptr;
}

bool MeansText(const std::string& word) {
    return word.starts_with(kMark) || (word.size() > 1 && word[0] == '-' && word[1] != '-');
}

}  // namespace

void MarkDashedText(const CLI::App& app, std::vector<std::string>& words) {
    const CLI::App* command = nullptr;
    bool isAllOperands = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        std::string& word = words[i];
        const CLI::Option* option = nullptr;
        if (!isAllOperands) {
            option = OptionOf(command, word);
            if (!option) option = OptionOf(&app, word);
        }
        if (option) {
            if (option->get_items_expected_min() > 0) ++i;
        } else if (!command) {
            if (word != "text") return;
            command = app.get_subcommand(word);
        } else if (word == "--") {
            isAllOperands = true;
        } else if (isAllOperands ? word.starts_with(kMark) : MeansText(word)) {
            word.insert(0, 1, kMark);
        }
    }
}

std::string UnmarkedText(const std::string& word) {
    return word.starts_with(kMark) ? word.substr(1) : word;
}

}  // namespace zr
