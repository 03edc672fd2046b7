// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "app/commands/animation_choice.h"
#include "app/commands/bring_animations.h"
#include "app/commands/merge_animations.h"
#include "app/commands/split_animation.h"
#include "app/gltf/accessor.h"
#include "app/gltf/text.h"
#include "kernix/utf.h"
#include "tests/app/gltf/sample.h"

namespace zr {
namespace {

using gltf::Document;
using gltf::Json;
using gltf::JsonTree;
using gltf::Kind;
using vl::zr::kInterpolationCubic;
using vl::zr::kInterpolationLinear;
using vl::zr::kInterpolationStep;
using Names = std::vector<std::string>;

constexpr const char* kNodes = R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
  "nodes": [{"name": "body", "children": [1, 2], "translation": [0, 1, 0]},
            {"name": "arm", "rotation": [0, 0.6, 0, 0.8]}, {"name": "arm", "scale": [2, 2, 2]}]})";

struct Motion {
    std::size_t node;
    std::string_view path;
    Curve curve;
};

void AddAnimation(Document& document, std::string_view name, const std::vector<Motion>& motions) {
    JsonTree& tree = document.Tree();
    Json empty = JsonTree::MakeObject();
    tree.Member(empty, "name") = tree.MakeString(name);
    const std::size_t index = document.Append(Kind::kAnimation, empty);
    Json channels = JsonTree::MakeArray();
    for (const Motion& motion : motions) {
        const char* type = motion.path == "rotation" ? "VEC4" : "VEC3";
        Json channel = JsonTree::MakeObject(), target = JsonTree::MakeObject();
        tree.Member(target, "node") = tree.MakeIndex(motion.node);
        tree.Member(target, "path") = tree.MakeString(motion.path);
        tree.Member(channel, "sampler") = tree.MakeIndex(AppendCurve(document, index, motion.curve, type));
        tree.Member(channel, "target") = target;
        tree.Append(channels, channel);
    }
    tree.Member(document.Elements(Kind::kAnimation)[index], "channels") = channels;
}

// Keys that begin late or end early, that other sources do not have, and that pass in every way.
Document Scene() {
    Document document = gltf::test::FromText(kNodes);
    AddAnimation(document, "walk",
                 {{0, "translation", {kInterpolationLinear, {0, 0.5F, 1}, {0, 1, 0, 1, 1, 0, 2, 1, 0}}},
                  {1, "rotation", {kInterpolationLinear, {0.25F, 0.5F}, {0, 0, 0, 1, 1, 0, 0, 0}}}});
    AddAnimation(document, "jump",
                 {{0, "translation", {kInterpolationStep, {0.5F, 1.5F}, {0, 1, 0, 0, 9, 0}}},
                  {1, "rotation", {kInterpolationCubic, {0.5F, 1.25F}, {0, 0, 0, 0, 0, 0, 0, 1, 0, 2, 0, 0,
                                                                        0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0}}},
                  {2, "scale", {kInterpolationLinear, {0.75F, 1}, {1, 1, 1, 3, 1, 1}}}});
    AddAnimation(document, "rest", {{2, "rotation", {kInterpolationLinear, {0}, {0, 0, 1, 0}}}});
    return document;
}

class AnimationCommandTest : public testing::Test {
protected:
    AnimationCommandTest() { m_host.LoadModule(); }

    LoadedScene Reloaded(LoadedScene& loaded) {
        loaded.WriteBack();
        loaded.Document().Save(m_folder / "out.glb");
        return LoadedScene(Document::Load(m_folder / "out.glb"));
    }

    Host m_host{"en"};
    gltf::test::TemporaryFolder m_folder;
};

Names NamesOf(LoadedScene& loaded) {
    Names names;
    for (kernix::AnimationModel* animation : AnimationsOf(loaded.Scene()))
        names.push_back(kernix::ToUtf8(animation->m_name));
    return names;
}

kernix::TransformTrack::Sample Pose(LoadedScene& loaded, std::size_t node, kernix::AnimationModel* animation,
                                    float time) {
    kernix::NodeModel& model = *loaded.Node(node);
    auto* controller = model.GetController(vl::zr::kControllerTransform);
    vl::zr::Track* track = controller != nullptr ? controller->GetTrack(animation) : nullptr;
    const kernix::TransformTrack none(nullptr);
    return (track != nullptr ? static_cast<kernix::TransformTrack&>(*track) : none)
        .Evaluate(time, model.GetRestPose());
}

