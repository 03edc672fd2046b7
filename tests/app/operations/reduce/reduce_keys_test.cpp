// SPDX-License-Identifier: MIT
#include "app/operations/reduce/reduce_keys.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include "app/operations/compare/compare_scenes.h"
#include "base/text.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using compare::Aspect;

// An arm of four joints, each one unit long, with a triangle at its end; a camera and a face beside it.
constexpr const char* kNodes = R"(
  {"name": "shoulder", "children": [1]},
  {"name": "elbow", "translation": [1, 0, 0], "children": [2]},
  {"name": "wrist", "translation": [1, 0, 0], "children": [3]},
  {"name": "finger", "translation": [1, 0, 0], "mesh": 0},
  {"name": "eye", "camera": 0},
  {"name": "face", "mesh": 1})";

class Scene {
public:
    Scene() { Add("VEC3", {0, 0, 0, 1, 0, 0, 0, 0.5f, 0}, R"(, "min": [0,0,0], "max": [1,0.5,0])"); }

    std::size_t Add(const char* type, const std::vector<float>& values, const std::string& rest = "") {
        const std::size_t width = type[0] == 'S' ? 1 : static_cast<std::size_t>(type[3] - '0');
        const std::size_t offset = m_bin.size();
        m_bin.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(float));
        m_views += Join(m_count == 0 ? "" : ",", R"({"buffer": 0, "byteOffset": )", offset,
                        R"(, "byteLength": )", m_bin.size() - offset, "}");
        m_accessors += Join(m_count == 0 ? "" : ",", R"({"bufferView": )", m_count,
                            R"(, "componentType": 5126, "count": )", values.size() / width, R"(, "type": ")",
                            type, "\"", rest, "}");
        return m_count++;
    }

    // Animates a node for ten seconds in equal pieces. value: the value at a time. Cubic curves use the
    // values as slopes too.
    void Animate(std::size_t node, const char* path, const std::function<std::vector<float>(float)>& value,
                 const char* interpolation = "LINEAR", int pieces = 300) {
        std::vector<float> times, values;
        const bool isCubic = interpolation == std::string("CUBICSPLINE");
        for (int i = 0; i <= pieces; ++i) {
            times.push_back(10 * static_cast<float>(i) / static_cast<float>(pieces));
            const std::vector<float> at = value(times.back());
            for (int part = 0; part < (isCubic ? 3 : 1); ++part)
                values.insert(values.end(), at.begin(), at.end());
        }
        const std::size_t width = value(0).size();
        const std::size_t input = Add("SCALAR", times, R"(, "min": [0], "max": [10])");
        const std::size_t output = Add(width == 4 ? "VEC4" : width == 3 ? "VEC3" : "SCALAR", values);
        m_samplers += Join(m_channelCount == 0 ? "" : ",", R"({"input": )", input, R"(, "output": )", output,
                           R"(, "interpolation": ")", interpolation, "\"}");
        m_channels += Join(m_channelCount == 0 ? "" : ",", R"({"sampler": )", m_channelCount,
                           R"(, "target": {"node": )", node, R"(, "path": ")", path, "\"}}");
        ++m_channelCount;
    }

    // Draws instances of the finger's triangle at these places in the finger's space.
    void DrawFingerAt(const std::vector<float>& places) {
        m_instances = Join(R"("extensions": {"EXT_mesh_gpu_instancing": {"attributes": {"TRANSLATION": )",
                           Add("VEC3", places), "}}}, ");
    }

    gltf::Document Load() const {
        std::string nodes = kNodes;
        nodes.insert(nodes.find(R"("mesh": 0)"), m_instances);
        const std::string json =
            Join(R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0, 4, 5]}], "nodes": [)",
                 nodes,
                 R"(], "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]},
            {"primitives": [{"attributes": {"POSITION": 0}, "targets": [{"POSITION": 0}]}]}],
            "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}],
            "animations": [{"name": "wave", "samplers": [)",
                 m_samplers, R"(], "channels": [)", m_channels, R"(]}], "accessors": [)", m_accessors,
                 R"(], "bufferViews": [)", m_views, R"(], "buffers": [{"byteLength": )", m_bin.size(), "}]}");
        return gltf::Document::FromBytes(BytesOf(gltf::test::Glb(json, m_bin)), "arm.glb");
    }

private:
    std::string m_bin, m_accessors, m_views, m_samplers, m_channels, m_instances;
    std::size_t m_count = 0, m_channelCount = 0;
};

