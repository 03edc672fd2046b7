// SPDX-License-Identifier: MIT
// Commands remove data that they made unused and keep data that was unused before.
#include <gtest/gtest.h>

#include "app/operations/export/export_scene.h"
#include "gltf/accessor.h"
#include "gltf/collect.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using gltf::Document;
using gltf::Json;
using gltf::Kind;

// Two tracks that share their key times, and unused data: accessor 3, view 3 and buffer 1. EXTENSIONS is a
// placeholder for members of the document.
constexpr const char* kScene = R"({"asset": {"version": "2.0"}, EXTENSIONS
    "scenes": [{"nodes": [0]}], "nodes": [{}],
    "buffers": [{"byteLength": 44, "uri": "data:;base64,AAAAAAAAgD8AAIA/AAAAQAAAQEAAAIBAAACgQAAAwEAAAOBAAAAAQQAAEEE="},
                {"byteLength": 8, "uri": "data:;base64,AAECAwQFBgc="}],
    "bufferViews": [{"buffer": 0, "byteLength": 8}, {"buffer": 0, "byteOffset": 8, "byteLength": 24},
                    {"buffer": 0, "byteOffset": 20, "byteLength": 24}, {"buffer": 1, "byteLength": 4}],
    "accessors": [{"bufferView": 0, "componentType": 5126, "count": 2, "type": "SCALAR", "min": [0], "max": [1]},
                  {"bufferView": 1, "componentType": 5126, "count": 2, "type": "VEC3"},
                  {"bufferView": 2, "componentType": 5126, "count": 2, "type": "VEC3"},
                  {"bufferView": 3, "componentType": 5121, "count": 4, "type": "SCALAR"}],
    "animations": [{"samplers": [{"input": 0, "output": 1}, {"input": 0, "output": 2}],
        "channels": [{"sampler": 0, "target": {"node": 0, "path": "translation"}},
                     {"sampler": 1, "target": {"node": 0, "path": "scale"}}]}]})";

Document Scene(const std::string& extensions) {
    std::string text = kScene;
    return gltf::test::FromText(text.replace(text.find("EXTENSIONS"), 10, extensions));
}

Exported Export(Document document, const ExportOptions& options, bool force = false) {
    Host& host = test::TheHost();
    SceneOptions sceneOptions;
    sceneOptions.force = force;
    return ExportScene(host, LoadedScene(std::move(document), sceneOptions), options, [](double) {});
}

ExportOptions Slower() {
    ExportOptions options;
    options.animFlags |= vl::tk::kRescaleTime;
    options.rescale = 2;
    return options;
}

std::size_t CountUnreferenced(Document& document) {
    gltf::KindSet kinds = gltf::KindSet::All();
    kinds.Remove({Kind::kScene, Kind::kNode, Kind::kAnimation, Kind::kVariant});
    std::size_t count = 0;
    for (const std::vector<bool>& of : gltf::Unreferenced(document, kinds))
        count += static_cast<std::size_t>(std::count(of.begin(), of.end(), true));
    return count;
}

TEST(Leftovers, WhatTheExportMadeUnusedIsRemoved) {
    Document source = gltf::test::Sample();
    ASSERT_EQ(CountUnreferenced(source), 0U);
    const auto expectNone = [](const char* what, std::uint32_t with, std::uint32_t without,
                               std::uint32_t animFlags) {
        ExportOptions options = Slower();
        options.exportFlags = (options.exportFlags | with) & ~without;
        options.animFlags = animFlags;
        Document document = Export(gltf::test::Sample(), options).document;
        EXPECT_EQ(CountUnreferenced(document), 0U) << what;
    };
    expectNone("slower", 0, 0, vl::tk::kRescaleTime);
    expectNone("backwards", vl::tk::kMergeKeys, 0, vl::tk::kReverseTime);
    expectNone("flipped inverse bind matrices", vl::tk::kFlipAxes, 0, 0);
    expectNone("without animations", vl::tk::kIgnoreAnimation, 0, 0);
    expectNone("without cameras, lights and meshes", 0,
               vl::tk::kExportCameras | vl::tk::kExportLights | vl::tk::kAllRenderables, 0);
}

TEST(Leftovers, WhatWasUnusedBeforeStays) {
    Document document = Export(Scene(""), Slower()).document;
    EXPECT_EQ(CountUnreferenced(document), 3U);
    const gltf::test::TemporaryFolder folder;
    document.Save(folder / "out.gltf");
    const Document again = Document::Load(folder / "out.gltf");
    std::size_t dead = 0;
    while (gltf::Describe(again, dead).count != 4) ++dead;
    EXPECT_EQ(gltf::ReadIntegers(again, dead), (std::vector<std::uint32_t>{0, 1, 2, 3}));
    // The values stay where they are, in views that overlap. The times are stored once, and the old ones are
    // gone.
    EXPECT_EQ(again.Elements(Kind::kAccessor).size(), 4U);
    std::size_t bytes = 0;
    for (const Json& buffer : again.Elements(Kind::kBuffer)) bytes += gltf::IndexMember(buffer, "byteLength");
    EXPECT_EQ(bytes, 8U + 36 + 8);
}

TEST(Leftovers, RemovingAnimationsRemovesTheirKeys) {
    const auto removeFrom = [](Document document) {
        LoadedScene loaded(std::move(document));
        loaded.Scene().DeleteAnimation(loaded.Animation(0));
        return std::move(loaded).WriteBackAndCollect();
    };
    WrittenBack written = removeFrom(Scene(""));
    EXPECT_TRUE(written.refusals.empty());
    EXPECT_EQ(written.document.Elements(Kind::kAccessor).size(), 1U) << "it was unused before and stays";
    EXPECT_EQ(written.document.Elements(Kind::kBuffer).size(), 1U);

    written = removeFrom(Scene(R"("extensionsUsed": ["ODD_x"], "extensions": {"ODD_x": {"accessor": 0}},)"));
    EXPECT_EQ(written.refusals.size(), 1U);
    EXPECT_EQ(written.document.Elements(Kind::kAccessor).size(), 4U);
}

TEST(Leftovers, AnUnknownExtensionThatMayReferToDataKeepsIt) {
    const std::string odd = R"("extensionsUsed": ["ODD_x"], "extensions": {"ODD_x": {"accessor": 0}},)";
    Exported kept = Export(Scene(odd), Slower());
    ASSERT_EQ(kept.refusals.size(), 1U);
    EXPECT_EQ(kept.refusals[0].extension, "ODD_x");
    EXPECT_EQ(gltf::ReadFloats(kept.document, 0), (std::vector<float>{0, 1}));

    Exported taken = Export(Scene(odd), Slower(), true);
    EXPECT_TRUE(taken.refusals.empty());
    EXPECT_EQ(taken.document.Elements(Kind::kAccessor).size(), 4U);

    EXPECT_TRUE(Export(Scene(odd), ExportOptions()).refusals.empty()) << "nothing changes";
}

}  // namespace
}  // namespace zr
