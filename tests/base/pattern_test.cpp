// SPDX-License-Identifier: MIT
#include "base/pattern.h"

#include <gtest/gtest.h>

namespace zr {
namespace {

TEST(Pattern, MatchesAsShellsDo) {
    const struct {
        const char* pattern;
        const char* fits;
        const char* misses;
    } cases[] = {
        {"", "", "a"},           {"**.", "a.", "a"},
        {"a*", "a", "ba"},       {"*.tmp", ".tmp", "tmp"},
        {"a?c", "abc", "ac"},    {"*a*b", "xaayb", "xab_"},
        {"[a-c]x", "bx", "dx"},  {"[!a-c]x", "dx", "bx"},
        {"[]a]", "]", "b"},      {"[!]a]", "b", "]"},
        {"[a-]", "-", "b"},      {"[", "[", "]"},
        {"\\*", "*", "a"},       {"a\\", "a\\", "a"},
        {"*aab", "aaab", "aaa"}, {"[\x80-\xFF]", "\xC3", "z"},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(FitsPattern(c.fits, c.pattern)) << c.pattern;
        EXPECT_FALSE(FitsPattern(c.misses, c.pattern)) << c.pattern;
    }
}

TEST(Pattern, ManyStarsAreMatchedFast) {
    std::string stars;
    for (int i = 0; i < 100; ++i) stars += "*a";
    EXPECT_FALSE(FitsPattern(std::string(20000, 'a') + "b", stars));
}

}  // namespace
}  // namespace zr
