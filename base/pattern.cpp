// SPDX-License-Identifier: MIT
#include "base/pattern.h"

#include <cstddef>

namespace zr {
namespace {

// Matches the byte against the first element of the pattern, and removes that element.
bool TakeMatch(char byte, std::string_view& pattern) {
    const char first = pattern[0];
    const std::size_t end = pattern.find(']', pattern.substr(1).starts_with('!') ? 3 : 2);
    if (first == '[' && end != pattern.npos) {
        std::string_view set = pattern.substr(1, end - 1);
        pattern.remove_prefix(end + 1);
        const bool isOutside = set[0] == '!';
        if (isOutside) set.remove_prefix(1);
        bool found = false;
        const auto code = [](char c) { return static_cast<unsigned char>(c); };
        for (std::size_t i = 0; i < set.size(); ++i) {
            const bool isRange = i + 2 < set.size() && set[i + 1] == '-';
            const char last = isRange ? set[i + 2] : set[i];
            found |= code(byte) >= code(set[i]) && code(byte) <= code(last);
            if (isRange) i += 2;
        }
        return found != isOutside;
    }
    const bool isQuoted = first == '\\' && pattern.size() > 1;
    const char wanted = isQuoted ? pattern[1] : first;
    pattern.remove_prefix(isQuoted ? 2 : 1);
    return byte == wanted || (first == '?' && !isQuoted);
}

}  // namespace

bool FitsPattern(std::string_view text, std::string_view pattern) {
    // Where to resume when what follows the last star does not match.
    std::string_view textAtStar, patternAtStar;
    bool hasStar = false;
    while (!text.empty() || !pattern.empty()) {
        if (pattern.starts_with('*')) {
            pattern.remove_prefix(1);
            textAtStar = text;
            patternAtStar = pattern;
            hasStar = true;
            continue;
        }
        if (!text.empty() && !pattern.empty() && TakeMatch(text[0], pattern)) {
            text.remove_prefix(1);
            continue;
        }
        if (!hasStar || textAtStar.empty()) return false;
        textAtStar.remove_prefix(1);
        text = textAtStar;
        pattern = patternAtStar;
    }
    return true;
}

}  // namespace zr
