// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "host/hdr_helper.h"
#include "tests/app/operations/clean/clean_kit.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using gltf::Document;
using gltf::Kind;

// Three triangles in one place, of which one moves and one duplicates the first; an attachment that a channel
// moves, a joint, an empty branch; materials that are used, equal, used by a variant only, and unused.
constexpr const char* kScene = R"({
  "asset": {"version": "2.0"},
  "extensionsUsed": ["KHR_materials_variants", "EXT_lights_image_based"],
  "extensions": {
    "KHR_materials_variants": {"variants": [{"name": "night"}]},
    "EXT_lights_image_based": {"lights": [{"name": "sky", "irradianceCoefficients": [[0,0,0]],
      "specularImageSize": 1, "specularImages": []}]}
  },
  "scene": 0,
  "scenes": [{"nodes": [0, 1, 2, 3, 4, 6, 7], "extensions": {"EXT_lights_image_based": {"light": 0}}}],
  "nodes": [
    {"name": "first", "mesh": 0, "extras": {"part": 4711}},
    {"name": "repeated", "mesh": 1},
    {"name": "moves", "mesh": 1},
    {"name": "attachment"},
    {"name": "branch", "children": [5]},
    {"name": "leaf"},
    {"name": "joint"},
    {"name": "skinned", "mesh": 2, "skin": 0}
  ],
  "meshes": [
    {"primitives": [{"attributes": {"POSITION": 0}, "material": 0}]},
    {"primitives": [{"attributes": {"POSITION": 0}, "material": 1}]},
    {"primitives": [{"attributes": {"POSITION": 0, "JOINTS_0": 3, "WEIGHTS_0": 4}, "material": 0,
      "extensions": {"KHR_materials_variants": {"mappings": [{"material": 2, "variants": [0]}]}}}]}
  ],
  "skins": [{"joints": [6]}],
  "materials": [
    {"name": "red", "pbrMetallicRoughness": {"baseColorFactor": [1, 0, 0, 1]}},
    {"name": "also red", "pbrMetallicRoughness": {"baseColorFactor": [1, 0, 0, 1]}},
    {"name": "night"},
    {"name": "unused", "doubleSided": true}
  ],
  "animations": [
    {"name": "run", "samplers": [{"input": 1, "output": 2}],
     "channels": [{"sampler": 0, "target": {"node": 2, "path": "translation"}},
                  {"sampler": 0, "target": {"node": 3, "path": "translation"}}]},
    {"name": "nothing", "samplers": [{"input": 1, "output": 2}],
     "channels": [{"sampler": 0, "target": {"path": "translation"}}]}
  ],
  "accessors": [
    {"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 0]},
    {"bufferView": 0, "componentType": 5126, "count": 2, "type": "SCALAR", "byteOffset": 8, "min": [0], "max": [1]},
    {"bufferView": 0, "componentType": 5126, "count": 2, "type": "VEC3"},
    {"bufferView": 1, "componentType": 5121, "count": 3, "type": "VEC4"},
    {"bufferView": 2, "componentType": 5126, "count": 3, "type": "VEC4"},
    {"bufferView": 3, "componentType": 5126, "count": 1, "type": "SCALAR"}
  ],
  "bufferViews": [
    {"buffer": 0, "byteLength": 36},
    {"buffer": 0, "byteOffset": 36, "byteLength": 12},
    {"buffer": 0, "byteOffset": 48, "byteLength": 48},
    {"buffer": 0, "byteOffset": 96, "byteLength": 4}
  ],
  "buffers": [{"byteLength": 100}]
})";

std::string SceneBytes() {
    return gltf::test::Floats({0, 0, 0, 1, 0, 0, 0, 1, 0}) + std::string(12, '\0') +
           gltf::test::Floats({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}) + gltf::test::Floats({7});
}

Document Scene(const std::string& json = kScene, const std::string& bytes = SceneBytes()) {
    return Document::FromBytes(BytesOf(gltf::test::Glb(json, bytes)), "scene.glb");
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos);
    return text.replace(at, what.size(), by);
}

using CleanDocumentTest = CleanTest;