std::function<std::vector<float>(float)> Swing(double pace, double off = 0) {
    return [pace, off](float time) {
        const double angle = 0.8 * std::sin(pace * static_cast<double>(time)) + off;
        return std::vector<float>{0, 0, static_cast<float>(std::sin(angle / 2)),
                                  static_cast<float>(std::cos(angle / 2))};
    };
}

std::size_t Keys(const gltf::Document& document, std::size_t channel) {
    const gltf::Json& animation = document.Elements(gltf::Kind::kAnimation)[0];
    const std::size_t sampler = gltf::IndexMember(animation.Find("channels")->Items()[channel], "sampler");
    const std::size_t input = gltf::IndexMember(animation.Find("samplers")->Items()[sampler], "input");
    return gltf::IndexMember(document.Elements(gltf::Kind::kAccessor)[input], "count");
}

// The greatest distance over time between the corners of the bounding box of the triangle in both documents.
double GreatestStray(const gltf::Document& a, const gltf::Document& b) {
    compare::Evaluator given(a), other(b);
    double greatest = 0;
    for (int i = 0; i <= 3000; ++i) {
        given.SetTime(0, i / 300.0);
        other.SetTime(0, i / 300.0);
        for (const compare::Vec3& corner : {compare::Vec3{0, 0, 0}, {1, 0, 0}, {0, 0.5, 0}, {1, 0.5, 0}})
            greatest =
                std::max(greatest, Length(given.World(3).Point(corner) - other.World(3).Point(corner)));
    }
    return greatest;
}

compare::CompareResult Compared(const gltf::Document& a, const gltf::Document& b, double length,
                                double angle) {
    compare::CompareOptions options;
    options.tolerance = {length, angle, 1e-3};
    options.aspects[static_cast<std::size_t>(Aspect::kNodes)] =
        false;  // nodes may deviate, what they show may not
    return CompareScenes(a, b, options);
}

TEST(ReduceKeys, PointsStayWithinTheLengthAtAnyDepth) {
    Scene scene;
    for (std::size_t joint = 0; joint < 4; ++joint)
        scene.Animate(joint, "rotation", Swing(1.1 + 0.3 * joint));
    const gltf::Document given = scene.Load();
    std::size_t keysBefore = 4 * 301;
    for (const double length : {1e-4, 1e-3, 1e-2, 1e-1}) {
        gltf::Document reduced = scene.Load();
        const ReduceReport report = ReduceKeys(reduced, {.tolerance = {length, 1e-3, 0}});
        EXPECT_EQ(report.keysBefore, 4U * 301);
        EXPECT_LT(report.keysAfter, keysBefore);
        EXPECT_LE(report.length, length);
        // The tolerance is not only kept but used.
        EXPECT_GT(report.length, 0.5 * length);
        keysBefore = report.keysAfter;
        const compare::CompareResult result = Compared(given, reduced, length, 1e-3);
        EXPECT_TRUE(result.IsSame()) << length << ": " << result.movedPoint.amount;
        EXPECT_NEAR(GreatestStray(given, reduced), report.length, 0.03 * length);
    }
}

// An earlier pass that drops keys also moves things; the tolerance applies to both together.
TEST(ReduceKeys, ErrorsAreMeasuredAgainstTheOriginals) {
    Scene before, passed;
    before.Animate(0, "rotation", Swing(1.1));
    passed.Animate(0, "rotation", Swing(1.1, 1e-3), "LINEAR", 150);
    const gltf::Document original = before.Load();
    for (const double length : {0.05, 0.01, 1e-3}) {
        gltf::Document reduced = passed.Load();
        const ReduceReport report = ReduceKeys(
            reduced, {.tolerance = {length, 1, 0}, .originals = compare::Evaluator(original).Animations()});
        EXPECT_EQ(report.keysBefore, 301U);
        EXPECT_NEAR(GreatestStray(original, reduced), report.length, 0.03 * length);
        EXPECT_LE(report.length, length);
        // The earlier pass moves the finger by 0.004; where that is too far, keys are restored.
        if (length > 4e-3)
            EXPECT_LT(report.keysAfter, 151U);
        else
            EXPECT_GT(report.keysAfter, 151U);
    }
}

TEST(ReduceKeys, KeysNearTheRootAreMoreExactThanThoseNearTheEnd) {
    Scene scene;
    for (std::size_t joint = 0; joint < 4; ++joint) scene.Animate(joint, "rotation", Swing(1.5));
    gltf::Document reduced = scene.Load();
    ReduceKeys(reduced, {.tolerance = {1e-2, 1e-3, 0}});
    EXPECT_GT(Keys(reduced, 0), Keys(reduced, 3));
}

