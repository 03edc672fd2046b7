// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <vector>

#include "tests/module/animmanager/anim_fixture.h"

namespace {

using vl::Vector3;

struct VectorCase {
    const char* name;
    KeyList first;
    KeyList second;
    const char* merged;
};

const VectorCase kVectorCases[] = {
    {"a pause before another value is held",
     {{0, 1}, {1, 2}},
     {{1.5F, 3}, {2, 4}},
     "0:1 1:2 1.5:2 1.5:3 2:4"},
    {"a pause before the same value is not", {{0, 1}, {1, 2}}, {{1.5F, 2}, {2, 4}}, "0:1 1:2 1.5:2 2:4"},
    {"neither is a short pause", {{0, 1}, {1, 2}}, {{1.02F, 3}, {2, 4}}, "0:1 1:2 1.02:3 2:4"},
    // In single precision these two pauses come out on the other side of a thirtieth of a second.
    {"just longer than a thirtieth",
     {{0, 1}, {0.5F, 2}},
     {{0.53333336F, 3}},
     "0:1 0.5:2 0.533333:2 0.533333:3"},
    {"just longer than a thirtieth, later",
     {{0, 1}, {10, 2}},
     {{10.033334F, 3}},
     "0:1 10:2 10.0333:2 10.0333:3"},
    {"another value at the same time gives way", {{0, 1}, {1, 2}}, {{1, 3}, {2, 4}}, "0:1 1:2 1.001:3 2:4"},
    {"the same value at the same time adds nothing", {{0, 1}, {1, 2}}, {{1, 2}, {2, 4}}, "0:1 1:2 2:4"},
    {"single keys of one value", {{0, 1}}, {{5, 1}}, "0:1"},
    {"single keys far apart", {{0, 1}}, {{5, 2}}, "0:1 5:1 5:2"},
    {"single keys close together", {{0, 1}}, {{0.02F, 2}}, "0:1 0.021:2"},
    {"single keys the wrong way round", {{5, 1}}, {{0, 2}}, "0.001:2 5:1"},
    {"the same value at another time", {{0, 1}, {1, 2}}, {{1.02F, 2}}, "0:1 1:2 1.02:2"},
    {"a first track without such keys", {}, {{1, 3}, {2, 4}}, "1:3 2:4"},
    {"a later track without such keys", {{0, 1}}, {}, "0:1"},
    {"a source that plays earlier", {{5, 1}, {6, 2}}, {{0, 3}, {1, 4}}, "0:3 1:4 5:1 6:2"},
};

class AnimVectorMerge : public testing::TestWithParam<int> {};

TEST_P(AnimVectorMerge, FirstKeyMeetsLastKey) {
    for (const VectorCase& c : kVectorCases) {
        AnimFixture f;
        auto* node = f.AddNode("node");
        auto* a = f.AddAnimation(u"A");
        auto* b = f.AddAnimation(u"B");
        f.AddVectorKeys(node, a, GetParam(), c.first);
        f.AddVectorKeys(node, b, GetParam(), c.second);
        auto* merged = f.Merge({a, b});
        EXPECT_EQ(f.Dump(node, merged, GetParam()), c.merged) << c.name;
    }
}

TEST_P(AnimVectorMerge, OnlyTheHoldKeyHasNoParameters) {
    AnimFixture f;
    auto* node = f.AddNode("node");
    auto* a = f.AddAnimation(u"A");
    auto* b = f.AddAnimation(u"B");
    f.AddVectorKeys(node, a, GetParam(), {{0, 1}});
    f.AddVectorKeys(node, b, GetParam(), {{5, 2}, {6, 3}});
    for (float time : {5.0F, 6.0F}) {
        auto* key = f.KeyAt(node, b, GetParam(), time == 5 ? 0 : 1);
        for (int i = 0; i < 5; ++i) key->m_params[i] = time + static_cast<float>(i);
    }
    auto* merged = f.Merge({a, b});
    std::vector<float> params;
    for (int i = 1; i < 4; ++i) {
        const auto* key = f.KeyAt(node, merged, GetParam(), i);
        params.insert(params.end(), std::begin(key->m_params), std::end(key->m_params));
    }
    EXPECT_EQ(params, (std::vector<float>{0, 0, 0, 0, 0, 5, 6, 7, 8, 9, 6, 7, 8, 9, 10}));
}

INSTANTIATE_TEST_SUITE_P(KeyTypes, AnimVectorMerge, testing::Values(vl::zr::kKeyPosition, vl::zr::kKeyScale));

}  // namespace
