// SPDX-License-Identifier: MIT
#include "app/commands/suggestion.h"

#include <algorithm>
#include <utility>

#include "host/text.h"

namespace zr {
namespace {

// Optimal string alignment distance: the fewest insertions, deletions, replacements and swaps of neighbours
// that turn a into b.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> before, last, row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        before = std::exchange(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const auto differ = [&](std::size_t k, std::size_t l) {
                return vl::FoldCase(a[k - 1]) != vl::FoldCase(b[l - 1]);
            };
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (differ(i, j) ? 1 : 0)});
            if (i > 1 && j > 1 && !differ(i, j - 1) && !differ(i - 1, j))
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
    }
    return row.back();
}

}  // namespace

std::string NearestWord(std::string_view word, const std::vector<std::string>& words) {
    constexpr std::size_t kLongest = 64;  // longer than any word of the program
    if (word.size() > kLongest) return {};
    std::string nearest;
    std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : words) {
        const std::size_t distance = Distance(word, candidate);
        if (distance >= least) continue;
        least = distance;
        nearest = candidate;
    }
    return nearest;
}

}  // namespace zr
