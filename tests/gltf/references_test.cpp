// SPDX-License-Identifier: MIT
#include "gltf/references.h"

#include <gtest/gtest.h>

#include <array>
#include <map>

#include "gltf/accessor.h"
#include "gltf/collect.h"
#include "gltf/uri.h"
#include "tests/gltf/sample.h"

namespace zr::gltf {
namespace {

using Names = std::vector<std::string>;

std::map<std::string, std::string> Targets(Document& document, Kind kind) {
    std::map<std::string, std::string> found;
    ForEachReference(document, {kind}, [&](const Reference& reference) {
        found[reference.place.Pointer()] = std::to_string(reference.target.index);
    });
    return found;
}

Removal Only(Kind kind, std::initializer_list<std::size_t> gone) {
    Removal removal;
    for (std::size_t index : gone) {
        auto& bits = removal[Ordinal(kind)];
        if (bits.size() <= index) bits.resize(index + 1, false);
        bits[index] = true;
    }
    return removal;
}

Names NodeNames(const Document& document) {
    Names names;
    for (const Json& node : document.Elements(Kind::kNode)) names.emplace_back(node.Find("name")->String());
    return names;
}

TEST(References, EveryPlaceThatNamesANodeIsFound) {
    Document document = test::Sample();
    EXPECT_EQ(Targets(document, Kind::kNode),
              (std::map<std::string, std::string>{
                  {"/scenes/0/nodes/0", "0"},
                  {"/scenes/0/nodes/1", "3"},
                  {"/scenes/0/nodes/2", "4"},
                  {"/scenes/1/nodes/0", "6"},
                  {"/nodes/0/children/0", "1"},
                  {"/nodes/0/children/1", "2"},
                  {"/nodes/4/children/0", "5"},
                  {"/skins/0/joints/0", "4"},
                  {"/skins/0/joints/1", "5"},
                  {"/skins/0/skeleton", "4"},
                  {"/animations/0/channels/0/target/node", "1"},
                  {"/animations/0/channels/1/target/node", "0"},
                  {"/animations/0/channels/2/target/extensions/KHR_animation_pointer/pointer", "5"}}));
    EXPECT_EQ(Targets(document, Kind::kTexture),
              (std::map<std::string, std::string>{
                  {"/materials/1/pbrMetallicRoughness/baseColorTexture/index", "0"},
                  {"/materials/2/extensions/KHR_materials_sheen/sheenColorTexture/index", "1"}}));
    EXPECT_TRUE(OpaqueReferences(document).uses.empty());
}

// What a walk for one kind skips leads to none of them.
TEST(References, AWalkForOneKindFindsThatKindsAmongAll) {
    Document document = test::Sample();
    std::array<std::map<std::string, std::string>, kKinds> all;
    ForEachReference(document, KindSet::All(), [&](const Reference& reference) {
        all[Ordinal(reference.target.kind)][reference.place.Pointer()] =
            std::to_string(reference.target.index);
    });
    for (std::size_t kind = 0; kind < kKinds; ++kind)
        EXPECT_EQ(Targets(document, static_cast<Kind>(kind)), all[kind]) << kKindInfo[kind].noun;
    EXPECT_GT(all[Ordinal(Kind::kAccessor)].size(), 5U);
}

// A walk skips values without extensions, but must not miss extensions that edits add.
TEST(References, ExtensionsAddedByEditsAreSeen) {
    constexpr std::string_view kScene =
        R"({"asset":{"version":"2.0"},"nodes":[{"name":"plain"},{"name":"other"}],
        "extensions":{"KHR_lights_punctual":{"lights":[{"type":"point"},{"type":"point"}]}}})";
    constexpr std::string_view kExtensions = R"({"KHR_lights_punctual":{"light":1},"ODD_x":{"mesh":0}})";
    const auto expectSeen = [](Document& document, const std::string& node) {
        EXPECT_EQ(Targets(document, Kind::kLight),
                  (std::map<std::string, std::string>{
                      {"/nodes/" + node + "/extensions/KHR_lights_punctual/light", "1"}}));
        ASSERT_EQ(OpaqueReferences(document).uses.size(), 1U);
        EXPECT_EQ(OpaqueReferences(document).uses[0].place, "/nodes/" + node + "/extensions/ODD_x");
    };

