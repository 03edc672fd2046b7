// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "host/text.h"
#include "module/keyframe/unique_names.h"

namespace {

// The literal rule: try one number after another until the table lacks the name.
class PlainNames {
public:
    explicit PlainNames(bool exactCase) : m_exactCase(exactCase) {}

    std::u16string Enter(const std::u16string& name, int maxLength, int baseLimit) {
        std::size_t counter = m_count;
        std::u16string candidate = name;
        const std::u16string base = name.substr(0, static_cast<std::size_t>(std::min(baseLimit, maxLength)));
        const auto room = static_cast<std::size_t>(maxLength);
        double tries = 0;
        while (m_names.contains(Fold(candidate)) && tries < std::pow(10.0, maxLength)) {
            const std::string digits = std::to_string(counter++);
            std::u16string suffix(digits.begin(), digits.end());
            if (suffix.size() > room) suffix.erase(0, suffix.size() - room);
            candidate = base.substr(0, std::min(base.size(), room - suffix.size())) + suffix;
            ++tries;
        }
        m_names.insert(Fold(candidate));
        ++m_count;
        return candidate;
    }

private:
    std::u16string Fold(std::u16string name) const {
        if (!m_exactCase) {
            for (char16_t& c : name) c = vl::FoldCase(c);
        }
        return name;
    }

    bool m_exactCase;
    std::size_t m_count = 0;
    std::set<std::u16string> m_names;
};

std::vector<std::u16string> EnterAll(const std::vector<std::u16string>& names, bool exactCase,
                                     int maxLength) {
    zrt::UniqueNames unique(exactCase);
    std::vector<std::u16string> entered;
    for (const std::u16string& name : names) entered.push_back(unique.Enter(name, maxLength, 510));
    return entered;
}

using WideNames = std::vector<std::u16string>;

TEST(UniqueNames, NumbersFromTheCountOfNames) {
    EXPECT_EQ(EnterAll({u"box", u"box", u"ball", u"box", u"box4", u"box"}, false, 32),
              (WideNames{u"box", u"box1", u"ball", u"box3", u"box4", u"box5"}));
    EXPECT_EQ(EnterAll({u"box5", u"a", u"b", u"box", u"c", u"BOX"}, false, 32),
              (WideNames{u"box5", u"a", u"b", u"box", u"c", u"BOX6"}));
    EXPECT_EQ(EnterAll({u"Box", u"box", u"Box"}, true, 32), (WideNames{u"Box", u"box", u"Box2"}));
    EXPECT_EQ(EnterAll({u"x", u"y", u"z", u"w", u"x"}, true, 4), (WideNames{u"x", u"y", u"z", u"w", u"x4"}));
}

TEST(UniqueNames, NumberReplacesTheEndOfALongName) {
    WideNames names{u"abcd"};
    for (char16_t c = u'a'; c < u'a' + 11; ++c) names.push_back(std::u16string(1, c));
    names.push_back(u"abcd");
    EXPECT_EQ(EnterAll(names, false, 4).back(), u"ab12");
}

// Short names of few letters and digits collide in every way: with numbers given out before, with names
// that look numbered, after the cut, in other cases.
TEST(UniqueNames, EqualsThePlainRuleOnRandomNames) {
    std::mt19937 random(7);
    const auto pick = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int run = 0; run < 400; ++run) {
        const bool exactCase = pick(2) == 0;
        const int maxLength = 4 + pick(4);
        const int baseLimit = 3 + pick(6);
        zrt::UniqueNames unique(exactCase);
        PlainNames plain(exactCase);
        for (int i = 0; i < 300; ++i) {
            std::u16string name(static_cast<std::size_t>(pick(maxLength + 1)), u'a');
            for (char16_t& c : name) c = u"aA012"[pick(5)];
            ASSERT_EQ(unique.Enter(name, maxLength, baseLimit), plain.Enter(name, maxLength, baseLimit))
                << "run " << run << ", name " << i;
        }
    }
}

// Ten thousand numbers fit into four characters, with a few more names before them; then the numbers are used
// up.
TEST(UniqueNames, EqualsThePlainRuleWhereNumbersRunOut) {
    zrt::UniqueNames unique(false);
    PlainNames plain(false);
    std::set<std::u16string> distinct;
    for (int i = 0; i < 11200; ++i) {
        const std::u16string name = unique.Enter(u"Box", 4, 510);
        ASSERT_EQ(name, plain.Enter(u"Box", 4, 510)) << i;
        ASSERT_LE(name.size(), 4u);
        distinct.insert(name);
    }
    EXPECT_EQ(distinct.size(), 11000u);
    EXPECT_TRUE(distinct.contains(u"0999"));
}

TEST(NumberedNames, AppendToTheNameThatWasFound) {
    zrt::NumberedNames names;
    WideNames entered;
    for (const char16_t* name : {u"Wood", u"Wood1", u"Wood", u"Stone", u"stone", u"wood", u"WOOD"}) {
        entered.push_back(names.Enter(name));
    }
    EXPECT_EQ(entered, (WideNames{u"Wood", u"Wood1", u"Wood11", u"Stone", u"stone1", u"wood2", u"WOOD3"}));
}

// A name that fills every buffer must still end up different from equal names.
TEST(NumberedNames, LongNamesAreNotCut) {
    zrt::NumberedNames names;
    const std::u16string name(511, u'm');
    std::set<std::u16string> distinct;
    for (int i = 0; i < 20; ++i) distinct.insert(names.Enter(name));
    EXPECT_EQ(distinct.size(), 20u);
    EXPECT_TRUE(distinct.contains(name + u"19"));
}

// Numbers with more digits than a name may have keep the last ones, and continue from 0 after the last free
// one.
TEST(UniqueNames, LongNumbersWrapAround) {
    zrt::UniqueNames names(true);
    int entered = 0;
    for (int i = 9900; i < 10000; ++i, ++entered) {
        const std::string digits = std::to_string(i);
        names.Enter(std::u16string(digits.begin(), digits.end()), 4, 510);
    }
    for (; entered < 19950; ++entered) {
        std::u16string name(4, u'a');
        for (int i = entered, place = 0; place < 4; ++place, i /= 26)
            name[3 - place] += static_cast<char16_t>(i % 26);
        names.Enter(name, 4, 510);
    }
    std::u16string last(4, u'a');
    for (int i = 19949, place = 0; place < 4; ++place, i /= 26)
        last[3 - place] += static_cast<char16_t>(i % 26);
    EXPECT_EQ(names.Enter(last, 4, 510), u"0000") << "9950 to 9999 are taken";
    EXPECT_EQ(names.Enter(last, 4, 510), u"0001");
}

}  // namespace