TEST(ReduceKeys, InstancesCountWhereTheyAreDrawn) {
    std::size_t keys[2];
    for (const bool isFar : {false, true}) {
        Scene scene;
        scene.Animate(3, "rotation", Swing(1.5));
        if (isFar) scene.DrawFingerAt({50, 0, 0, 0, 0, 0});
        const gltf::Document given = scene.Load();
        gltf::Document reduced = scene.Load();
        keys[isFar ? 1 : 0] = ReduceKeys(reduced, {.tolerance = {1e-2, 1e-3, 0}}).keysAfter;
        EXPECT_TRUE(Compared(given, reduced, 1e-2, 1e-3).IsSame()) << isFar;
    }
    EXPECT_GT(keys[1], 2 * keys[0]);
}

TEST(ReduceKeys, CamerasKeepTheirDirectionAndValuesTheirTolerance) {
    Scene scene;
    scene.Animate(4, "rotation", Swing(1.5));
    scene.Animate(3, "scale", [](float time) { return std::vector<float>{1 + 0.2f * std::sin(time), 1, 1}; });
    const gltf::Document given = scene.Load();
    gltf::Document reduced = scene.Load();
    const double angle = 0.1 * std::numbers::pi / 180;
    const ReduceReport report = ReduceKeys(reduced, {.tolerance = {1e-3, angle, 0}});
    EXPECT_LT(report.keysAfter, 200U);
    EXPECT_LE(report.angle, angle);
    EXPECT_TRUE(Compared(given, reduced, 1e-3, angle).IsSame());
    EXPECT_GT(report.angle, angle / 4);
}

TEST(ReduceKeys, HandlesAnimationsThatMoveNoNode) {
    Scene scene;
    scene.Animate(5, "weights", [](float time) { return std::vector<float>{time}; });
    gltf::Document reduced = scene.Load();
    EXPECT_EQ(ReduceKeys(reduced, {.tolerance = {1e-2, 1e-3, 0.1}}).keysAfter, 2U);
}

TEST(ReduceKeys, ValuesTooGreatForTheToleranceStayUnchanged) {
    Scene scene;
    scene.Animate(0, "scale", [](float) { return std::vector<float>{3e38F, 3e38F, 3e38F}; });
    for (std::size_t joint = 1; joint < 4; ++joint)
        scene.Animate(joint, "translation", [](float time) { return std::vector<float>{3e38F, time, 0}; });
    gltf::Document reduced = scene.Load();
    const ReduceReport report = ReduceKeys(reduced, {.tolerance = {1e-3, 1e-3, 0}});
    EXPECT_LE(report.keysAfter, report.keysBefore);
}

TEST(ReduceKeys, StepsAndWhatMayNotChangeStayUnchanged) {
    Scene scene;
    scene.Animate(
        0, "translation",
        [](float time) {
            return std::vector<float>{std::floor(time), 0, 0};
        },
        "STEP");
    scene.Animate(
        1, "scale",
        [](float) {
            return std::vector<float>{1, 1, 1};
        },
        "CUBICSPLINE");
    scene.Animate(2, "rotation", Swing(2));
    gltf::Document reduced = scene.Load();
    const ReduceReport report = ReduceKeys(reduced, {});
    EXPECT_EQ(report.keysAfter, report.keysBefore);
    EXPECT_EQ(WriteJson(reduced.Root(), false), WriteJson(scene.Load().Root(), false));

    ReduceKeys(reduced, {.tolerance = {0.05, 0.1, 0}});
    EXPECT_EQ(Keys(reduced, 0), 301U);
    EXPECT_LT(Keys(reduced, 1), 100U);  // linear curves change
    EXPECT_LT(Keys(reduced, 2), 100U);
}

TEST(ReduceKeys, ACubicCurveStaysWhereLinesWouldNeedMoreKeys) {
    Scene scene;
    scene.Animate(
        1, "translation",
        [](float time) {
            return std::vector<float>{1 - time / 20, time / 10, 0};
        },
        "CUBICSPLINE", 2);
    scene.Animate(
        2, "translation",
        [](float time) {
            return std::vector<float>{1, 0.01f * std::sin(time), 0};
        },
        "CUBICSPLINE");
    gltf::Document reduced = scene.Load();
    const ReduceReport report = ReduceKeys(reduced, {.tolerance = {0.02, 0.1, 0}});
    EXPECT_EQ(Keys(reduced, 0), 3U);
    EXPECT_LT(Keys(reduced, 1), 60U);
    EXPECT_LT(GreatestStray(scene.Load(), reduced), 0.02);
    EXPECT_GT(report.length, 0);
}

}  // namespace
}  // namespace zr