    Document changed = test::FromText(kScene);
    changed.Tree().Member(changed.Elements(Kind::kNode)[1], "extensions") = changed.Tree().Build(kExtensions);
    expectSeen(changed, "1");

    const std::string node = R"({"extensions":)" + std::string(kExtensions) + "}";
    Document built = test::FromText(kScene);
    built.Append(Kind::kNode, built.Tree().Build(node));
    expectSeen(built, "2");

    Document copied = test::FromText(kScene);
    JsonTree other;
    copied.Append(Kind::kNode, copied.Tree().Clone(other.Build(node)));
    expectSeen(copied, "2");

    // Once read again, values without extensions are skipped again.
    Document read = test::FromText(WriteJson(copied.Root(), false));
    expectSeen(read, "2");
    EXPECT_TRUE(read.Tree().NotesExtensions());
    EXPECT_FALSE(read.Elements(Kind::kNode)[0].HoldsExtensions());
}

TEST(References, RemovingNodesUpdatesWhatStays) {
    Document document = test::Sample();
    RemoveElements(document, Only(Kind::kNode, {1, 2, 3}));
    EXPECT_EQ(NodeNames(document), (Names{"left", "hip", "knee", "skinned"}));
    EXPECT_EQ(document.Elements(Kind::kNode)[0].Find("children"), nullptr);
    const std::string text = WriteJson(document.Root(), false);
    EXPECT_NE(text.find(R"("nodes":[0,1]},{"nodes":[3])"), std::string::npos) << text;
    EXPECT_NE(text.find(R"("joints":[1,2],"inverseBindMatrices":5,"skeleton":1)"), std::string::npos);
    // The channel that moved "right" is gone, and the pointer has the knee's new index.
    EXPECT_EQ(Targets(document, Kind::kNode).count("/animations/0/channels/1/target/node"), 0U);
    EXPECT_NE(text.find("/nodes/2/translation"), std::string::npos);
    EXPECT_NO_THROW(Document::FromBytes(BytesOf(test::Glb(text, test::SampleBin())), "again.glb"));
}

TEST(References, ANeededElementBlocksTheRemovalAndNothingChanges) {
    Document document = test::Sample();
    const std::string before = WriteJson(document.Root(), false);
    EXPECT_THROW(RemoveElements(document, Only(Kind::kNode, {2, 5})), Error);
    EXPECT_EQ(WriteJson(document.Root(), false), before);
    // The joint may be removed with the skin (and the node that uses it).
    Removal removal = Only(Kind::kNode, {5, 6});
    removal[Ordinal(Kind::kSkin)] = {true};
    RemoveElements(document, removal);
    EXPECT_EQ(document.Root().Find("skins"), nullptr);
    EXPECT_EQ(document.Elements(Kind::kScene)[1].Find("nodes"), nullptr);
}

TEST(References, MaterialsLightsAndTheirExtensionsGoWithoutLeftovers) {
    Document document = test::Sample();
    RemoveElements(document, Only(Kind::kMaterial, {1}));
    const Json& primitive = document.Elements(Kind::kMesh)[0].Find("primitives")->Items()[0];
    EXPECT_EQ(primitive.Find("material"), nullptr);
    EXPECT_EQ(WriteJson(*primitive.Find("extensions"), false),
              R"({"KHR_materials_variants":{"mappings":[{"material":1,"variants":[0]}]}})");
    RemoveElements(document, Only(Kind::kMaterial, {1}));
    EXPECT_EQ(document.Elements(Kind::kMesh)[0].Find("primitives")->Items()[0].Find("extensions"), nullptr);
    RemoveElements(document, Only(Kind::kLight, {0}));
    EXPECT_EQ(document.Elements(Kind::kNode)[2].Find("extensions"), nullptr);
    EXPECT_EQ(WriteJson(*document.Root().Find("extensionsUsed"), false),
              R"(["KHR_materials_variants","KHR_animation_pointer","ODD_marker"])");
    RemoveElements(document, Only(Kind::kVariant, {0, 1}));
    EXPECT_EQ(document.Root().Find("extensions"), nullptr);
    RemoveElements(document, Only(Kind::kNode, {1}));
    Document still = test::Sample();
    RemoveElements(still, Only(Kind::kTexture, {0, 1}));
    EXPECT_EQ(WriteJson(still.Root().Find("materials")->Items()[1], false), R"({"name":"painted"})");
}

