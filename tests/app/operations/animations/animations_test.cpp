// SPDX-License-Identifier: MIT
#include <cmath>
#include <limits>

#include "app/operations/animations/bring_animations.h"
#include "app/operations/animations/clip_names.h"
#include "app/operations/animations/split_animation.h"
#include "tests/app/operations/animations/animation_kit.h"

namespace zr {
namespace {

using gltf::Document;
using gltf::Kind;
using test::AnimatedScene;
using test::AnimationCommandTest;
using test::Difference;
using test::KeyTimes;
using test::Names;
using test::NamesOf;
using test::Pose;
using vl::zr::kInterpolationCubic;
using vl::zr::kInterpolationLinear;
using vl::zr::kInterpolationStep;

TEST_F(AnimationCommandTest, BringsAnimationsToTheSamePath) {
    // The nodes in another order, with a matrix for the second arm.
    LoadedScene from(AnimatedScene());
    LoadedScene to(
        gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [3]}],
      "nodes": [{"name": "arm", "matrix": [2,0,0,0, 0,2,0,0, 0,0,2,0, 5,6,7,1]}, {"name": "leg"}, {"name": "arm"},
                {"name": "body", "children": [1, 2, 0]}]})"));
    EXPECT_EQ(BringAnimations(from, to, MatchByPath(from.Scene(), to.Scene())).withoutPartner, Names{});
    LoadedScene after = Reloaded(to);
    EXPECT_EQ(NamesOf(after), (Names{"walk", "jump", "rest"}));
    EXPECT_EQ(after.Document().Elements(Kind::kNode)[0].Find("matrix"), nullptr);
    for (const char* name : {"walk", "jump"}) {
        kernix::AnimationModel* source = ChooseAnimation(from.Scene(), name);
        for (const float time : KeyTimes(*source)) {
            EXPECT_LT(Difference(Pose(from, 1, source, time).rotation,
                                 Pose(after, 2, ChooseAnimation(after.Scene(), name), time).rotation),
                      1e-6)
                << name << time;
        }
    }
    kernix::AnimationModel* rest = ChooseAnimation(after.Scene(), "rest");
    EXPECT_LT(Difference(Pose(after, 0, rest, 0).rotation, kernix::Rotation{0, 0, 1, 0}), 1e-6);
    EXPECT_FLOAT_EQ(static_cast<float>(Pose(after, 0, rest, 0).translation[0]), 5);

    LoadedScene stranger(
        gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
      "nodes": [{"name": "body", "children": [1]}, {"name": "arm"}]})"));
    EXPECT_EQ(BringAnimations(from, stranger, MatchByPath(from.Scene(), stranger.Scene())).withoutPartner,
              Names{"/body/arm"});
}

TEST(SlicedTest, CutsEveryInterpolation) {
    const Curve linear{kInterpolationLinear, {0, 4}, {0, 4}};
    EXPECT_EQ(Sliced(linear, 1, 3, false), (Curve{kInterpolationLinear, {0, 2}, {1, 3}}));
    const float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Sliced(linear, 1, infinity, false), (Curve{kInterpolationLinear, {0, 3}, {1, 4}}));
    EXPECT_EQ(Sliced(linear, 5, 6, false), (Curve{kInterpolationLinear, {0}, {4}}));
    const Curve step{kInterpolationStep, {0, 1, 2}, {5, 6, 7}};
    EXPECT_EQ(Sliced(step, 0.5F, 2, false), (Curve{kInterpolationStep, {0, 0.5F, 1.5F}, {5, 6, 6}}));
    const float before = std::nextafter(1.0F, 0.0F);
    const Curve jump{kInterpolationLinear, {0, before, 1, 2}, {0, 1, 5, 6}};
    EXPECT_EQ(Sliced(jump, 0, 1, false).values, (std::vector<float>{0, 1}));
    EXPECT_EQ(Sliced(jump, 1, 2, false), (Curve{kInterpolationLinear, {0, 1}, {5, 6}}));
    // x^3 from 0 to 2, with its slopes 3x^2.
    const Curve cubic{kInterpolationCubic, {0, 2}, {0, 0, 0, 12, 8, 12}};
    const Curve part = Sliced(cubic, 0.5F, 1, false);
    EXPECT_EQ(part, (Curve{kInterpolationCubic, {0, 0.5F}, {0.75F, 0.125F, 0.75F, 3, 1, 3}}));
    EXPECT_EQ(Sliced(cubic, 3, 4, false), (Curve{kInterpolationLinear, {0}, {8}}));
    const Curve half = Sliced({kInterpolationLinear, {0, 1}, {0, 0, 0, 1, 1, 0, 0, 0}}, 0, 0.5F, true);
    EXPECT_NEAR(half.values[4], std::sqrt(0.5), 1e-6);
    EXPECT_NEAR(half.values[7], std::sqrt(0.5), 1e-6);
}

