// SPDX-License-Identifier: MIT
#include "app/operations/export/motion_check.h"

#include <gtest/gtest.h>

#include <cmath>

#include "app/operations/export/export_scene.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using test::TheHost;

// An arm that turns, with a hand ten units along it.
LoadedScene Arm(const Curve& turn) {
    LoadedScene loaded(gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}],
        "nodes": [{"name": "arm", "children": [1]}, {"name": "hand", "translation": [10, 0, 0]}]})"));
    auto* track =
        loaded.Node(0)->AddTransformController()->AddTransformTrack(loaded.Scene().AddAnimation(u"turn"));
    track->SetCurve(vl::zr::kKeyRotation, kernix::StoredCurve(turn));
    return loaded;
}

Curve QuarterTurn() {
    const auto half = static_cast<float>(std::sqrt(0.5));
    return {{}, {0, 1}, {0, 0, 0, 1, 0, 0, half, half}};
}

MotionReport Check(LoadedScene& loaded, const ExportOptions& options, const Curve& turn) {
    auto* controller = loaded.Node(0)->GetController(vl::zr::kControllerTransform);
    kernix::AnimationModel* animation = loaded.Scene().AllAnimations()[0].Get();
    const Tool records = RunTool(TheHost(), loaded, animation, options);
    ReplacedKeys replaced;
    replaced[controller->GetTrack(animation)][1] = turn;
    for (vl::zr::Track* track : animation->Tracks())
        static_cast<kernix::TransformTrack&>(*track).ForgetObjects();
    MotionReport report;
    CheckMotion(loaded, records, options, Clips(loaded.Scene(), {}), {{animation, 1, 0}}, replaced, {},
                report);
    return report;
}

// The arm turns by half the angle that it should.
TEST(MotionCheck, FindsTheGreatestDistance) {
    const auto sine = static_cast<float>(std::sin(0.3926990816987)), cosine = std::sqrt(1 - sine * sine);
    const Curve eighth{{}, {0, 1}, {0, 0, 0, 1, 0, 0, sine, cosine}};
    for (const MotionCheck check : {MotionCheck::kQuick, MotionCheck::kThorough}) {
        ExportOptions options;
        options.check = check;
        LoadedScene loaded = Arm(QuarterTurn());
        EXPECT_EQ(Check(loaded, options, QuarterTurn()).deviation, 0);
        const MotionReport report = Check(loaded, options, eighth);
        // The point one unit further along the hand deviates most: by the chord of an eighth of a turn at
        // radius 11.
        EXPECT_NEAR(report.deviation, 2 * 11 * static_cast<double>(sine), 1e-4);
        EXPECT_EQ(report.node, "hand");
        EXPECT_EQ(report.time, 1);
        EXPECT_NEAR(report.size, std::hypot(10, 10), 0.1);
        EXPECT_THROW(CheckDeviation(report, options), std::runtime_error);
        options.maxDeviation = 1;
        EXPECT_NO_THROW(CheckDeviation(report, options));
    }
}

// Checks an export that replaces the track's positions with these two, at 0 and 1 s.
MotionReport CheckOtherPositions(LoadedScene& loaded, kernix::AnimationModel* animation,
                                 kernix::TransformTrack& track, const ExportOptions& options,
                                 std::vector<float> positions) {
    const Tool records = RunTool(TheHost(), loaded, animation, options);
    track.ForgetObjects();
    ReplacedKeys replaced;
    replaced[&track][0] = Curve{{}, {0, 1}, std::move(positions)};
    MotionReport report;
    CheckMotion(loaded, records, options, Clips(loaded.Scene(), {}), {{animation, 1, 0}}, replaced, {},
                report);
    return report;
}

TEST(MotionCheck, CoversAllNodesWithinItsBudget) {
    std::string nodes = R"({"name": "top", "children": [1)";
    for (int i = 2; i <= 40000; ++i) nodes += "," + std::to_string(i);
    nodes += "]}";
    for (int i = 1; i <= 40000; ++i) nodes += R"(, {"translation": [1, 0, 0]})";
    LoadedScene loaded(gltf::test::FromText(
        R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}], "nodes": [)" + nodes + "]}"));
    kernix::AnimationModel* animation = loaded.Scene().AddAnimation(u"a");
    auto* track = loaded.Node(39000)->AddTransformController()->AddTransformTrack(animation);
    track->SetCurve(vl::zr::kKeyPosition, kernix::StoredCurve({{}, {0, 1}, {1, 0, 0, 1, 0, 0}}));
    ExportOptions options;
    const MotionReport report = CheckOtherPositions(loaded, animation, *track, options, {1, 0, 5, 1, 0, 5});
    EXPECT_NEAR(report.deviation, 5, 1e-6);
}

// A chain of nodes moves with the same deviation everywhere; it is long enough for several threads.
TEST(MotionCheck, OfEqualDistancesNamesTheFirst) {
    std::string nodes = R"({"name": "lift", "children": [1)", levels;
    for (int i = 2; i <= 300; ++i) nodes += "," + std::to_string(i);
    for (int i = 1; i <= 300; ++i) levels += R"(, {"translation": [0, 1, 0]})";
    LoadedScene loaded(
        gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}], "nodes": [)" +
                             nodes + "]}" + levels + "]}"));
    kernix::AnimationModel* animation = loaded.Scene().AddAnimation(u"a");
    auto* track = loaded.Node(0)->AddTransformController()->AddTransformTrack(animation);
    track->SetCurve(vl::zr::kKeyPosition, kernix::StoredCurve({{}, {0, 1}, {0, 0, 0, 0, 10, 0}}));
    ExportOptions options;
    options.check = MotionCheck::kThorough;
    const MotionReport report = CheckOtherPositions(loaded, animation, *track, options, {0, 0, 5, 0, 10, 5});
    EXPECT_EQ(report.deviation, 5);
    EXPECT_EQ(report.time, 0);
    EXPECT_EQ(report.node, "lift");
    EXPECT_NEAR(report.size, 11, 1e-6);
}

TEST(MotionCheck, StopsAnExportThatDeviatesTooMuch) {
    Curve turn;  // at constant speed, each key rounded separately
    for (int i = 0; i <= 100; ++i) {
        const double half = 0.01 * i;
        turn.times.push_back(static_cast<float>(i) / 30);
        turn.values.insert(turn.values.end(),
                           {0, 0, static_cast<float>(std::sin(half)), static_cast<float>(std::cos(half))});
    }
    ExportOptions options;
    options.exportFlags |= vl::tk::kMergeKeys;
    options.maxDeviation = 0;
    EXPECT_THROW(ExportScene(TheHost(), Arm(turn), options, [](double) {}), std::runtime_error);
    options.check = MotionCheck::kOff;
    const Exported unchecked = ExportScene(TheHost(), Arm(turn), options, [](double) {});
    EXPECT_TRUE(Describe(unchecked.report).ends_with("; motion not checked"));
    options = ExportOptions();
    options.exportFlags |= vl::tk::kMergeKeys;
    EXPECT_NE(
        Describe(ExportScene(TheHost(), Arm(turn), options, [](double) {}).report).find("; quick check: "),
        std::string::npos);
}

}  // namespace
}  // namespace zr