std::vector<float> KeyTimes(kernix::AnimationModel& animation) {
    std::vector<float> times;
    for (vl::zr::Track* track : animation.Tracks()) {
        auto* transform = dynamic_cast<kernix::TransformTrack*>(track);
        if (transform == nullptr) continue;
        for (int type : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale})
            for (int i = 0; i < transform->Count(type); ++i)
                times.push_back(transform->Get(type, i)->m_fTime);
    }
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

double Difference(const double (&a)[3], const double (&b)[3]) {
    return std::max({std::fabs(a[0] - b[0]), std::fabs(a[1] - b[1]), std::fabs(a[2] - b[2])});
}

double Difference(const kernix::Rotation& a, const kernix::Rotation& b) {
    const auto to = [&](double sign) {
        return std::max({std::fabs(a.x - sign * b.x), std::fabs(a.y - sign * b.y),
                         std::fabs(a.z - sign * b.z), std::fabs(a.w - sign * b.w)});
    };
    return std::min(to(1), to(-1));
}

// Whether, in sequence, every node stands at each key of each source as it does in the source.
void ExpectPlaysInSequence(LoadedScene& before, const Names& names, LoadedScene& after,
                           const std::string& merged, double gap) {
    kernix::AnimationModel* result = ChooseAnimation(after.Scene(), merged);
    double next = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        kernix::AnimationModel* source = ChooseAnimation(before.Scene(), names[i]);
        const std::vector<float> times = KeyTimes(*source);
        const double offset = i == 0 ? 0 : next - before.Scene().GetStartTime(source);
        for (const float time : times) {
            const auto there = static_cast<float>(time + offset);
            std::vector<float> moments{there};
            // Where two sources meet, a first vector gives way to the last one, and rotations jump.
            if (time == times.front()) moments.insert(moments.end(), {there + 2e-6F, there + 0.001F});
            if (time == times.back()) moments.push_back(there - 2e-6F);
            for (std::size_t node = 0; node < before.Document().Elements(Kind::kNode).size(); ++node) {
                if (before.Node(node) == nullptr) continue;
                SCOPED_TRACE(gltf::Join(names[i], " node ", node, " at ", std::to_string(time)));
                const auto wanted = Pose(before, node, source, time);
                double translation = 1, rotation = 1, scale = 1;
                for (const float moment : moments) {
                    const auto got = Pose(after, node, result, moment);
                    translation = std::min(translation, Difference(wanted.translation, got.translation));
                    rotation = std::min(rotation, Difference(wanted.rotation, got.rotation));
                    scale = std::min(scale, Difference(wanted.scale, got.scale));
                }
                EXPECT_LT(translation, 1e-5);
                EXPECT_LT(rotation, 1e-5);
                EXPECT_LT(scale, 1e-5);
            }
        }
        next = times.back() + offset + gap;
    }
}

TEST_F(AnimationCommandTest, SourcesInSequencePlayAsTheyDidAlone) {
    for (const double gap : {0.0, 0.5}) {
        LoadedScene before(Scene()), loaded(Scene());
        MergeOptions options;
        options.inSequence = true;
        options.gap = gap;
        const Names names{"walk", "jump", "rest"};
        const MergeReport report =
            MergeAnimations(m_host, loaded, ChooseAnimations(loaded.Scene(), names), options);
        EXPECT_TRUE(report.overlapping.empty());
        LoadedScene after = Reloaded(loaded);
        EXPECT_EQ(NamesOf(after), (Names{"walk", "jump", "rest", "Merge Result"}));
        ExpectPlaysInSequence(before, names, after, "Merge Result", gap);
        ExpectPlaysInSequence(before, {"jump"}, after, "jump", 0);  // as it was
        if (gap == 0) continue;
        // The pause shows the last pose, and does not turn towards the next.
        kernix::AnimationModel* result = ChooseAnimation(after.Scene(), "Merge Result");
        EXPECT_LT(Difference(Pose(before, 1, ChooseAnimation(before.Scene(), "walk"), 1).rotation,
                             Pose(after, 1, result, 1.4F).rotation),
                  1e-5);
    }
}

