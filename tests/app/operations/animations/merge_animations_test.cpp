// SPDX-License-Identifier: MIT
// ZR_TEST_SCENES may name further scenes, separated by colons.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <sstream>

#include "app/operations/animations/merge_animations.h"
#include "app/operations/animations/split_animation.h"
#include "base/text.h"
#include "tests/app/operations/animations/animation_kit.h"

namespace zr {
namespace {

using gltf::Document;
using gltf::Json;
using gltf::JsonTree;
using gltf::Kind;
using test::AnimatedScene;
using test::AnimationCommandTest;
using test::Difference;
using test::ExpectPlaysInSequence;
using test::KeyTimes;
using test::Names;
using test::NamesOf;
using test::Pose;

TEST_F(AnimationCommandTest, SourcesInSequencePlayAsTheyDidAlone) {
    for (const double gap : {0.0, 0.5}) {
        LoadedScene before(AnimatedScene()), loaded(AnimatedScene());
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
        ExpectPlaysInSequence(before, {"jump"}, after, "jump", 0);  // unchanged
        if (gap == 0) continue;
        // The pause holds the last pose and does not turn towards the next.
        kernix::AnimationModel* result = ChooseAnimation(after.Scene(), "Merge Result");
        EXPECT_LT(Difference(Pose(before, 1, ChooseAnimation(before.Scene(), "walk"), 1).rotation,
                             Pose(after, 1, result, 1.4F).rotation),
                  1e-5);
    }
}

kernix::TransformTrack* TrackOf(vl::zr::Controller& controller, kernix::AnimationModel* animation) {
    return dynamic_cast<kernix::TransformTrack*>(controller.GetTrack(animation));
}

// Splits an animation at a time into two, whose keys keep their times.
Animations Halves(LoadedScene& loaded, kernix::AnimationModel* source, float middle) {
    kernix::SceneModel& scene = loaded.Scene();
    const Animations halves{scene.AddAnimation(u"early"), scene.AddAnimation(u"late")};
    ForEachController(loaded, [&](vl::zr::Controller& controller, const std::string&) {
        const kernix::TransformTrack* track = TrackOf(controller, source);
        if (track == nullptr) return;
        for (const int type : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale}) {
            const Curve curve = BakedKeys(*track, type);
            const std::size_t width = curve.Width();
            for (std::size_t i = 0; i < curve.times.size(); ++i) {
                kernix::AnimationModel* half = halves[curve.times[i] < middle ? 0 : 1];
                const float* value = curve.values.data() + i * width;
                auto& part = static_cast<kernix::TransformTrack&>(*controller.AddTrack(half));
                PutKeys(part, type, {vl::zr::kInterpolationLinear, {curve.times[i]}, {value, value + width}});
            }
        }
    });
    return halves;
}

void ExpectPartsMakeUpTheWhole(LoadedScene& before, kernix::AnimationModel* whole, LoadedScene& after) {
    kernix::AnimationModel* result = ChooseAnimation(after.Scene(), "Merge Result");
    for (std::size_t node = 0; node < before.Document().Elements(Kind::kNode).size(); ++node) {
        kernix::NodeModel* model = before.Node(node);
        auto* controller = model != nullptr ? model->GetController(vl::zr::kControllerTransform) : nullptr;
        kernix::TransformTrack* track = controller != nullptr ? TrackOf(*controller, whole) : nullptr;
        if (track == nullptr) continue;
        for (const int type : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale}) {
            for (int i = 0; i < track->Count(type); ++i) {
                const float time = track->TimeOf(type, i);
                SCOPED_TRACE(Join("node ", node, " at ", std::to_string(time)));
                const auto wanted = Pose(before, node, whole, time), got = Pose(after, node, result, time);
                if (type == vl::zr::kKeyPosition)
                    EXPECT_LT(Difference(wanted.translation, got.translation), 1e-5);
                else if (type == vl::zr::kKeyRotation)
                    EXPECT_LT(Difference(wanted.rotation, got.rotation), 1e-5);
                else
                    EXPECT_LT(Difference(wanted.scale, got.scale), 1e-5);
            }
        }
    }
}

// Merging at original times: an animation separated by node, or split in halves, is restored.
void ExpectPartsMerge(Host& host, const std::function<LoadedScene()>& load, const std::string& name,
                      const std::function<LoadedScene(LoadedScene&)>& reload) {
    SCOPED_TRACE(name);
    LoadedScene before = load();
    kernix::AnimationModel* whole = ChooseAnimation(before.Scene(), name);
    const std::vector<float> times = KeyTimes(*whole);
    for (const bool byNode : {true, false}) {
        LoadedScene loaded = load();
        kernix::AnimationModel* source = ChooseAnimation(loaded.Scene(), name);
        if (!byNode && times.size() < 2) continue;
        const Animations parts =
            byNode ? SeparateAnimation(loaded, *source) : Halves(loaded, source, times[times.size() / 2]);
        if (parts.size() < 2) continue;
        MergeOptions options;
        options.removeSources = true;
        EXPECT_TRUE(MergeAnimations(host, loaded, parts, options).overlapping.empty());
        LoadedScene after = reload(loaded);
        ExpectPartsMakeUpTheWhole(before, whole, after);
        // Weights and pointers are merged too.
        kernix::AnimationModel* result = ChooseAnimation(after.Scene(), "Merge Result");
        EXPECT_TRUE(!byNode || result->Tracks().size() == whole->Tracks().size());
    }
}

