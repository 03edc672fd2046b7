// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zr {

// Marks those words of a command line "text ..." that begin with one dash and are neither an option nor the
// value of one, so that the parser takes them for the text that they are: zr text "-40 C" OUT. Words after
// "--" are that anyway.
void MarkDashedText(const CLI::App& app, std::vector<std::string>& words);

// The text as it was before it was marked.
std::string UnmarkedText(const std::string& word);

}  // namespace zr