TEST_F(AnimationCommandTest, MergeKeepsTimesNamesOverlapsAndTakesOnlyWhatIsKept) {
    LoadedScene loaded(Scene());
    MergeOptions options;
    options.keyFlags = ANIM_MERGE_ROTATION;
    options.name = "B\xC3\xA4r";
    options.removeSources = true;
    const MergeReport report =
        MergeAnimations(m_host, loaded, ChooseAnimations(loaded.Scene(), {"walk", "1"}), options);
    EXPECT_TRUE(report.overlapping.empty())
        << "the arm's turns meet at half a second, and positions do not merge";
    LoadedScene after = Reloaded(loaded);
    EXPECT_EQ(NamesOf(after), (Names{"rest", "B\xC3\xA4r"}));
    EXPECT_EQ(after.Document().Elements(Kind::kAnimation)[1].Find("channels")->Items().size(), 1U);
    kernix::AnimationModel* result = AnimationsOf(after.Scene())[1];
    EXPECT_FLOAT_EQ(after.Scene().GetStartTime(result), 0.25F);
    EXPECT_FLOAT_EQ(after.Scene().GetEndTime(result), 1.25F);

    LoadedScene again(Scene());
    EXPECT_EQ(
        MergeAnimations(m_host, again, ChooseAnimations(again.Scene(), {"walk", "jump"}), {}).overlapping,
        Names{"node \"body\""});
}

TEST_F(AnimationCommandTest, MergeNamesWhatDoesNotMergeAndViewportsFollow) {
    LoadedScene loaded(gltf::test::Sample());
    kernix::SceneModel& scene = loaded.Scene();
    const Animations first = AnimationsOf(scene);
    ASSERT_EQ(first.size(), 1U);
    kernix::AnimationModel* second = scene.AddAnimation(u"second");
    ForEachController(scene, [&](vl::zr::Controller& controller, const std::string&) {
        if (controller.GetTrack(first[0]) != nullptr)
            CopyTrack(controller, controller.GetTrack(first[0]), controller, second);
    });
    MergeOptions options;
    options.removeSources = true;
    const MergeReport report = MergeAnimations(m_host, loaded, {first[0], second}, options);
    ASSERT_FALSE(report.dropped.empty());
    EXPECT_EQ(report.dropped[0], "/nodes/0/weights of node \"left\" in \"second\"");
    const auto& references = scene.Viewports()[0]->m_pAnimationReferences;
    const vl::ArrayOf<vl::zr::AnimationReference*> played(references);
    EXPECT_TRUE(std::any_of(played.begin(), played.end(),
                            [&](const auto* reference) { return reference->pAnimation == report.result; }));
}

TEST_F(AnimationCommandTest, BringsAnimationsToTheSamePath) {
    // In another order, with a matrix for the second arm.
    LoadedScene from(Scene());
    LoadedScene to(
        gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [3]}],
      "nodes": [{"name": "arm", "matrix": [2,0,0,0, 0,2,0,0, 0,0,2,0, 5,6,7,1]}, {"name": "leg"}, {"name": "arm"},
                {"name": "body", "children": [1, 2, 0]}]})"));
    EXPECT_EQ(BringAnimations(from, to).withoutPartner, Names{});
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
    EXPECT_EQ(BringAnimations(from, stranger).withoutPartner, Names{"/body/arm"});
}

TEST(SlicedTest, EveryWayOfPassingIsCutWhereItIs) {
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

TEST_F(AnimationCommandTest, PartsOfACutAnimationPlayAsItsStretches) {
    LoadedScene before(Scene()), loaded(Scene());
    const std::vector<float> cuts{0.9F, 1.25F};
    const Animations parts = CutAnimation(loaded.Scene(), *ChooseAnimation(loaded.Scene(), "jump"), cuts);
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
    LoadedScene loaded(Scene());
    kernix::AnimationModel* walk = ChooseAnimation(loaded.Scene(), "walk");
    SeparateAnimation(loaded.Scene(), *walk);
    RemoveAnimations(m_host, loaded, {walk});
    LoadedScene after = Reloaded(loaded);
    EXPECT_EQ(NamesOf(after), (Names{"jump", "rest", "walk body", "walk arm"}));
    EXPECT_EQ(AnimationsOf(after.Scene())[2]->Tracks().size(), 1U);
    EXPECT_FLOAT_EQ(after.Scene().GetStartTime(AnimationsOf(after.Scene())[3]), 0.25F);
}

TEST_F(AnimationCommandTest, NamesThatChooseNothingOrTooMuchListTheCandidates) {
    LoadedScene loaded(Scene());
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

}  // namespace
}  // namespace zr
