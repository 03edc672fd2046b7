// SPDX-License-Identifier: MIT
// Random scenes: cleaning does not change what is drawn, and cleaning again changes nothing at all.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "base/text.h"
#include "tests/app/operations/clean/clean_kit.h"
#include "tests/base/rounds.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using gltf::Document;
using gltf::Json;
using gltf::Kind;

// Many nodes share few places, meshes and materials, so that there are many duplicates.
class RandomScene {
public:
    explicit RandomScene(unsigned seed) : m_random(seed) {
        constexpr int kNodes = 40;
        std::vector<std::string> children(kNodes), nodes;
        std::string roots;
        for (int i = 0; i < kNodes; ++i) {
            const bool isRoot = i == 0 || Pick(3) == 0;
            std::string& list = isRoot ? roots : children[static_cast<std::size_t>(Pick(i))];
            list += Join(list.empty() ? "" : ",", i);
        }
        for (const std::string& below : children) nodes.push_back(Node(below));
        json = Join(
            R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_node_visibility"],"scenes":[{"nodes":[)",
            roots, "]}],", R"("nodes":[)", List(nodes), R"(],"meshes":[)", List(Meshes()),
            R"(],"materials":[{"name":"red","doubleSided":true},{"name":"glass","alphaMode":"BLEND"},
            {"name":"also red","doubleSided":true},{"name":"blue"},{"name":"unused","alphaCutoff":0.25}],
            "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"},
            {"bufferView":1,"componentType":5126,"count":3,"type":"VEC3"},
            {"bufferView":2,"componentType":5126,"count":3,"type":"VEC3"},
            {"bufferView":3,"componentType":5126,"count":2,"type":"SCALAR","min":[0],"max":[1]},
            {"bufferView":4,"componentType":5126,"count":2,"type":"VEC3"}],
            "animations":[{"samplers":[{"input":3,"output":4}],"channels":[)",
            Channel(Pick(kNodes / 2)), ",", Channel(kNodes / 2 + Pick(kNodes / 2)), R"(]}],
            "bufferViews":[{"buffer":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":36},
            {"buffer":0,"byteOffset":72,"byteLength":36},{"buffer":0,"byteOffset":108,"byteLength":8},
            {"buffer":0,"byteOffset":116,"byteLength":24}],"buffers":[{"byteLength":140}]})");
    }

    static std::string Bin() {
        using gltf::test::Floats;
        return Floats({0, 0, 0, 1, 0, 0, 0, 1, 0}) + Floats({0, 0, 0, 1, 0, 0, 0, 1, 0}) +
               Floats({0, 0, 0, 0, 0, 1, 0, 1, 0}) + Floats({0, 1}) + Floats({0, 0, 0, 1, 2, 3});
    }

    std::string json;

private:
    int Pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }

    static std::string List(const std::vector<std::string>& items) {
        std::string list;
        for (const std::string& item : items) list += (list.empty() ? "" : ",") + item;
        return list;
    }

    std::string Node(const std::string& children) {
        std::string node = Join(R"({"name":"n)", m_count++, "\"");
        if (!children.empty()) node += Join(R"(,"children":[)", children, "]");
        if (Pick(3) != 0) node += Join(R"(,"mesh":)", Pick(4));
        if (Pick(3) == 0) node += Join(R"(,"translation":[)", Pick(2), ",0,0]");
        if (Pick(6) == 0) node += R"(,"scale":[2,2,2])";
        if (Pick(8) == 0) node += R"(,"extensions":{"KHR_node_visibility":{"visible":false}})";
        if (Pick(10) == 0) node += R"(,"extras":{"part":1})";
        return node + "}";
    }

    std::vector<std::string> Meshes() {
        std::vector<std::string> meshes;
        for (int i = 0; i < 4; ++i) {
            std::string primitives;
            for (int k = 0; k <= Pick(2); ++k)
                primitives += Join(k == 0 ? "" : ",", R"({"attributes":{"POSITION":)", Pick(3),
                                   R"(},"material":)", Pick(4), "}");
            meshes.push_back(Join(R"({"primitives":[)", primitives, "]}"));
        }
        return meshes;
    }

    static std::string Channel(int node) {
        return Join(R"({"sampler":0,"target":{"path":"translation","node":)", node, "}}");
    }

    std::mt19937 m_random;
    int m_count = 0;
};

