// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/operations/compare/compare_scenes.h"
#include "app/operations/compare/material_pairs.h"
#include "base/text.h"
#include "tests/app/operations/compare/scene_plan.h"
#include "tests/gltf/sample.h"

namespace zr::test {
namespace {

using compare::CompareResult;

CompareResult Compare(const gltf::Document& a, const gltf::Document& b) {
    return compare::CompareScenes(a, b, {});
}

// The differences, for failure messages.
std::string Differences(const CompareResult& result) {
    std::string text;
    for (const std::string& line : result.structure) text += line + "\n";
    for (const std::string& line : result.drawn) text += line + "\n";
    for (std::size_t i = 0; i < compare::kAspects; ++i)
        if (!result.same[i]) text += Join(compare::kAspectNames[i], " differs\n");
    return text;
}

std::size_t Pick(Random& random, std::size_t count) {
    return random() % count;
}

std::size_t NodeWith(const ScenePlan& plan, Random& random, int ScenePlan::Node::*member) {
    for (;;) {
        const std::size_t node = Pick(random, plan.nodes.size());
        // Node 6 needs its mesh: its morph weights are animated.
        if (plan.nodes[node].*member >= 0 && node != 6) return node;
    }
}

ScenePlan::Vertex& AnyVertex(ScenePlan& plan, Random& random) {
    auto& vertices = plan.meshes[Pick(random, plan.meshes.size())].vertices;
    return vertices[Pick(random, vertices.size())];
}

ScenePlan::Track& AnyTrack(ScenePlan& plan, Random& random) {
    auto& tracks = plan.animations[Pick(random, plan.animations.size())].tracks;
    return tracks[Pick(random, tracks.size())];
}

struct Plant {
    const char* what;
    void (*change)(ScenePlan& plan, Random& random);
};
constexpr Plant kPlants[] = {
    {"a vertex moved", [](ScenePlan& p, Random& r) { AnyVertex(p, r).position[Pick(r, 3)] += 0.001F; }},
    {"a normal turned",
     [](ScenePlan& p, Random& r) {
         auto& normal = AnyVertex(p, r).normal;
         std::swap(normal[0], normal[1]);
         normal[2] = -normal[2];
     }},
    {"a texture coordinate moved",
     [](ScenePlan& p, Random& r) { AnyVertex(p, r).texture[Pick(r, 2)] += 0.01F; }},
    {"a morph target moved", [](ScenePlan& p, Random& r) { AnyVertex(p, r).target[Pick(r, 3)] += 0.01F; }},
    {"a weight of a joint changed",
     [](ScenePlan& p, Random& r) {
         auto& mesh = p.meshes[static_cast<std::size_t>(p.nodes[9].mesh)];
         auto& vertex = mesh.vertices[Pick(r, mesh.vertices.size())];
         vertex.joints = {0, 1, 0, 0};
         vertex.weights = {0.95F, 0.05F, 0, 0};
     }},
    {"a face gone", [](ScenePlan& p, Random& r) { p.meshes[Pick(r, p.meshes.size())].indices.resize(33); }},
    {"a face turned over",
     [](ScenePlan& p, Random& r) {
         auto& indices = p.meshes[Pick(r, p.meshes.size())].indices;
         std::swap(indices[0], indices[1]);
     }},
    {"materials swapped",
     [](ScenePlan& p, Random& r) {
         auto& mesh = p.meshes[Pick(r, p.meshes.size())];
         mesh.material = (mesh.material + 1 + Pick(r, 4)) % 5;
     }},
    {"a colour changed",
     [](ScenePlan& p, Random& r) { p.materials[Pick(r, p.materials.size())].color[Pick(r, 3)] += 0.01F; }},
    {"a roughness changed",
     [](ScenePlan& p, Random& r) { p.materials[Pick(r, p.materials.size())].roughness += 0.01F; }},
    {"a material renamed",
     [](ScenePlan& p, Random& r) { p.materials[Pick(r, p.materials.size())].name += "!"; }},
    {"a node moved",
     [](ScenePlan& p, Random& r) { p.nodes[Pick(r, p.nodes.size())].translation[Pick(r, 3)] += 0.001F; }},
    {"a node scaled",
     [](ScenePlan& p, Random& r) { p.nodes[Pick(r, p.nodes.size())].scale[Pick(r, 3)] += 0.01F; }},
    {"a node renamed", [](ScenePlan& p, Random& r) { p.nodes[2 * Pick(r, 3)].name = "another"; }},
    {"a tag changed", [](ScenePlan& p, Random& r) { p.nodes[Pick(r, p.nodes.size())].extra = 7; }},
    {"a mesh lost",
     [](ScenePlan& p, Random& r) { p.nodes[NodeWith(p, r, &ScenePlan::Node::mesh)].mesh = -1; }},
    {"a camera lost",
     [](ScenePlan& p, Random& r) { p.nodes[NodeWith(p, r, &ScenePlan::Node::camera)].camera = -1; }},
    {"a lens changed", [](ScenePlan& p, Random& r) { p.cameras[Pick(r, 2)] += 0.01F; }},
    {"a light lost",
     [](ScenePlan& p, Random& r) { p.nodes[NodeWith(p, r, &ScenePlan::Node::light)].light = -1; }},
    {"a light dimmed", [](ScenePlan& p, Random& r) { p.lights[Pick(r, 2)] *= 0.9F; }},
    {"a node added",
     [](ScenePlan& p, Random& r) {
         ScenePlan::Node node;
         node.parent = static_cast<int>(Pick(r, p.nodes.size()));
         p.nodes.push_back(node);
     }},
    {"a node under another parent",
     [](ScenePlan& p, Random&) { p.nodes[36].parent = p.nodes[36].parent == 1 ? 2 : 1; }},
    {"a key's value changed",
     [](ScenePlan& p, Random& r) {
         auto& track = AnyTrack(p, r);
         // In a cubic track, a value of a key rather than a slope.
         const std::size_t keys = track.times.size(), width = track.values.size() / keys;
         const std::size_t key = Pick(r, keys);
         track.values[key * width + width / 2] += 0.01F;
     }},
    {"a key's time changed", [](ScenePlan& p, Random& r) { AnyTrack(p, r).times[1 + Pick(r, 3)] += 0.05F; }},
    {"another interpolation",
     [](ScenePlan& p, Random& r) {
         auto& track = AnyTrack(p, r);
         if (track.interpolation == "CUBICSPLINE")
             track.values[3 * (track.values.size() / 15) + 1] += 5;  // a slope
         else
             track.interpolation = track.interpolation == "STEP" ? "LINEAR" : "STEP";
     }},
    {"a track lost", [](ScenePlan& p, Random& r) { p.animations[Pick(r, 2)].tracks.pop_back(); }},
    {"a morph weight changed",
     [](ScenePlan& p, Random& r) { p.nodes[NodeWith(p, r, &ScenePlan::Node::mesh)].weight += 0.01F; }},
    {"an animation renamed", [](ScenePlan& p, Random& r) { p.animations[Pick(r, 2)].name = "run"; }},
    {"an animation lost",
     [](ScenePlan& p, Random& r) { p.animations.erase(p.animations.begin() + Pick(r, 2)); }},
    {"another scene shown", [](ScenePlan& p, Random&) { p.shownScene = 1; }},
    {"a root in another scene", [](ScenePlan& p, Random&) { p.nodes[3].scene = 0; }},
    {"joints in another order",
     [](ScenePlan& p, Random& r) { std::swap(p.joints[0], p.joints[1 + Pick(r, 3)]); }},
};

#if defined(__SANITIZE_ADDRESS__) || !defined(__OPTIMIZE__)
constexpr unsigned kScenes = 5;
constexpr unsigned kOfEach = 1;
#else
constexpr unsigned kScenes = 40;
constexpr unsigned kOfEach = 10;
#endif

TEST(Compare, IgnoresOrderNamesOfBuffersAndLayout) {
    for (unsigned seed = 0; seed < kScenes; ++seed) {
        Random random(seed);
        const ScenePlan plan = MakePlan(random);
        const CompareResult result = Compare(Write(plan, random), Write(plan, random));
        EXPECT_TRUE(result.IsSame()) << "seed " << seed << "\n" << Differences(result);
        EXPECT_GT(result.faces, 100U);
        EXPECT_GT(result.times, 20U);
    }
}

TEST(Compare, FindsEveryPlantedDifference) {
    for (unsigned seed = 0; seed < kOfEach * std::size(kPlants); ++seed) {
        Random random(seed);
        ScenePlan plan = MakePlan(random);
        const gltf::Document before = Write(plan, random);
        const Plant& plant = kPlants[seed % std::size(kPlants)];
        plant.change(plan, random);
        EXPECT_FALSE(Compare(before, Write(plan, random)).IsSame()) << plant.what << ", seed " << seed;
    }
}

TEST(Compare, ReportsWhereAndWhen) {
    Random random(5);
    ScenePlan plan = MakePlan(random);
    for (std::size_t i = 31; i < plan.nodes.size(); ++i) plan.nodes[i].parent = 0;  // node 30 has no children
    const gltf::Document before = Write(plan, random);
    ScenePlan::Track& track = plan.animations[0].tracks[11];  // node 30 moves
    ASSERT_EQ(track.path, "translation");
    track.values[3 * 2] += 0.25F;
    const CompareResult result = Compare(before, Write(plan, random));
    EXPECT_TRUE(result.structure.empty()) << Differences(result);
    EXPECT_NEAR(result.node.time, static_cast<double>(track.times[2]), 1e-5);
    EXPECT_EQ(result.node.animation, "walk");
    EXPECT_EQ(result.node.where.substr(0, 15), "node \"node 30\" ");
    EXPECT_GT(result.node.amount, 0.05);

    // Within a greater tolerance they are the same.
    compare::CompareOptions options;
    options.tolerance = {1, 1e-3, 1e-3};
    EXPECT_TRUE(compare::CompareScenes(before, Write(plan, random), options).IsSame());
}

// Among thousands of keys that differ within the tolerance: a rotation by less than the allowed angle that
// moves the nodes below too far.
TEST(Compare, FindsOneKeyOfThousands) {
    Random random(3);
    ScenePlan plan = MakePlan(random);
    for (std::size_t i = 1; i < plan.nodes.size(); ++i) plan.nodes[i].parent = 0;
    plan.animations = {{"long", {}}};
    auto& tracks = plan.animations[0].tracks;
    for (std::size_t node = 0; node < plan.nodes.size(); ++node) {
        ScenePlan::Track track{node, node == 0 ? "rotation" : "translation", "LINEAR", {}, {}};
        for (int key = 0; key < 1000; ++key) {
            track.times.push_back(static_cast<float>(key) / 30);
            const auto way = static_cast<float>(key % 7);
            if (node == 0)
                track.values.insert(track.values.end(), {0, 0, 0, 1});
            else
                track.values.insert(track.values.end(), {way, 1, 2});
        }
        tracks.push_back(track);
    }
    const gltf::Document before = Write(plan, random);
    for (std::size_t node = 1; node < tracks.size(); ++node) tracks[node].values[3 * (20 * node)] += 9e-4F;
    compare::CompareOptions options;
    options.tolerance = {1e-3, 1e-2, 1e-3};
    EXPECT_TRUE(compare::CompareScenes(before, Write(plan, random), options).IsSame());
    tracks[0].values[4 * 637 + 2] = 2e-3F;
    const CompareResult result = compare::CompareScenes(before, Write(plan, random), options);
    EXPECT_FALSE(result.IsSame());
    EXPECT_NEAR(result.node.time, 637.0 / 30, 1e-4);
}

// Nodes outside the scenes are identified by the references to them, in known and unknown extensions.
TEST(Compare, MatchesReferencesRegardlessOfIndices) {
    const auto scene = [](const char* nodes, const char* roots) {
        return gltf::test::FromText(Join(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [)", roots,
                                         R"(]}], "nodes": [)", nodes, "]}"));
    };
    const gltf::Document a = scene(
        R"({"name": "a", "extensions": {"MSFT_lod": {"ids": [1, 2]}, "X_rig": {"bones": [2], "level": 3}}},
           {"name": "near", "scale": [2, 2, 2]}, {"name": "far"})",
        "0");
    // The same nodes in another order.
    const auto isSame = [&](const char* levels, int bone, int number, int size) {
        const std::string nodes =
            Join(R"({"name": "far"}, {"name": "a", "extensions": {"X_rig": {"bones": [)", bone,
                 R"(], "level": )", number, R"(}, "MSFT_lod": {"ids": [)", levels,
                 R"(]}}}, {"name": "near", "scale": [2, 2, )", size, "]}");
        return Compare(a, scene(nodes.c_str(), "1")).IsSame();
    };
    EXPECT_TRUE(isSame("2, 0", 0, 3, 2));
    EXPECT_FALSE(isSame("0, 2", 0, 3, 2)) << "levels in another order";
    EXPECT_FALSE(isSame("2, 0", 1, 3, 2)) << "another bone";
    EXPECT_FALSE(isSame("2, 0", 0, 2, 2)) << "a number that is not an index";
    EXPECT_FALSE(isSame("2, 0", 0, 3, 3)) << "a level of another size";
}

TEST(MaterialPairs, GoByPlaceThenByOrder) {
    const compare::MaterialPairs pairs =
        compare::PairMaterials({{0, 0, 2, 0, 0}, {2, 0, 0, 0, 7}}, {{{4, 0}}, {{5, 0}}, {}, {{6, 1}}, {}},
                               {{}, {{6, 2}}, {{5, 0}}, {{9, 0}}, {{4, 0}}});
    EXPECT_EQ(pairs.ofA, (std::vector<std::size_t>{3, 2, 0, 1, compare::kNone}));
    EXPECT_EQ(pairs.ofB, (std::vector<std::size_t>{2, 3, 1, 0, compare::kNone}));
}

// A small file can have many nodes that share many primitives, morph targets or vertex data.
TEST(Compare, BoundsWhatNodesShare) {
    const auto compare = [](const std::string& primitive, int primitives, int nodes) {
        const auto times = [](int count, const std::string& element) {
            std::string list = element;
            for (int i = 1; i < count; ++i) list += "," + element;
            return list;
        };
        const std::string text =
            Join(R"({"asset": {"version": "2.0"}, "nodes": [)", times(nodes, R"({"mesh": 0})"),
                 R"(], "meshes": [{"primitives": [)", times(primitives, primitive),
                 R"(]}], "accessors": [{"componentType": 5126, "count": 3, "type": "VEC3"}]})");
        const gltf::Document scene =
            gltf::Document::FromBytes(BytesOf(text), "a.gltf", {.maxMemory = 4 << 20});
        Compare(scene, scene);
    };
    const std::string plain = R"({"attributes": {"POSITION": 0}})";
    EXPECT_NO_THROW(compare(plain, 100, 100));
    EXPECT_THROW(compare(plain, 400, 400), gltf::Error);
    std::string morphed = R"({"attributes": {"POSITION": 0}, "targets": [{})";
    for (int i = 0; i < 1000; ++i) morphed += ",{}";
    EXPECT_THROW(compare(morphed + "]}", 1, 1000), gltf::Error);
    std::string wide = R"({"attributes": {"POSITION": 0)";
    for (int i = 0; i < 10'000; ++i) wide += Join(",\"_", i, "\":0");
    EXPECT_NO_THROW(compare(wide + "}}", 1, 3));
    EXPECT_THROW(compare(wide + "}}", 1, 10), gltf::Error);
}

TEST(Compare, TheSampleEqualsItself) {
    const gltf::Document sample = gltf::test::Sample();
    EXPECT_TRUE(Compare(sample, gltf::test::Sample()).IsSame());
}

}  // namespace
}  // namespace zr::test
