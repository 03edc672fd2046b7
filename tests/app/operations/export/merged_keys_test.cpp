// SPDX-License-Identifier: MIT
// Merging keys of baked motion, from single curves to exported files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "app/operations/export/export_scene.h"
#include "app/operations/export/thin_curve.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using test::TheHost;

using Values = std::vector<float>;

constexpr std::size_t kLegs = 3;
constexpr std::size_t kLegKeys = 60;

// The value of a linear curve for a reader with single precision.
Values Shown(const Curve& curve, float time) {
    const std::size_t width = curve.Width();
    const auto after = std::upper_bound(curve.times.begin(), curve.times.end(), time);
    const auto next = std::min<std::ptrdiff_t>(after - curve.times.begin(), std::ssize(curve.times) - 1);
    const auto i = static_cast<std::size_t>(std::max<std::ptrdiff_t>(next - 1, 0));
    const auto j = static_cast<std::size_t>(next);
    const float* a = curve.values.data() + i * width;
    const float* b = curve.values.data() + j * width;
    const float s = std::clamp((time - curve.times[i]) / (curve.times[j] - curve.times[i]), 0.0f, 1.0f);
    if (width == 4) {
        const vl::Quaternion q(s, {a[0], a[1], a[2], a[3]}, {b[0], b[1], b[2], b[3]}, 0);
        return {q.x, q.y, q.z, q.w};
    }
    return {a[0] + (b[0] - a[0]) * s, a[1] + (b[1] - a[1]) * s, a[2] + (b[2] - a[2]) * s};
}

// The greatest difference of a component at the keys of the curve and halfway between them.
double Deviation(const Curve& curve, const Curve& thinned) {
    double greatest = 0;
    const auto compare = [&](float time) {
        const Values a = Shown(curve, time), b = Shown(thinned, time);
        double same = 0, opposite = 0;  // the two quaternions of one orientation
        for (std::size_t i = 0; i < a.size(); ++i) {
            same = std::max(same, std::fabs(double{a[i]} - b[i]));
            opposite = std::max(opposite, std::fabs(double{a[i]} + b[i]));
        }
        greatest = std::max(greatest, a.size() == 4 ? std::min(same, opposite) : same);
    };
    for (std::size_t i = 0; i < curve.times.size(); ++i) {
        compare(curve.times[i]);
        if (i > 0) compare((curve.times[i - 1] + curve.times[i]) / 2);
    }
    return greatest;
}

// Piecewise linear motion, baked to 30 keys per second: value(leg, fraction) in double precision.
template <typename Value>
Curve Bake(const Value& value) {
    Curve curve;
    for (std::size_t i = 0; i <= kLegs * kLegKeys; ++i) {
        const std::size_t leg = std::min(i / kLegKeys, kLegs - 1);
        curve.times.push_back(static_cast<float>(static_cast<double>(i) / 30));
        const double share = static_cast<double>(i - leg * kLegKeys) / kLegKeys;
        for (const double number : value(leg, share)) curve.values.push_back(static_cast<float>(number));
    }
    return curve;
}

class Random {
public:
    std::vector<double> Numbers(std::size_t count, double size) {
        std::vector<double> numbers(count);
        for (double& number : numbers) number = std::uniform_real_distribution<double>(-size, size)(m_engine);
        return numbers;
    }
    Curve Move(double size) {
        std::vector<std::vector<double>> ends;
        for (std::size_t i = 0; i <= kLegs; ++i) ends.push_back(Numbers(3, size));
        return Bake([&](std::size_t leg, double share) {
            std::vector<double> value = ends[leg];
            for (std::size_t i = 0; i < 3; ++i) value[i] += (ends[leg + 1][i] - value[i]) * share;
            return value;
        });
    }
    Curve Turn() {
        std::vector<kernix::Rotation> starts = {{}};
        std::vector<std::vector<double>> axes;
        for (std::size_t i = 0; i < kLegs; ++i) {
            axes.push_back(Numbers(3, 1));
            starts.push_back(
                starts[i].Times(kernix::Rotation::About(axes[i][0], axes[i][1], axes[i][2], 2.5)));
        }
        return Bake([&](std::size_t leg, double share) {
            const auto turn = kernix::Rotation::About(axes[leg][0], axes[leg][1], axes[leg][2], 2.5 * share);
            const kernix::Rotation r = starts[leg].Times(turn);
            return std::vector<double>{r.x, r.y, r.z, r.w};
        });
    }

private:
    std::mt19937 m_engine{11};
};

TEST(Thinned, DropsNineOfTenBakedKeysAndKeepsTheMotion) {
    Random random;
    std::size_t before = 0, after = 0;
    for (int run = 0; run < 50; ++run) {
        for (const Curve& curve : {random.Move(1), random.Move(1000), random.Move(0.001), random.Turn()}) {
            const Curve thinned = Thinned(curve);
            before += curve.times.size();
            after += thinned.times.size();
            float size = 0;
            for (const float number : curve.values) size = std::max(size, std::fabs(number));
            ASSERT_LT(Deviation(curve, thinned), 1e-6 * std::max(double{size}, 1e-3));
            ASSERT_GE(curve.times.size(), 10 * thinned.times.size());
        }
    }
    std::printf("%zu baked keys became %zu\n", before, after);
}