TEST(References, AnAnimationWithoutChannelsIsRemoved) {
    Document document = test::FromText(R"({"asset":{"version":"2.0"},"nodes":[{},{}],
        "accessors":[{"componentType":5126,"count":1,"type":"SCALAR"},{"componentType":5126,"count":1,"type":"VEC3"}],
        "animations":[{"channels":[{"sampler":0,"target":{"node":0,"path":"scale"}}],"samplers":[{"input":0,"output":1}]},
                      {"name":"stays","channels":[{"sampler":0,"target":{"node":1,"path":"scale"}}],"samplers":[{"input":0,"output":1}]}]})");
    RemoveElements(document, Only(Kind::kNode, {0}));
    ASSERT_EQ(document.Elements(Kind::kAnimation).size(), 1U);
    EXPECT_EQ(document.Elements(Kind::kAnimation)[0].Find("name")->String(), "stays");
    EXPECT_EQ(Targets(document, Kind::kNode)["/animations/0/channels/0/target/node"], "0");
}

TEST(References, UnknownContentShowsWhatItMayReferTo) {
    const auto kinds = [](const std::string& content) {
        Document document = test::FromText(R"({"asset":{"version":"2.0"},"nodes":[{"extensions":{"ODD_x":)" +
                                           content + "}}]}");
        const Opaque opaque = OpaqueReferences(document);
        std::string found;
        for (std::size_t i = 0; i < kKinds; ++i)
            if (opaque.kinds.Has(static_cast<Kind>(i))) found += std::string(kKindInfo[i].noun) + " ";
        for (const OpaqueUse& use : opaque.uses) EXPECT_EQ(use.place, "/nodes/0/extensions/ODD_x");
        return found;
    };
    EXPECT_EQ(kinds("{}"), "");
    EXPECT_EQ(kinds(R"({"name":"node 3","on":true,"weight":0.5,"low":-1})"), "");
    EXPECT_EQ(kinds(R"({"parentNode":3,"jointIndices":[1]})"), "node ");
    EXPECT_EQ(kinds(R"({"deep":[{"bufferView":0}]})"), "bufferView ");
    EXPECT_EQ(kinds(R"({"to":"/materials/1/alphaMode"})"), "material ");
    EXPECT_EQ(kinds(R"({"maskTexture":{"index":0,"texCoord":0.5}})"), "texture ");
    EXPECT_NE(kinds(R"({"id":1})").find("scene node mesh"), std::string::npos);
}