TEST_F(AnimationCommandTest, PartsOfACutAnimationPlayLikeItsIntervals) {
    LoadedScene before(AnimatedScene()), loaded(AnimatedScene());
    const std::vector<float> cuts{0.9F, 1.25F};
    const Animations parts = CutAnimation(loaded, *ChooseAnimation(loaded.Scene(), "jump"), cuts);
    RemoveAnimations(m_host, loaded, {ChooseAnimation(loaded.Scene(), "jump")});
    LoadedScene after = Reloaded(loaded);
    EXPECT_EQ(NamesOf(after), (Names{"walk", "rest", "jump 1", "jump 2", "jump 3"}));
    kernix::AnimationModel* whole = ChooseAnimation(before.Scene(), "jump");
    constexpr float kStarts[] = {0.5F, 0.9F, 1.25F};
    constexpr float kLengths[] = {0.4F, 0.35F, 0.25F};
    for (std::size_t part = 0; part < 3; ++part) {
        kernix::AnimationModel* cut = AnimationsOf(after.Scene())[part + 2];
        EXPECT_EQ(after.Scene().GetStartTime(cut), 0);
        EXPECT_FLOAT_EQ(after.Scene().GetEndTime(cut), kLengths[part]);
        for (int i = 0; i < 8; ++i) {
            const float time = kLengths[part] * static_cast<float>(i) / 8;
            for (std::size_t node = 0; node < 3; ++node) {
                const auto wanted = Pose(before, node, whole, kStarts[part] + time);
                const auto got = Pose(after, node, cut, time);
                EXPECT_LT(Difference(wanted.translation, got.translation), 1e-5) << part << node << time;
                EXPECT_LT(Difference(wanted.rotation, got.rotation), 1e-4) << part << node << time;
                EXPECT_LT(Difference(wanted.scale, got.scale), 1e-5) << part << node << time;
            }
        }
    }
}

TEST_F(AnimationCommandTest, EachMovedNodeGetsAnAnimation) {
    LoadedScene loaded(AnimatedScene());
    kernix::AnimationModel* walk = ChooseAnimation(loaded.Scene(), "walk");
    SeparateAnimation(loaded, *walk);
    RemoveAnimations(m_host, loaded, {walk});
    LoadedScene after = Reloaded(loaded);
    EXPECT_EQ(NamesOf(after), (Names{"jump", "rest", "walk body", "walk arm"}));
    EXPECT_EQ(AnimationsOf(after.Scene())[2]->Tracks().size(), 1U);
    EXPECT_FLOAT_EQ(after.Scene().GetStartTime(AnimationsOf(after.Scene())[3]), 0.25F);
}

TEST_F(AnimationCommandTest, NamesThatMatchNoneOrSeveralListTheCandidates) {
    LoadedScene loaded(AnimatedScene());
    const auto message = [&](const Names& names) -> std::string {
        try {
            ChooseAnimations(loaded.Scene(), names);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_NE(message({"walk", "run"}).find("0 \"walk\", 1 \"jump\", 2 \"rest\""), std::string::npos);
    EXPECT_NE(message({"walk", "0"}).find("twice"), std::string::npos);
    loaded.Scene().AddAnimation(u"walk");
    EXPECT_NE(message({"walk"}).find("3 \"walk\""), std::string::npos);
}

// A rig with additional nodes between and beside those of the other.
TEST_F(AnimationCommandTest, MatchesNodesOfDifferentRigs) {
    LoadedScene from(AnimatedScene());
    LoadedScene to(
        gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
      "nodes": [{"name": "root", "children": [1, 4]}, {"name": "body", "children": [2]},
                {"name": "shoulder", "children": [3]}, {"name": "left arm"}, {"name": "arm"}]})"));
    EXPECT_TRUE(MatchByPath(from.Scene(), to.Scene()).empty());

    // There are two arms in the other scene, one here.
    const NodePartners named = MatchByName(from.Scene(), to.Scene());
    ASSERT_EQ(named.size(), 1U);
    EXPECT_EQ(named.at(from.Node(0)), to.Node(1));

    const NodePartners paired =
        MatchByPairs(from.Scene(), to.Scene(), {{"/body", "/root/body"}, {"body", "left arm"}});
    EXPECT_EQ(paired.at(from.Node(0)), to.Node(3));
    EXPECT_EQ(MatchByPairs(from.Scene(), to.Scene(), {{"body", "shoulder"}}),
              (NodePartners{{from.Node(0), to.Node(2)}}));
    EXPECT_EQ(BringAnimations(from, to, named).withoutPartner, (Names{"/body/arm", "/body/arm"}));
    for (const NodePairs& pairs : {NodePairs{{"arm", "body"}}, NodePairs{{"body", "head"}}})
        EXPECT_THROW(MatchByPairs(from.Scene(), to.Scene(), pairs), std::runtime_error);
}

TEST(ClipNames, AreValidUniqueFileNames) {
    EXPECT_EQ(ClipNames({"walk", "Walk", "a/b", "", "..", "walk 2", "walk", "x. "}),
              (Names{"walk", "Walk 2", "a_b", "animation 3", "_", "walk 2 2", "walk 3", "x"}));
}

}  // namespace
}  // namespace zr