TEST(Thinned, KeepsKeysOffTheLine) {
    const Curve exact{vl::zr::kInterpolationLinear,
                      {0, 1, 2, 3, 4, 5},
                      {0, 8, 1, 1, 6, 1, 2, 4, 1, 3, 2, 1, 3, 2, 1, 3, 2, 1}};
    EXPECT_EQ(Thinned(exact).times, (Values{0, 3, 5}));
    EXPECT_EQ(Thinned(exact).values, (Values{0, 8, 1, 3, 2, 1, 3, 2, 1}));

    // A jump between two adjacent float times, and a small motion before a large one.
    const float after = std::nextafter(2.0f, 3.0f);
    const Curve jump{vl::zr::kInterpolationLinear,
                     {0, 1, 2, after, 4, 5, 6},
                     {1, 0, 0, 1, 0, 0, 1, 0, 0, 5, 0, 0, 5, 0, 0, 5, 1e-4f, 0, 9000, 0, 0}};
    EXPECT_EQ(Thinned(jump).times, (Values{0, 2, after, 4, 5, 6}));

    for (const std::size_t count : {0u, 1u, 2u}) {
        const Curve few{
            vl::zr::kInterpolationLinear,
            Values(exact.times.begin(), exact.times.begin() + static_cast<std::ptrdiff_t>(count)),
            Values(exact.values.begin(), exact.values.begin() + 3 * static_cast<std::ptrdiff_t>(count))};
        EXPECT_EQ(Thinned(few), few);
    }
}

// One and a half turns in one direction; the quaternions change signs.
TEST(Thinned, KeepsTheDirectionOfRotation) {
    Curve curve;
    for (int i = 0; i <= 90; ++i) {
        const double half = i * 3.14159265358979 / 60;
        const float sign = i % 3 == 0 ? -1 : 1;
        curve.times.push_back(static_cast<float>(i) / 30);
        for (const double number : {0.0, std::sin(half), 0.0, std::cos(half)})
            curve.values.push_back(sign * static_cast<float>(number));
    }
    const Curve thinned = Thinned(curve);
    EXPECT_LE(thinned.times.size(), 6u);
    EXPECT_LT(Deviation(curve, thinned), 1e-6);

    // Keys that are nearly half a turn apart stay.
    const Curve far{vl::zr::kInterpolationLinear, {0, 1, 2}, {0, 0, 0, 1, 0, 1, 0, 0.02f, 0, 0, 0, 1}};
    EXPECT_EQ(Thinned(far), far);
}

TEST(MergedExport, HoldsAtEveryKeyOfTheScene) {
    Random random;
    const Curve curves[] = {random.Move(1), random.Turn(), random.Move(1)};
    constexpr int kTypes[] = {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale};
    for (const std::uint32_t flags :
         {std::uint32_t{vl::tk::kMergeKeys}, vl::tk::kMergeKeys | vl::tk::kFlipAxes}) {
        LoadedScene loaded(gltf::test::FromText(
            R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}], "nodes": [{"name": "box"}]})"));
        auto* track =
            loaded.Node(0)->AddTransformController()->AddTransformTrack(loaded.Scene().AddAnimation(u"a"));
        std::size_t count = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            PutKeys(*track, kTypes[i], curves[i]);
            count += curves[i].times.size();
        }
        ExportOptions options;
        options.exportFlags |= flags;
        Exported exported = ExportScene(TheHost(), std::move(loaded), options, [](double) {});
        const MotionReport& report = exported.report;
        EXPECT_EQ(report.keysBefore, count);
        EXPECT_LE(10 * report.keysAfter, count);
        EXPECT_GT(report.deviation, 0);
        EXPECT_LT(report.deviation,
                  3e-6);  // of points one unit along the axes, from position, rotation and scale together
        if ((flags & vl::tk::kFlipAxes) != 0) continue;

        const gltf::test::TemporaryFolder folder;
        exported.document.Save(folder / "out.glb");
        LoadedScene after(gltf::Document::Load(folder / "out.glb"));
        auto* controller = static_cast<kernix::TransformControllerModel*>(
            after.Node(0)->GetController(vl::zr::kControllerTransform));
        ASSERT_NE(controller, nullptr);
        const auto& made =
            *static_cast<kernix::TransformTrack*>(vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks)[0]);
        for (std::size_t i = 0; i < 3; ++i) EXPECT_LT(Deviation(curves[i], KeysOf(made, kTypes[i])), 1e-6);
    }
}

}  // namespace
}  // namespace zr