TEST_F(CleanDocumentTest, RemovesUnusedAndDuplicateContent) {
    Document document = Scene();
    const CleanResult result = Clean(document, Unseen());
    EXPECT_EQ(NamesOf(result, CleanStep::kEqualMaterials), Strings{"also red"});
    EXPECT_EQ(NamesOf(result, CleanStep::kMeshDupes), Strings{"repeated"});
    EXPECT_EQ(NamesOf(result, CleanStep::kEmptyNodes), (Strings{"leaf", "branch"}));
    EXPECT_EQ(NamesOf(result, CleanStep::kMaterials), Strings{"unused"});
    EXPECT_EQ(NamesOf(result, CleanStep::kAnimations), Strings{"nothing"});
    EXPECT_FALSE(result.steps[static_cast<std::size_t>(CleanStep::kMetadata)].ran);
    EXPECT_EQ(Names(document, Kind::kNode), (Strings{"first", "moves", "attachment", "joint", "skinned"}));
    EXPECT_EQ(Names(document, Kind::kMaterial), (Strings{"red", "night"}));
    EXPECT_EQ(Names(document, Kind::kAnimation), Strings{"run"});
    EXPECT_EQ(document.Elements(Kind::kAccessor).size(), 5U) << "the unreferenced one is removed";
    EXPECT_EQ(document.BufferBytes(0)->size(), 96U);

    const Bytes bytes = *document.BufferBytes(0);
    Document again = Scene(gltf::WriteJson(document.Root(), false),
                           std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    const CleanResult second = Clean(again, Unseen());
    for (std::size_t i = 0; i < kCleanSteps; ++i)
        EXPECT_EQ(second.steps[i].count, 0U) << kCleanStepInfo[i].name;
    EXPECT_TRUE(gltf::EqualJson(again.Root(), document.Root())) << gltf::WriteJson(again.Root(), true);
}

TEST_F(CleanDocumentTest, ExplainsWhatIsKept) {
    Document document = Scene();
    Strings held;
    for (const HeldElement& element : Clean(document, Unseen()).held) {
        held.push_back(element.name + ": " + element.holder.substr(0, element.holder.find(" (")));
    }
    std::sort(held.begin(), held.end());
    EXPECT_EQ(held,
              (Strings{"attachment: channel of animation 0", "joint: joint of skin 0", "night: variant"}));
}

TEST_F(CleanDocumentTest, KeepsNamesAndDataOnRequest) {
    Document document = Scene();
    CleanOptions options = Unseen();
    options.keep = {"le*", "[u]nused", "nothing"};
    options.keepData = true;
    Clean(document, options);
    EXPECT_EQ(Names(document, Kind::kNode),
              (Strings{"first", "moves", "attachment", "branch", "leaf", "joint", "skinned"}));
    EXPECT_EQ(Names(document, Kind::kMaterial), (Strings{"red", "night", "unused"}));
    EXPECT_EQ(document.Elements(Kind::kAnimation).size(), 2U);
    EXPECT_EQ(document.Elements(Kind::kAccessor).size(), 6U);
}

TEST_F(CleanDocumentTest, KeepsElementsWithNamesOrExtrasOnRequest) {
    Document document = Scene();
    const Strings nodes = Names(document, Kind::kNode), materials = Names(document, Kind::kMaterial);
    CleanOptions options = Unseen();
    options.keepNamed = true;
    Clean(document, options);
    EXPECT_EQ(Names(document, Kind::kNode), nodes);
    EXPECT_EQ(Names(document, Kind::kMaterial), materials);

    Document other = Scene();
    for (const std::size_t node : {0U, 4U})
        other.Tree().Member(other.Elements(Kind::kNode)[node], "extras") = other.Tree().MakeIndex(1);
    options = Unseen();
    options.keepExtras = true;
    Clean(other, options);
    EXPECT_EQ(Names(other, Kind::kNode)[0], nodes[0]);
    const Strings left = Names(other, Kind::kNode);
    EXPECT_TRUE(std::find(left.begin(), left.end(), nodes[4]) != left.end());
    EXPECT_LT(left.size(), nodes.size());
}

TEST_F(CleanDocumentTest, AllRemovesMetadataAndEnvironmentToo) {
    Document document = Scene();
    CleanOptions options;
    options.steps.fill(true);
    const CleanResult result = Clean(document, options);
    EXPECT_EQ(NamesOf(result, CleanStep::kMetadata), Strings{"first"});
    EXPECT_EQ(NamesOf(result, CleanStep::kEnvironment), Strings{"sky"});
    const std::string text = gltf::WriteJson(document.Root(), false);
    EXPECT_EQ(text.find("extras"), std::string::npos);
    EXPECT_EQ(text.find("EXT_lights_image_based"), std::string::npos);
}

// An unknown extension may contain the index of a node: nodes stay, the other steps run.
TEST_F(CleanDocumentTest, KeepsWhatAnUnknownExtensionCouldReferTo) {
    const std::string json = Replaced(kScene, R"("extensions": {
    "KHR)",
                                      R"("extensions": {"X_unknown": {"node": 5},
    "KHR)");
    Document document = Scene(json);
    const CleanResult result = Clean(document, Unseen());
    for (const CleanStep step : {CleanStep::kEmptyNodes, CleanStep::kMeshDupes}) {
        const StepResult& refused = result.steps[static_cast<std::size_t>(step)];
        EXPECT_FALSE(refused.ran);
        ASSERT_EQ(refused.refusals.size(), 1U);
        EXPECT_EQ(refused.refusals[0].extension, "X_unknown");
    }
    EXPECT_EQ(document.Elements(Kind::kNode).size(), 8U);
    EXPECT_EQ(NamesOf(result, CleanStep::kMaterials), Strings{"unused"});

    Document forced = Scene(json);
    CleanOptions options = Unseen();
    options.force = true;
    EXPECT_EQ(NamesOf(Clean(forced, options), CleanStep::kEmptyNodes), (Strings{"leaf", "branch"}));
}

// An extension on a node that refers to nothing but shows something, such as a sound or a label.
TEST_F(CleanDocumentTest, KeepsNodesWithContentInAnExtension) {
    Document document =
        Scene(Replaced(kScene, R"({"name": "leaf")", R"({"extensions": {"X_label": {"text": "here"}},
      "name": "leaf")"));
    const CleanResult result = Clean(document, Unseen());
    EXPECT_EQ(NamesOf(result, CleanStep::kEmptyNodes), Strings{});
    EXPECT_TRUE(std::any_of(result.held.begin(), result.held.end(), [](const HeldElement& held) {
        return held.name == "leaf" && held.holder.starts_with("extension X_label (/nodes/");
    }));
}

// Nodes moved only by an animation that no viewport plays are removed along with it.
TEST_F(CleanDocumentTest, RepeatsWhileRemovalsFreeMore) {
    std::string json = Replaced(kScene, R"("extensions": {
    "KHR)",
                                R"("extensions": {"ZR_scene": {"viewports": [{"kind": 2, "animations": [1]}]},
    "KHR)");
    json = Replaced(json, R"("EXT_lights_image_based"],)", R"("EXT_lights_image_based", "ZR_scene"],)");
    Document document = Scene(json);
    const CleanResult result = Clean(document, Unseen());
    EXPECT_EQ(NamesOf(result, CleanStep::kAnimations), Strings{"run"});
    EXPECT_EQ(NamesOf(result, CleanStep::kEmptyNodes), (Strings{"leaf", "branch", "attachment"}));
}

// A dialog that cannot open, say.
TEST_F(CleanDocumentTest, WorkThatThrowsLeavesNoViewAndNoDocumentBehind) {
    constexpr int kViewWindow = 4;
    Document document = Scene();
    EXPECT_THROW(m_environment.Run(document,
                                   [&] {
                                       EXPECT_NE(m_host.GetMainWindow(kViewWindow), nullptr);
                                       throw std::runtime_error("no display");
                                   }),
                 std::runtime_error);
    EXPECT_EQ(m_host.GetMainWindow(kViewWindow), nullptr);
    EXPECT_EQ(m_host.CreateExtension(kTypeHdrHelper), nullptr);
}

}  // namespace
}  // namespace zr