// What a document draws at rest: triangles in world space, with everything that decides their look. Visits
// nodes from the scene's roots down; transforms are translations and scales.
class Drawn {
public:
    explicit Drawn(const Document& document) : m_document(document) {
        for (const Json& root : document.Elements(Kind::kScene)[0].Find("nodes")->Items())
            Node(*root.Index(), {}, 1, "");
    }

    // Coinciding opaque triangles are visible only once.
    std::set<std::string> opaque;
    std::multiset<std::string> blended;

private:
    using Point = std::array<double, 3>;

    // `above`: the names of the ancestors that could hide or move this node.
    void Node(std::size_t index, Point origin, double scale, std::string above) {
        const Json& node = m_document.Elements(Kind::kNode)[index];
        if (const Json* t = node.Find("translation"))
            for (std::size_t i = 0; i < 3; ++i) origin[i] += scale * t->Items()[i].Number();
        if (node.Find("scale") != nullptr) scale *= node.Find("scale")->Items()[0].Number();
        const std::string name(node.Find("name")->String());
        const bool isHidden = node.Find("extensions") != nullptr;
        if (Moves(index)) above += name + ";";
        if (const Json* mesh = node.Find("mesh"))
            Mesh(*mesh->Index(), origin, scale, above + (isHidden ? "hidden" : ""));
        if (isHidden) above += name + ";";
        if (const Json* children = node.Find("children"))
            for (const Json& child : children->Items()) Node(*child.Index(), origin, scale, above);
    }

    bool Moves(std::size_t node) const {
        for (const Json& animation : m_document.Elements(Kind::kAnimation))
            for (const Json& channel : animation.Find("channels")->Items())
                if (*channel.Find("target")->Find("node")->Index() == node) return true;
        return false;
    }

    void Mesh(std::size_t mesh, const Point& origin, double scale, const std::string& above) {
        for (const Json& primitive : m_document.Elements(Kind::kMesh)[mesh].Find("primitives")->Items()) {
            const Json& material = m_document.Elements(Kind::kMaterial)[*primitive.Find("material")->Index()];
            const Json* mode = material.Find("alphaMode");
            const Json& accessor = m_document.Elements(
                Kind::kAccessor)[*primitive.Find("attributes")->Find("POSITION")->Index()];
            const Bytes bytes = *m_document.ViewBytes(*accessor.Find("bufferView")->Index());
            std::array<float, 9> corners;
            std::memcpy(corners.data(), bytes.data(), sizeof corners);
            std::string triangle = Join(above, " ", mode != nullptr ? "glass" : "",
                                        material.Find("doubleSided") != nullptr ? "red" : "", ":");
            for (std::size_t i = 0; i < 9; ++i)
                triangle += " " + std::to_string(origin[i % 3] + scale * double{corners[i]});
            if (mode != nullptr)
                blended.insert(triangle);
            else
                opaque.insert(triangle);
        }
    }

    const Document& m_document;
};

using RandomCleanTest = CleanTest;

TEST_F(RandomCleanTest, KeepsWhatIsDrawnAndLeavesNothingToDo) {
    std::size_t removed = 0;
    for (unsigned seed = 1; seed <= test::Rounds(150); ++seed) {
        const RandomScene scene(seed);
        const auto load = [&] {
            return Document::FromBytes(BytesOf(gltf::test::Glb(scene.json, RandomScene::Bin())),
                                       "random.glb");
        };
        const Document before = load();
        Document document = load();
        for (const StepResult& step : Clean(document, Unseen()).steps) removed += step.count;
        const Drawn expected(before), drawn(document);
        ASSERT_EQ(drawn.opaque, expected.opaque) << seed << ": " << scene.json;
        ASSERT_EQ(drawn.blended, expected.blended) << seed << ": " << scene.json;

        const std::string once = gltf::WriteJson(document.Root(), false);
        const CleanResult second = Clean(document, Unseen());
        for (std::size_t i = 0; i < kCleanSteps; ++i)
            ASSERT_EQ(second.steps[i].count, 0U) << seed << ": " << kCleanStepInfo[i].name;
        ASSERT_EQ(gltf::WriteJson(document.Root(), false), once) << seed;
    }
    EXPECT_GT(removed, test::Rounds(1000));
}

}  // namespace
}  // namespace zr