TEST_F(AnimationCommandTest, PartsAtTheirOwnTimesMakeUpTheWhole) {
    for (const char* name : {"walk", "jump"}) {
        ExpectPartsMerge(
            m_host, [] { return LoadedScene(AnimatedScene()); }, name,
            [this](LoadedScene& loaded) { return Reloaded(loaded); });
    }
}

TEST_F(AnimationCommandTest, FurtherScenesMergeAsWell) {
    const char* scenes = std::getenv("ZR_TEST_SCENES");
    if (scenes == nullptr) GTEST_SKIP() << "ZR_TEST_SCENES names no scenes";
    std::istringstream list(scenes);
    for (std::string file; std::getline(list, file, ':');) {
        SCOPED_TRACE(file);
        const auto load = [&file] { return LoadedScene(Document::Load(file)); };
        LoadedScene before = load(), loaded = load();
        Names names;
        for (std::size_t i = 0; i < AnimationsOf(before.Scene()).size(); ++i)
            names.push_back(std::to_string(i));
        for (const std::string& name : names) {
            ExpectPartsMerge(m_host, load, name, [this](LoadedScene& merged) { return Reloaded(merged); });
        }
        if (names.size() < 2) continue;
        MergeOptions options;
        options.inSequence = true;
        MergeAnimations(m_host, loaded, ChooseAnimations(loaded.Scene(), names), options);
        LoadedScene after = Reloaded(loaded);
        ExpectPlaysInSequence(before, names, after, "Merge Result", 0);
    }
}

TEST_F(AnimationCommandTest, MergeKeepsTimesReportsOverlapsAndTakesOnlyChosenKinds) {
    LoadedScene loaded(AnimatedScene());
    MergeOptions options;
    options.keyFlags = ANIM_MERGE_ROTATION;
    options.name = "B\xC3\xA4r";
    options.removeSources = true;
    const MergeReport report =
        MergeAnimations(m_host, loaded, ChooseAnimations(loaded.Scene(), {"walk", "1"}), options);
    EXPECT_TRUE(report.overlapping.empty())
        << "the rotations of the arm meet at half a second; positions are not merged";
    LoadedScene after = Reloaded(loaded);
    EXPECT_EQ(NamesOf(after), (Names{"rest", "B\xC3\xA4r"}));
    EXPECT_EQ(after.Document().Elements(Kind::kAnimation)[1].Find("channels")->Items().size(), 1U);
    kernix::AnimationModel* result = AnimationsOf(after.Scene())[1];
    EXPECT_FLOAT_EQ(after.Scene().GetStartTime(result), 0.25F);
    EXPECT_FLOAT_EQ(after.Scene().GetEndTime(result), 1.25F);

    LoadedScene again(AnimatedScene());
    EXPECT_EQ(
        MergeAnimations(m_host, again, ChooseAnimations(again.Scene(), {"walk", "jump"}), {}).overlapping,
        Names{"node \"body\""});
}

TEST_F(AnimationCommandTest, MergeReportsDroppedCurvesAndUpdatesViewports) {
    LoadedScene loaded(gltf::test::Sample());
    kernix::SceneModel& scene = loaded.Scene();
    const Animations first = AnimationsOf(scene);
    ASSERT_EQ(first.size(), 1U);
    kernix::AnimationModel* second = scene.AddAnimation(u"second");
    ForEachController(loaded, [&](vl::zr::Controller& controller, const std::string&) {
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

// Channels that the scene does not show are not in the result, and a pose of zero length gets no time in a
// sequence.
TEST_F(AnimationCommandTest, MergeReportsWhatItLeavesOut) {
    Document document = AnimatedScene();
    JsonTree& tree = document.Tree();
    Json& channels = *document.Elements(Kind::kAnimation)[1].Find("channels");
    tree.Append(channels, tree.Build(R"({"sampler": 0, "target": {"path": "pointer", "extensions":
        {"KHR_animation_pointer": {"pointer": "/cameras/0/perspective/yfov"}}}})"));
    LoadedScene loaded(std::move(document));
    MergeOptions options;
    options.inSequence = options.removeSources = true;
    const MergeReport report =
        MergeAnimations(m_host, loaded, ChooseAnimations(loaded.Scene(), {"rest", "jump"}), options);
    EXPECT_EQ(report.dropped,
              (Names{"/animations/1/channels/3 of \"jump\": nothing in the scene shows what it moves"}));
    EXPECT_EQ(report.unseen, (Names{"\"rest\""}));
}

}  // namespace
}  // namespace zr
