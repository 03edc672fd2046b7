// SPDX-License-Identifier: MIT
// Sources in sequence as a reader of the written document sees them, evaluated independently.
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <type_traits>

#include "app/operations/animations/merge_animations.h"
#include "app/operations/animations/rest_value.h"
#include "base/text.h"
#include "tests/app/operations/animations/animation_kit.h"

namespace zr {
namespace {

using gltf::Document;
using gltf::Json;
using gltf::Kind;
using test::AnimationCommandTest;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
using Quaternion = std::array<float, 4>;

// The first curve of the merged animation with this path.
Curve MergedCurve(const Document& document, std::string_view path) {
    for (const Json& animation : document.Elements(Kind::kAnimation)) {
        if (animation.Find("name")->String() != "Merge Result") continue;
        for (const Json& channel : animation.Find("channels")->Items()) {
            if (channel.Find("target")->Find("path")->String() != path) continue;
            return ReadCurve(document,
                             animation.Find("samplers")->Items()[gltf::IndexMember(channel, "sampler")]);
        }
    }
    throw std::runtime_error(Join("the merged animation does not move ", path));
}

// Linear interpolation; rotations along the shorter arc, which readers determine in the precision Sum, often
// single.
template <class Sum = float>
std::vector<float> Shown(const Curve& curve, float time, bool isRotation) {
    const std::size_t width = curve.Width();
    const auto value = [&](std::size_t i) { return curve.values.data() + i * width; };
    const auto after = std::upper_bound(curve.times.begin(), curve.times.end(), time);
    const auto next = static_cast<std::size_t>(after - curve.times.begin());
    if (next == 0) return {value(0), value(0) + width};
    if (next == curve.times.size()) return {value(next - 1), value(next - 1) + width};
    const double s =
        (double{time} - curve.times[next - 1]) / (double{curve.times[next]} - curve.times[next - 1]);
    const float *a = value(next - 1), *b = value(next);
    double wa = 1 - s, wb = s;
    if (isRotation) {
        Sum dot = 0;
        for (std::size_t i = 0; i < width; ++i) dot += Sum{a[i]} * Sum{b[i]};
        const double angle = std::acos(std::min(std::fabs(static_cast<double>(dot)), 1.0));
        if (angle > 1e-6) {
            wa = std::sin(wa * angle) / std::sin(angle);
            wb = std::sin(wb * angle) / std::sin(angle);
        }
        // In double precision, an exact 0 may come out slightly negative.
        if (dot < (std::is_same_v<Sum, float> ? 0 : -1e-15)) wb = -wb;
    }
    std::vector<float> shown;
    for (std::size_t i = 0; i < width; ++i) shown.push_back(static_cast<float>(wa * a[i] + wb * b[i]));
    return shown;
}

float Distance(const std::vector<float>& a, const std::vector<float>& b, bool isRotation) {
    float straight = 0, negated = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        straight = std::max(straight, std::abs(a[i] - b[i]));
        negated = std::max(negated, std::abs(a[i] + b[i]));
    }
    return isRotation ? std::min(straight, negated) : straight;
}

Document Scene() {
    return gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [{"name": "wheel"}]})");
}

Curve Turns(const std::vector<Quaternion>& keys) {
    Curve curve;
    for (const Quaternion& key : keys) {
        curve.times.push_back(static_cast<float>(curve.times.size()));
        curve.values.insert(curve.values.end(), key.begin(), key.end());
    }
    return curve;
}

// Rotations by exactly half a turn, which readers cannot tell from the opposite turn, and by nearly that.
std::vector<Quaternion> HalfTurns(std::mt19937& random) {
    std::uniform_real_distribution<float> any(-1, 1);
    const auto sign = [&] { return random() % 2 == 0 ? 1.0F : -1.0F; };
    std::vector<Quaternion> keys;
    Quaternion at = {0, 0, 0, 1};
    if (random() % 2 == 0) at = {0.6F, 0, 0, 0.8F};
    for (int i = 0; i < 5; ++i) {
        keys.push_back(at);
        const auto [x, y, z, w] = at;
        const float s = sign();
        // Orthogonal to the last orientation, without rounding errors.
        switch (random() % 4) {
            case 0:
                at = {s * y, -s * x, s * w, -s * z};
                break;
            case 1:
                at = {s * w, s * z, -s * y, -s * x};
                break;
            case 2:
                at = {s * z, -s * w, -s * x, s * y};
                break;
            default: {
                const float tilt = any(random) * 1e-3F;
                at = {s * y + tilt * x, -s * x + tilt * y, s * w + tilt * z, -s * z + tilt * w};
            }
        }
    }
    return keys;
}

TEST_F(AnimationCommandTest, HalfTurnsInSequenceKeepTheirDirection) {
    std::mt19937 random(3);
    for (int round = 0; round < 40; ++round) {
        Document document = Scene();
        const Curve sources[] = {Turns(HalfTurns(random)), Turns(HalfTurns(random))};
        test::AddAnimation(document, "one", {{0, "rotation", sources[0]}});
        test::AddAnimation(document, "two", {{0, "rotation", sources[1]}});
        LoadedScene loaded(std::move(document));
        MergeOptions options;
        options.inSequence = true;
        MergeAnimations(m_host, loaded, AnimationsOf(loaded.Scene()), options);
        LoadedScene after = Reloaded(loaded);
        const Curve merged = MergedCurve(after.Document(), "rotation");
        for (std::size_t source = 0; source < 2; ++source) {
            for (float time = 0.125F; time < 4; time += 0.25F) {
                SCOPED_TRACE(Join("round ", round, ", source ", source, " at ", std::to_string(time)));
                EXPECT_LT(Distance(Shown<double>(sources[source], time, true),
                                   Shown(merged, time + 4.0F * static_cast<float>(source), true), true),
                          1e-5);
            }
        }
    }
}