TEST(References, BehaviourGraphsReferByLiteralsAndByComputedIndices) {
    const auto graph = [](const std::string& nodes) {
        return test::FromText(R"({"asset":{"version":"2.0"},"nodes":[{},{},{},{}],"animations":[{},{}],
            "extensions":{"KHR_interactivity":{"graphs":[{"declarations":[{"op":"pointer/get"},{"op":"animation/start"},
            {"op":"event/onSelect"}],"nodes":[)" +
                              nodes + "]}]}}}");
    };
    Document literal = graph(
        R"({"declaration":0,"configuration":{"pointer":{"value":["/nodes/{n}/scale"]}},"values":{"n":{"type":1,"value":[2]}}},
        {"declaration":0,"configuration":{"pointer":{"value":["/nodes/3/scale"]}}},
        {"declaration":1,"values":{"animation":{"type":1,"value":[1]}}},
        {"declaration":2,"configuration":{"nodeIndex":{"value":[1]}}})");
    EXPECT_TRUE(OpaqueReferences(literal).uses.empty());
    EXPECT_THROW(RemoveElements(literal, Only(Kind::kNode, {2})), Error);
    EXPECT_THROW(RemoveElements(literal, Only(Kind::kAnimation, {1})), Error);
    Removal removal = Only(Kind::kNode, {0});
    removal[Ordinal(Kind::kAnimation)] = {true};
    RemoveElements(literal, removal);
    const std::string text = WriteJson(*literal.Root().Find("extensions"), false);
    for (const char* piece : {R"("n":{"type":1,"value":[1]})", "/nodes/2/scale",
                              R"("animation":{"type":1,"value":[0]})", R"("nodeIndex":{"value":[0]})"})
        EXPECT_NE(text.find(piece), std::string::npos) << piece;

    Document computed = graph(
        R"({"declaration":0,"configuration":{"pointer":{"value":["/nodes/{n}/scale"]}},"values":{"n":{"node":1}}})");
    const Opaque opaque = OpaqueReferences(computed);
    EXPECT_TRUE(opaque.kinds.Has(Kind::kNode));
    EXPECT_FALSE(opaque.kinds.Has(Kind::kAnimation));
}

TEST(Collect, UnusedDataIsRemovedAndTheRestReadsTheSame) {
    Document document = test::Sample();
    const auto inverse = ReadFloats(document, 5), positions = ReadFloats(document, 1);
    Collected nothing = CollectGarbage(document, kDataKinds, false);
    EXPECT_EQ(nothing.removed, (std::array<std::size_t, kKinds>{}));
    EXPECT_EQ(nothing.bytes, 0U);

    // Without the animation its key data is unused; without the second material a texture is.
    Removal removal = Only(Kind::kAnimation, {0});
    removal[Ordinal(Kind::kMaterial)] = {false, false, true};
    RemoveElements(document, removal);
    const Collected collected = CollectGarbage(document, kDataKinds, false);
    EXPECT_EQ(collected.removed[Ordinal(Kind::kAccessor)], 3U);
    EXPECT_EQ(collected.removed[Ordinal(Kind::kBufferView)], 3U);
    EXPECT_EQ(collected.removed[Ordinal(Kind::kTexture)], 1U);
    EXPECT_EQ(collected.removed[Ordinal(Kind::kImage)], 0U);
    EXPECT_EQ(collected.bytes, 8U + 24 + 8);
    const std::size_t binds = IndexMember(document.Elements(Kind::kSkin)[0], "inverseBindMatrices");
    EXPECT_EQ(binds, 3U);
    EXPECT_EQ(ReadFloats(document, binds), inverse);
    EXPECT_EQ(ReadFloats(document, 1), positions);

    const test::TemporaryFolder folder;
    document.Save(folder / "small.glb");
    Document again = Document::Load(folder / "small.glb");
    EXPECT_EQ(again.BufferBytes(0)->size(), 216U);
    EXPECT_EQ(CollectGarbage(again, kDataKinds, false).bytes, 0U);
}

// The bytes 0, 1, 2 ...: a packed view, an interleaved one, and one that an image holds too.
TEST(Collect, BytesOfAViewThatNoAccessorReadsAnyMoreGo) {
    const auto make = [] {
        std::string bytes;
        for (int i = 0; i < 72; ++i) bytes += static_cast<char>(i);
        return test::FromText(R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":72,"uri":")" +
                              EncodeDataUri("application/octet-stream", bytes) + R"("}],
            "bufferViews":[{"buffer":0,"byteLength":24},{"buffer":0,"byteOffset":24,"byteLength":36,"byteStride":12},
                           {"buffer":0,"byteOffset":60,"byteLength":12}],
            "images":[{"bufferView":2,"mimeType":"image/png"}],"textures":[{"source":0}],
            "materials":[{"normalTexture":{"index":0}}],
            "accessors":[{"bufferView":0,"componentType":5121,"count":3,"type":"SCALAR"},
                         {"bufferView":0,"byteOffset":6,"componentType":5123,"count":1,"type":"SCALAR"},
                         {"bufferView":0,"byteOffset":12,"componentType":5121,"count":2,"type":"SCALAR"},
                         {"bufferView":0,"byteOffset":20,"componentType":5121,"count":4,"type":"SCALAR"},
                         {"bufferView":1,"byteOffset":4,"componentType":5121,"count":2,"type":"VEC3"},
                         {"bufferView":1,"byteOffset":28,"componentType":5121,"count":1,"type":"VEC3"},
                         {"bufferView":2,"componentType":5121,"count":1,"type":"SCALAR"}],
            "meshes":[{"primitives":[{"attributes":{"_A":1}},{"attributes":{"_A":3}},{"attributes":{"_A":5}}]}],"nodes":[{"mesh":0}],"scenes":[{"nodes":[0]}]})");
    };
    Document document = make();
    const Removal unused = Unreferenced(document, kDataKinds);
    EXPECT_EQ(CollectGarbage(document, kDataKinds, false, unused).bytes, 0U) << "it was so before";

    const auto b = ReadIntegers(document, 3), a = ReadIntegers(document, 1), c = ReadIntegers(document, 5);
    EXPECT_EQ(CollectGarbage(document, kDataKinds, false).bytes, 4U + 12 + 24);
    EXPECT_EQ(ReadIntegers(document, 0), a);
    EXPECT_EQ(ReadIntegers(document, 1), b);
    EXPECT_EQ(ReadIntegers(document, 2), c);
    const auto views = document.Elements(Kind::kBufferView);
    EXPECT_EQ(IndexMember(views[0], "byteLength"), 8U);
    EXPECT_EQ(IndexMember(views[1], "byteLength"), 12U) << "a row";
    EXPECT_EQ(document.ViewBytes(2)->front(), std::byte{60});
    EXPECT_EQ(IndexMember(views[2], "byteLength"), 12U) << "an image";
    EXPECT_EQ(CollectGarbage(document, kDataKinds, false).bytes, 0U);
}

