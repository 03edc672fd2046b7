// SPDX-License-Identifier: MIT
#include "module/keyframe/key_resample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <random>
#include <vector>

#include "tests/base/rounds.h"

namespace {

struct Key {
    float time;
    float value;
};

template <typename ExportKey>
std::vector<ExportKey*> Track(const std::vector<Key>& keys) {
    std::vector<ExportKey*> track;
    for (const Key& key : keys) {
        track.push_back(new ExportKey());
        track.back()->fTime = key.time;
        track.back()->fParams[0] = 1;
        if constexpr (std::is_same_v<ExportKey, ExportRotationKey>) {
            track.back()->qValue = vl::Quaternion(vl::AngleAxis(0, 0, 1, key.value));
        } else {
            track.back()->vValue = {key.value, -key.value, 2 * key.value};
        }
    }
    return track;
}

template <typename ExportKey>
std::vector<ExportKey> Taken(const std::vector<ExportKey*>& track) {
    std::vector<ExportKey> keys;
    for (ExportKey* key : track) keys.push_back(*std::unique_ptr<ExportKey>(key));
    return keys;
}

std::vector<ExportPositionKey> Resampled(const std::vector<float>& times, const std::vector<Key>& keys,
                                         const vl::Vector3<float>& rest = {}) {
    auto track = Track<ExportPositionKey>(keys);
    zrt::ResampleKeys(times, track, rest);
    return Taken(track);
}

std::vector<float> Xs(const std::vector<ExportPositionKey>& keys) {
    std::vector<float> xs;
    for (const ExportPositionKey& key : keys) xs.push_back(key.vValue.x);
    return xs;
}

// The literal rule: for each time, walk the track from the front.
std::vector<ExportRotationKey> Plain(const std::vector<float>& times, std::vector<ExportRotationKey> keys,
                                     const vl::Quaternion& rest) {
    for (const float t : times) {
        ExportRotationKey key;
        key.fTime = t;
        bool isThere = false;
        std::size_t i = 0;
        for (; i < keys.size(); ++i) {
            isThere = keys[i].fTime == t;
            if (isThere || keys[i].fTime > t) break;
        }
        if (isThere) continue;
        if (i == keys.size()) {
            key.qValue = keys.empty() ? rest : keys.back().qValue;
        } else if (i == 0) {
            key.qValue = keys[0].qValue;
        } else {
            const float s = (t - keys[i - 1].fTime) / (keys[i].fTime - keys[i - 1].fTime);
            key.qValue = vl::Quaternion(s, keys[i - 1].qValue, keys[i].qValue, 0);
        }
        keys.insert(keys.begin() + static_cast<std::ptrdiff_t>(i), key);
    }
    return keys;
}

TEST(ResampleKeys, FillsBeforeBetweenAndAfter) {
    EXPECT_EQ(Xs(Resampled({0, 10, 15, 20}, {{10, 1}, {20, 3}})), (std::vector<float>{1, 1, 2, 3}));
    EXPECT_EQ(Xs(Resampled({0, 10, 15, 20}, {{15, 4}})), (std::vector<float>{4, 4, 4, 4}));
    EXPECT_EQ(Xs(Resampled({0, 7}, {}, {5, 6, 7})), (std::vector<float>{5, 5}));
}

TEST(ResampleKeys, KeepsTheKeysOfTheTrack) {
    const auto keys = Resampled({1}, {{0, 1}, {2, 5}, {2, 9}, {3, 2}});
    EXPECT_EQ(Xs(keys), (std::vector<float>{1, 3, 5, 9, 2}));
    EXPECT_EQ(keys[0].fParams[0], 1);
    EXPECT_EQ(keys[1].fParams[0], 0);
}

TEST(ResampleKeys, EqualsThePlainRuleOnRandomTracks) {
    std::mt19937 random(5);
    const auto pick = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (unsigned run = 0; run < zr::test::Rounds(20000); ++run) {
        const bool keysAscend = pick(4) != 0, timesAscend = pick(4) != 0;
        std::vector<Key> keys(static_cast<std::size_t>(pick(12)));
        std::vector<float> times(static_cast<std::size_t>(pick(12)));
        const auto time = [&](bool ascend) {
            return !ascend && pick(9) == 0 ? NAN : static_cast<float>(pick(40)) / 3;
        };
        for (Key& key : keys) key = {time(keysAscend), static_cast<float>(pick(600)) / 100};
        for (float& t : times) t = time(timesAscend);
        if (keysAscend)
            std::sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) { return a.time < b.time; });
        if (timesAscend) {
            std::sort(times.begin(), times.end());
            times.erase(std::unique(times.begin(), times.end()), times.end());
        }
        const vl::Quaternion rest(0, 0.6f, 0, 0.8f);
        auto track = Track<ExportRotationKey>(keys);
        const auto plain = Plain(times, Taken(Track<ExportRotationKey>(keys)), rest);
        zrt::ResampleKeys(times, track, rest);
        const auto resampled = Taken(track);
        ASSERT_EQ(resampled.size(), plain.size()) << "run " << run;
        for (std::size_t i = 0; i < plain.size(); ++i) {
            using Bits = std::array<std::uint32_t, sizeof(ExportRotationKey) / 4>;
            ASSERT_EQ(std::bit_cast<Bits>(resampled[i]), std::bit_cast<Bits>(plain[i])) << "run " << run;
        }
    }
}

}  // namespace