TEST_F(AnimationCommandTest, WeightsRestWhileOtherSourcesPlay) {
    gltf::Document document = gltf::test::Sample();
    LoadedScene loaded(std::move(document));
    kernix::SceneModel& scene = loaded.Scene();
    kernix::AnimationModel* moving = AnimationsOf(scene)[0];
    // Two that move only a node, one before and one after.
    const Animations around = {scene.AddAnimation(u"before"), scene.AddAnimation(u"after")};
    std::string target;
    Curve weights;
    ForEachController(loaded, [&](vl::zr::Controller& controller, const std::string&) {
        vl::zr::Track* track = controller.GetTrack(moving);
        if (track == nullptr) return;
        if (controller.IsTypeOf(vl::zr::kTypeTransformController)) {
            for (kernix::AnimationModel* each : around) CopyTrack(controller, track, controller, each);
        } else if (auto& sampled = static_cast<kernix::SampledControllerModel&>(controller);
                   sampled.GetTarget().ends_with("/weights")) {
            weights = static_cast<kernix::SampledTrack&>(*track).GetCurve();
            target = sampled.GetTarget();
        }
    });
    ASSERT_FALSE(weights.times.empty());
    const std::vector<float> rest = *RestValue(loaded.Document(), target, weights.Width());
    const float length = scene.GetEndTime(moving) - scene.GetStartTime(moving);
    MergeOptions options;
    options.inSequence = true;
    options.gap = 1;
    MergeAnimations(m_host, loaded, {around[0], moving, around[1]}, options);
    LoadedScene after = Reloaded(loaded);
    const Curve merged = MergedCurve(after.Document(), "weights");
    const float start = scene.GetEndTime(around[0]) + 1;
    EXPECT_EQ(Shown(merged, scene.GetStartTime(around[0]) + 0.01F, false), rest);
    EXPECT_EQ(Shown(merged, start - 0.01F, false), rest);
    EXPECT_EQ(Shown(merged, start + length + 1.01F, false), rest);
    EXPECT_NE(Shown(merged, start + length / 2, false), rest);
    // Merged in twice, it shows the same values again.
    LoadedScene twice(gltf::test::Sample());
    kernix::AnimationModel* once = AnimationsOf(twice.Scene())[0];
    kernix::AnimationModel* again = twice.Scene().AddAnimation(u"again");
    ForEachController(twice, [&](vl::zr::Controller& controller, const std::string&) {
        if (controller.GetTrack(once) != nullptr)
            CopyTrack(controller, controller.GetTrack(once), controller, again);
    });
    EXPECT_TRUE(MergeAnimations(m_host, twice, {once, again}, options).dropped.empty());
    LoadedScene replayed = Reloaded(twice);
    const Curve both = MergedCurve(replayed.Document(), "weights");
    for (float time = twice.Scene().GetStartTime(once) + 0.01F; time < length; time += 0.05F)
        EXPECT_NEAR(Shown(both, time + length + 1, false)[0], Shown(both, time, false)[0], 1e-5) << time;
}

TEST(RestValue, ReadsWhatPointersName) {
    const Document document =
        gltf::test::FromText(R"({"asset": {"version": "2.0"}, "extras": {"a/b": [1, {"~": 5}]},
        "materials": [{"pbrMetallicRoughness": {"baseColorFactor": [0.5, 0.25, 0, 1]},
            "extensions": {"KHR_materials_ior": {}}}]})");
    const auto value = [&](const char* pointer, std::size_t width) {
        return RestValue(document, pointer, width).value_or(std::vector<float>());
    };
    using Values = std::vector<float>;
    EXPECT_EQ(value("/materials/0/pbrMetallicRoughness/baseColorFactor", 4), (Values{0.5F, 0.25F, 0, 1}));
    EXPECT_EQ(value("/materials/0/pbrMetallicRoughness/baseColorFactor", 3), Values());
    EXPECT_EQ(value("/materials/0/pbrMetallicRoughness/metallicFactor", 1), Values{1});
    EXPECT_EQ(value("/materials/0/extensions/KHR_materials_ior/ior", 1), Values{1.5F});
    EXPECT_EQ(value("/materials/1/emissiveFactor", 3), (Values{0, 0, 0}));
    EXPECT_EQ(value("/extras/a~1b/1/~0", 1), Values{5});
    EXPECT_EQ(value("/extras/unknown", 1), Values());
}

TEST_F(AnimationCommandTest, AMergeThatWouldLoseKeysFailsAndLeavesTheSceneUnchanged) {
    const auto fails = [&](const test::Names& names, MergeOptions options) {
        LoadedScene loaded(test::AnimatedScene());
        options.removeSources = true;
        std::string error;
        try {
            MergeAnimations(m_host, loaded, ChooseAnimations(loaded.Scene(), names), options);
        } catch (const std::runtime_error& failure) {
            error = failure.what();
        }
        EXPECT_EQ(test::NamesOf(loaded), (test::Names{"walk", "jump", "rest"}));
        return error;
    };
    MergeOptions scales;
    scales.keyFlags = ANIM_MERGE_SCALE;
    EXPECT_EQ(fails({"walk", "rest"}, scales),
              "the merged animation would move nothing: no source has keys to merge");
    MergeOptions sequence;
    sequence.inSequence = true;
    for (const double gap : {1e7, 1e39}) {
        sequence.gap = gap;
        EXPECT_EQ(fails({"rest", "walk"}, sequence),
                  "animation \"walk\" would lose keys: this late in the sequence, their times coincide");
    }
}

}  // namespace
}  // namespace zr
