// SPDX-License-Identifier: MIT
#include "module/keyframe/key_merge.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/base/rounds.h"

namespace {

ExportPositionKey PositionKey(float time, float x, float y, float z) {
    ExportPositionKey key;
    key.fTime = time;
    key.vValue = {x, y, z};
    return key;
}

ExportRotationKey StepKey(float time, float angle) {
    ExportRotationKey key;
    key.fTime = time;
    key.aaValue = {0, 0, 1, angle};
    return key;
}

// Runs a merge on copies of the keys, which it may delete.
template <typename Key>
std::vector<Key> Merged(const std::vector<Key>& keys, void (*merge)(std::vector<Key*>&)) {
    std::vector<Key*> track;
    for (const Key& key : keys) track.push_back(new Key(key));
    merge(track);
    std::vector<Key> merged;
    for (Key* key : track) {
        merged.push_back(*key);
        delete key;
    }
    return merged;
}

template <typename Key>
std::vector<float> Times(const std::vector<Key>& keys) {
    std::vector<float> times;
    for (const Key& key : keys) times.push_back(key.fTime);
    return times;
}

std::vector<float> MergedTimes(const std::vector<ExportPositionKey>& keys) {
    return Times(Merged<ExportPositionKey>(keys, zrt::MergeKeys));
}

// The literal rules: delete the first key that adds nothing, then start again.
bool IsRedundant(const ExportRotationKey& a, const ExportRotationKey& b, const ExportRotationKey& c) {
    const float span = c.fTime - a.fTime;
    if (span == 0) return true;
    const float s = (b.fTime - a.fTime) / span;
    const auto predict = [s](float from, float to) { return from + (to + from * -1) * s; };
    return b.qValue.x == predict(a.qValue.x, c.qValue.x) && b.qValue.y == predict(a.qValue.y, c.qValue.y) &&
           b.qValue.z == predict(a.qValue.z, c.qValue.z) && b.qValue.w == predict(a.qValue.w, c.qValue.w);
}

bool DropFirstRedundant(std::vector<ExportRotationKey>& keys) {
    for (std::size_t i = 0; i + 2 < keys.size(); ++i) {
        if (IsRedundant(keys[i], keys[i + 1], keys[i + 2])) {
            keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(i) + 1);
            return true;
        }
    }
    return false;
}

bool DropFirstEmptyStep(std::vector<ExportRotationKey>& keys) {
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
        if (keys[i].fTime < keys[i + 1].fTime && keys[i + 1].aaValue.angle == 0) {
            keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(i) + 1);
            return true;
        }
    }
    return false;
}

TEST(MergeKeys, DropsKeysOnTheLine) {
    EXPECT_EQ(MergedTimes({PositionKey(0, 0, 0, 0), PositionKey(10, 1, 1, 1), PositionKey(20, 2, 2, 2)}),
              (std::vector<float>{0, 20}));
    EXPECT_EQ(MergedTimes({PositionKey(0, 0, 0, 0), PositionKey(10, 1, 1, 1), PositionKey(20, 2, 2, 2),
                           PositionKey(30, 3, 3, 5)}),
              (std::vector<float>{0, 20, 30}));
    EXPECT_EQ(MergedTimes({PositionKey(5, 1, 2, 3), PositionKey(5, 9, 9, 9), PositionKey(5, 4, 5, 6)}),
              (std::vector<float>{5, 5}));
}

TEST(MergeKeys, DropsTheSecondOfTwoEqualKeys) {
    EXPECT_EQ(MergedTimes({PositionKey(0, 7, 7, 7), PositionKey(10, 7, 7, 7)}), (std::vector<float>{0}));
    EXPECT_EQ(MergedTimes({PositionKey(0, 7, 7, 7), PositionKey(10, 7, 7, 7), PositionKey(20, 7, 7, 7)}),
              (std::vector<float>{0}));
    EXPECT_EQ(MergedTimes({PositionKey(3, 7, 7, 7)}), (std::vector<float>{3}));
    EXPECT_EQ(MergedTimes({}), std::vector<float>());
}

TEST(MergeKeys, DropsStepsOfZeroAngle) {
    EXPECT_EQ(Times(Merged<ExportRotationKey>({StepKey(0, 0.5f), StepKey(10, 0), StepKey(20, 0)},
                                              zrt::MergeAngleAxisKeys)),
              (std::vector<float>{0}));
    EXPECT_EQ(Times(Merged<ExportRotationKey>({StepKey(0, 0), StepKey(0, 0), StepKey(9, 1e-20f)},
                                              zrt::MergeAngleAxisKeys)),
              (std::vector<float>{0, 0, 9}));
}

// Coarse times and values, so that lines, equal times and runs of removals are common.
TEST(MergeKeys, EqualsThePlainRuleOnRandomTracks) {
    std::mt19937 random(11);
    const auto pick = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    std::size_t dropped = 0;
    for (unsigned run = 0; run < zr::test::Rounds(20000); ++run) {
        std::vector<ExportRotationKey> keys(static_cast<std::size_t>(pick(24)));
        const int values = 1 + pick(3);
        float time = 0;
        for (ExportRotationKey& key : keys) {
            key.fTime = time;
            time += static_cast<float>(pick(4) - (pick(8) == 0 ? 1 : 0)) / 3.0f;
            const auto value = [&] { return static_cast<float>(pick(values)) / 3.0f; };
            key.qValue = {value(), pick(4) == 0 ? value() : 0.0f, 0, 1};
            key.aaValue = {0, 0, 1, value()};
        }
        std::vector<ExportRotationKey> plain = keys;
        while (DropFirstRedundant(plain)) {
        }
        if (plain.size() == 2 && plain[0].qValue == plain[1].qValue) plain.pop_back();
        const auto merged = Merged<ExportRotationKey>(keys, zrt::MergeQuaternionKeys);
        ASSERT_EQ(Times(merged), Times(plain)) << "run " << run;
        for (std::size_t i = 0; i < plain.size(); ++i) ASSERT_EQ(merged[i].qValue, plain[i].qValue);
        dropped += keys.size() - plain.size();

        plain = keys;
        while (DropFirstEmptyStep(plain)) {
        }
        const auto steps = Merged<ExportRotationKey>(keys, zrt::MergeAngleAxisKeys);
        ASSERT_EQ(Times(steps), Times(plain)) << "run " << run;
        for (std::size_t i = 0; i < plain.size(); ++i) ASSERT_EQ(steps[i].aaValue, plain[i].aaValue);
    }
    EXPECT_GT(dropped, zr::test::Rounds(50000));
}

}  // namespace