TEST(Collect, SharedAndOverlappingBytesMoveTogether) {
    Document document = test::FromText(R"({"asset":{"version":"2.0"},
        "buffers":[{"byteLength":32,"uri":"data:;base64,AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8="}],
        "bufferViews":[{"buffer":0,"byteLength":4},{"buffer":0,"byteOffset":10,"byteLength":6},
                       {"buffer":0,"byteOffset":12,"byteLength":9},{"buffer":0,"byteOffset":29,"byteLength":2}],
        "images":[{"bufferView":1,"mimeType":"image/png"},{"bufferView":2,"mimeType":"image/png"},{"bufferView":3,"mimeType":"image/png"}]})");
    CollectGarbage(document, {Kind::kBufferView, Kind::kBuffer}, false);
    const auto numbers = [&](std::size_t view) {
        std::vector<int> values;
        const Bytes bytes = *document.ViewBytes(view);
        for (std::byte value : bytes) values.push_back(std::to_integer<int>(value));
        return values;
    };
    EXPECT_EQ(numbers(0), (std::vector<int>{10, 11, 12, 13, 14, 15}));
    EXPECT_EQ(numbers(1), (std::vector<int>{12, 13, 14, 15, 16, 17, 18, 19, 20}));
    EXPECT_EQ(numbers(2), (std::vector<int>{29, 30}));
    EXPECT_EQ(document.BufferBytes(0)->size(), 15U);
    EXPECT_EQ(IndexMember(document.Elements(Kind::kBufferView)[1], "byteOffset") % 4, 0U);
    const std::string text = WriteJson(document.Root(), false);
    EXPECT_NO_THROW(test::FromText(text)) << text;
}

TEST(Collect, UnknownContentProtectsItsKindsUnlessForced) {
    std::string json = test::SampleJson();
    json.replace(json.find(R"("KHR_lights_punctual": {"lights")"), 0, R"("ODD_x": {"accessor": 0}, )");
    Document document = Document::FromBytes(BytesOf(test::Glb(json, test::SampleBin())), "odd.glb");
    RemoveElements(document, Only(Kind::kAnimation, {0}));
    const Collected refused = CollectGarbage(document, kDataKinds, false);
    EXPECT_EQ(refused.removed[Ordinal(Kind::kAccessor)], 0U);
    ASSERT_EQ(refused.refusals.size(), 1U);
    EXPECT_EQ(refused.refusals[0].extension, "ODD_x");
    EXPECT_EQ(CollectGarbage(document, kDataKinds, true).removed[Ordinal(Kind::kAccessor)], 3U);
}

TEST(Collect, SamplersThatNoChannelUsesAreRemoved) {
    Document document = test::FromText(R"({"asset":{"version":"2.0"},"nodes":[{}],
        "accessors":[{"componentType":5126,"count":1,"type":"SCALAR"},{"componentType":5126,"count":1,"type":"VEC3"},
                     {"componentType":5126,"count":1,"type":"VEC3"}],
        "animations":[{"channels":[{"sampler":1,"target":{"node":0,"path":"scale"}}],
                       "samplers":[{"input":0,"output":1},{"input":0,"output":2}]}]})");
    EXPECT_EQ(CollectGarbage(document, kDataKinds, false).removed[Ordinal(Kind::kAccessor)], 1U);
    EXPECT_EQ(
        WriteJson(document.Elements(Kind::kAnimation)[0], false),
        R"({"channels":[{"sampler":0,"target":{"node":0,"path":"scale"}}],"samplers":[{"input":0,"output":1}]})");
}

}  // namespace
}  // namespace zr::gltf
