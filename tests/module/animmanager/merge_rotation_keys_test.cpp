// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tests/module/animmanager/anim_fixture.h"

namespace {

using vl::AngleAxis;
using vl::Quaternion;
using vl::Vector3;

class RandomTracks {
public:
    explicit RandomTracks(unsigned seed) : m_random(seed) {}

    float Number(float low, float high) { return std::uniform_real_distribution<float>(low, high)(m_random); }
    int Count(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }
    Vector3<float> Vector(float low, float high) {
        return {Number(low, high), Number(low, high), Number(low, high)};
    }

    // Keys of every type at the times, with rotations in any mix of forms.
    void Fill(AnimFixture& f, TestNode* node, TestAnimation* animation, const std::vector<float>& times) {
        for (float time : times) {
            f.AddPosition(node, animation, time, Vector(-5, 5));
            f.AddScale(node, animation, time, Vector(0.2F, 4));
            const AngleAxis turn(Vector(-2, 2));
            switch (Count(0, 2)) {
                case 0:
                    f.AddRotation(node, animation, time, turn);
                    break;
                case 1:
                    f.AddRotation(node, animation, time, Quaternion(turn));
                    break;
                default:
                    f.AddRotation(node, animation, time, Vector(-3, 3), Count(0, 63));
                    break;
            }
        }
    }

private:
    std::mt19937 m_random;
};

// What the node shows at the times while the animation is active.
std::vector<vl::Matrix4<double>> Play(AnimFixture& f, TestNode* node, TestAnimation* animation,
                                      const std::vector<float>& times) {
    f.Activate(animation);
    std::vector<vl::Matrix4<double>> poses;
    for (float time : times) poses.push_back(f.Pose(node, time));
    return poses;
}

void ExpectMergePlaysAsSources(unsigned seed, bool oneAfterTheOther) {
    AnimFixture f;
    RandomTracks random(seed);
    TestNode* node = f.AddNode("node");
    std::vector<TestAnimation*> sources;
    std::vector<std::vector<float>> times(static_cast<std::size_t>(random.Count(2, 5)));
    float start = 0;
    for (auto& list : times) {
        // A single first key may be moved in time, which alternating keys leave no room for.
        list.resize(static_cast<std::size_t>(random.Count(oneAfterTheOther ? 1 : 2, 6)));
        for (float& time : list) time = start + random.Number(0, 1);
        std::sort(list.begin(), list.end());
        if (oneAfterTheOther) start = list.back() + random.Number(0.01F, 0.1F);
        sources.push_back(f.AddAnimation(u"source"));
        random.Fill(f, node, sources.back(), list);
    }
    TestAnimation* merged = f.Merge(sources);
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const auto expected = Play(f, node, sources[i], times[i]);
        const auto actual = Play(f, node, merged, times[i]);
        for (std::size_t k = 0; k < expected.size(); ++k) {
            EXPECT_TRUE(actual[k].Equal(expected[k], 1e-5))
                << "seed " << seed << " source " << i << " key " << k;
        }
    }
}

TEST(AnimRotationMerge, PlaysAsItsSourcesInEveryForm) {
    for (unsigned seed = 0; seed < 200; ++seed) ExpectMergePlaysAsSources(seed, true);
}

TEST(AnimRotationMerge, PlaysAsItsSourcesWhereTheirKeysAlternate) {
    for (unsigned seed = 0; seed < 200; ++seed) ExpectMergePlaysAsSources(seed, false);
}

TEST(AnimRotationMerge, KeepsStepsBeyondATurn) {
    AnimFixture f;
    TestNode* node = f.AddNode("node");
    TestAnimation* a = f.AddAnimation(u"A");
    TestAnimation* b = f.AddAnimation(u"B");
    f.AddRotation(node, a, 0, AngleAxis(0, 0, 1, 1));
    f.AddRotation(node, a, 1, AngleAxis(0, 0, 1, 8));
    f.AddRotation(node, b, 2, AngleAxis(1, 0, 0, 0.5F));
    f.AddRotation(node, b, 3, AngleAxis(0, 1, 0, 9));
    TestAnimation* merged = f.Merge({a, b});
    EXPECT_TRUE(Play(f, node, merged, {0.3F})[0].Equal(Play(f, node, a, {0.3F})[0], 1e-5));
    EXPECT_TRUE(Play(f, node, merged, {2.3F})[0].Equal(Play(f, node, b, {2.3F})[0], 1e-5));
}

TEST(AnimRotationMerge, LongTracksDoNotDrift) {
    constexpr int kKeys = 5000;
    AnimFixture f;
    TestNode* node = f.AddNode("node");
    TestAnimation* a = f.AddAnimation(u"A");
    TestAnimation* b = f.AddAnimation(u"B");
    for (int i = 0; i < kKeys; ++i) {
        const auto turned = static_cast<float>(i) * 0.7F;
        f.AddRotation(node, a, static_cast<float>(i), Quaternion(AngleAxis(0.6F, 0.8F, 0, turned)));
        f.AddRotation(node, b, static_cast<float>(kKeys + i), Quaternion(AngleAxis(0, 0.6F, 0.8F, turned)));
    }
    TestAnimation* merged = f.Merge({a, b});
    const auto last = static_cast<float>(kKeys - 1);
    EXPECT_TRUE(Play(f, node, merged, {last})[0].Equal(Play(f, node, a, {last})[0], 1e-6));
    const auto end = static_cast<float>(2 * kKeys - 1);
    EXPECT_TRUE(Play(f, node, merged, {end})[0].Equal(Play(f, node, b, {end})[0], 1e-6));
}

}  // namespace
