// SPDX-License-Identifier: MIT
// Parts of animations, compared by an evaluator that shares no code with the export.
#include "app/operations/export/clip.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "app/operations/compare/evaluator.h"
#include "app/operations/export/export_scene.h"
#include "base/text.h"
#include "tests/app/operations/compare/scene_plan.h"
#include "tests/app/services/the_host.h"
#include "tests/base/rounds.h"
#include "tests/gltf/sample.h"

namespace zr::test {
namespace {

using compare::Evaluator;

// Step, linear and cubic curves of transforms and weights that begin and end at different times.
gltf::Document RandomScene(unsigned seed) {
    Random random(seed);
    ScenePlan plan = MakePlan(random);
    for (ScenePlan::Node& node : plan.nodes) node.scene = 0;
    return Write(plan, random);
}

Exported Export(gltf::Document document, const ExportOptions& options) {
    return ExportScene(TheHost(), LoadedScene(std::move(document)), options, [](double) {});
}

struct Case {
    const char* what;
    ClipOptions clip;
    std::uint32_t exportFlags = 0, animFlags = 0;
    float rescale = 1;
    double allowed = 1e-3;  // some rotations come close to the identity, where rounding matters
};

// The time of the result for a time of the source.
double Mapped(double time, double from, double to, const Case& each) {
    const double speed = each.clip.speed;
    if ((each.animFlags & vl::tk::kReverseTime) != 0) return (to - time) / speed * double{each.rescale};
    return (time - (each.clip.startsAtZero ? from : 0)) / speed;
}

double Difference(const Evaluator& a, const Evaluator& b) {
    double worst = 0;
    for (std::size_t node = 0; node < a.Nodes(); ++node) {
        const compare::Affine &p = a.World(node), &q = b.World(node);
        for (const compare::Vec3& off : {p.x - q.x, p.y - q.y, p.z - q.z, p.origin - q.origin})
            worst = std::max(worst, compare::Length(off));
        const auto v = a.Weights(node), w = b.Weights(node);
        EXPECT_EQ(v.size(), w.size());
        for (std::size_t i = 0; i < std::min(v.size(), w.size()); ++i)
            worst = std::max(worst, std::abs(v[i] - w[i]));
    }
    return worst;
}

void ExpectPlaysItsStretch(unsigned seed, const Case& each) {
    ExportOptions options;
    options.clip = each.clip;
    options.exportFlags |= each.exportFlags;
    options.animFlags |= each.animFlags;
    options.rescale = each.rescale;
    if (each.clip.frameRate != 0) options.maxDeviation = 1;
    const gltf::test::TemporaryFolder folder;
    Exported exported = Export(RandomScene(seed), options);
    exported.document.Save(folder / "out.glb");
    const gltf::Document source = RandomScene(seed), result = gltf::Document::Load(folder / "out.glb");
    Evaluator before(source), after(result);
    ASSERT_EQ(before.Nodes(), after.Nodes());
    ASSERT_EQ(before.Animations().size(), after.Animations().size());
    Random random(seed);
    for (std::size_t i = 0; i < before.Animations().size(); ++i) {
        const compare::Animation& whole = before.Animations()[i];
        const double from = std::max(double{each.clip.from}, whole.start);
        const double to = std::min(double{each.clip.to}, whole.end);
        const double begin = Mapped(from, from, to, each), end = Mapped(to, from, to, each);
        EXPECT_NEAR(after.Animations()[i].start, std::min(begin, end), 1e-6);
        EXPECT_NEAR(after.Animations()[i].end, std::max(begin, end), 1e-6);
        for (int k = 0; k <= 100; ++k) {
            double time = from + (to - from) * std::uniform_real_distribution<double>(0, 1)(random);
            if (k == 0) time = from;
            if (k == 100) time = to;
            const double frames = std::floor((time - from) / each.clip.speed * each.clip.frameRate);
            if (each.clip.frameRate != 0 && k != 100)
                time = from + (frames / each.clip.frameRate + 1e-7) * each.clip.speed;
            before.SetTime(i, time);
            after.SetTime(i, Mapped(time, from, to, each));
            ASSERT_LT(Difference(before, after), each.allowed) << whole.name << " at " << time;
        }
    }
}

TEST(Clip, PlaysLikeItsPartOfTheSource) {
    const Case cases[] = {
        {"from", {.from = 0.6F}},
        {"to", {.to = 1.45F}},
        {"from and to, at 0", {.from = 0.3F, .to = 1.7F, .startsAtZero = true}},
        {"within a piece", {.from = 0.81F, .to = 0.9F}},
        {"longer than the animation, twice as fast", {.to = 100, .speed = 2}},
        {"sampled", {.from = 0.3F, .to = 1.7F, .speed = 0.7, .frameRate = 30}},
        {"backwards",
         {.from = 0.3F, .to = 1.7F, .speed = 0.5},
         0,
         vl::tk::kReverseTime | vl::tk::kRescaleTime,
         3},
        {"merged and resampled",
         {.from = 0.3F, .to = 1.7F, .startsAtZero = true},
         vl::tk::kMergeKeys,
         vl::tk::kResampleKeys,
         1,
         1e-3},
    };
    for (const Case& each : cases) {
        for (unsigned seed = 0; seed < Rounds(4); ++seed) {
            SCOPED_TRACE(Join(each.what, ", ", seed));
            ExpectPlaysItsStretch(seed, each);
        }
    }
}

// Too few samples deviate much, and the check against the source detects it.
TEST(Clip, SamplingReportsItsDeviation) {
    ExportOptions options;
    options.clip.frameRate = 1;
    EXPECT_THROW(Export(RandomScene(1), options), std::runtime_error);
    options.maxDeviation = std::numeric_limits<double>::infinity();
    const MotionReport report = Export(RandomScene(1), options).report;
    EXPECT_GT(report.deviation, 0.1);
    EXPECT_GT(report.valueDeviation, 0.01);
}

TEST(Clip, IsNeitherEmptyNorUnbounded) {
    const auto message = [](const ClipOptions& clip) -> std::string {
        ExportOptions options;
        options.clip = clip;
        try {
            Export(RandomScene(1), options);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return {};
    };
    EXPECT_NE(message({.from = 5}).find("nothing of it is left"), std::string::npos);
    EXPECT_NE(message({.speed = 1e-6, .frameRate = 1000}).find("keys (--fps)"), std::string::npos);
}

}  // namespace
}  // namespace zr::test
