// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace zr {

// In a command line of zr text, marks the words that begin with a single dash but are neither an option nor
// an option's value, so that the parser takes them for text: zr text "-40 C" OUT. Words after "--" need no
// mark.
void MarkDashedText(const CLI::App& app, std::vector<std::string>& words);

// The word without its mark, if it has one.
std::string UnmarkedText(const std::string& word);

}  // namespace zr
