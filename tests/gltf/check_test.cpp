// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "gltf/document.h"
#include "tests/gltf/sample.h"

namespace zr::gltf {
namespace {

// The sample scene with one piece of its text replaced: the fault met, as "place" and kind.
struct Case {
    std::string_view from;
    std::string_view to;
    ErrorKind kind;
    std::string_view place;
};

constexpr Case kCases[] = {
    {R"("version": "2.0")", R"("version": "1.0")", ErrorKind::kVersion, "/asset/version"},
    {R"("version": "2.0")", R"("version": "2")", ErrorKind::kVersion, "/asset/version"},
    {R"("version": "2.0")", R"("version": "2.0", "minVersion": "2.1")", ErrorKind::kVersion,
     "/asset/minVersion"},
    {R"("asset": {"version": "2.0", "generator": "by hand"},)", "", ErrorKind::kStructure, ""},
    {R"("scene": 0)", R"("scene": 2)", ErrorKind::kReference, "/scene"},
    {R"("name": "knee")", R"("name": 7)", ErrorKind::kStructure, "/nodes/5/name"},
    {R"("mesh": 0, "children")", R"("mesh": -1, "children")", ErrorKind::kStructure, "/nodes/0/mesh"},
    {R"("mesh": 0, "children")", R"("mesh": 0.5, "children")", ErrorKind::kStructure, "/nodes/0/mesh"},
    {R"("children": [1, 2])", R"("children": {"1": 2})", ErrorKind::kStructure, "/nodes/0/children"},
    {R"({"name": "knee"})", R"("knee")", ErrorKind::kStructure, "/nodes/5"},
    {R"([1, 0, -0.0])", R"([1, 0])", ErrorKind::kStructure, "/nodes/1/translation"},
    {R"([1, 0, -0.0])", R"([1, 0, null])", ErrorKind::kStructure, "/nodes/1/translation"},
    {R"({"light": 0})", R"({"light": 1})", ErrorKind::kReference,
     "/nodes/2/extensions/KHR_lights_punctual/light"},
    {R"({"light": 0})", R"({})", ErrorKind::kStructure, "/nodes/2/extensions/KHR_lights_punctual"},
    {R"("material": 2, "var)", R"("material": 3, "var)", ErrorKind::kReference,
     "/meshes/0/primitives/0/extensions/KHR_materials_variants/mappings/0/material"},
    {R"("sheenColorTexture": {"index": 1})", R"("sheenColorTexture": {"index": 2})", ErrorKind::kReference,
     "/materials/2/extensions/KHR_materials_sheen/sheenColorTexture/index"},
    {R"(/nodes/5/translation)", R"(/nodes/55/translation)", ErrorKind::kReference,
     "/animations/0/channels/2/target/extensions/KHR_animation_pointer/pointer"},
    {R"("children": [5])", R"("children": [4])", ErrorKind::kHierarchy, "/nodes/4/children"},
    {R"("children": [5])", R"("children": [1])", ErrorKind::kHierarchy, "/nodes/4/children"},
    {R"({"name": "knee"})", R"({"children": [6]})", ErrorKind::kHierarchy, "/scenes/1/nodes"},
    {R"({"name": "knee"})", R"({"children": [4]})", ErrorKind::kHierarchy, "/nodes/4/children"},
    {R"("nodes": [0, 3, 4])", R"("nodes": [0, 3, 3])", ErrorKind::kHierarchy, "/scenes/0/nodes"},
    {R"("joints": [4, 5])", R"("joints": [4, 3])", ErrorKind::kHierarchy, "/skins/0/joints"},
    {R"("joints": [4, 5])", R"("joints": [4, 5, 4])", ErrorKind::kHierarchy, "/skins/0/inverseBindMatrices"},
    {R"("joints": [4, 5])", R"("joints": [])", ErrorKind::kStructure, "/skins/0/joints"},
    {R"("translation": [1, 0, -0.0])",
     R"("translation": [1,0,0], "matrix": [1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1])", ErrorKind::kHierarchy,
     "/nodes/1"},
    {R"("indices": 0)", R"("indices": 1)", ErrorKind::kMesh, "/meshes/0/primitives/0/indices"},
    {R"({"POSITION": 1}, "indices")", R"({"POSITION": 4}, "indices")", ErrorKind::kMesh,
     "/meshes/0/primitives/0/targets/0/POSITION"},
    {R"("targets": [{"POSITION": 2}])", R"("targets": [{"POSITION": 2}, {}], "mode": 7)", ErrorKind::kMesh,
     "/meshes/0/primitives/0/mode"},
    {R"("primitives": [{"attributes": {"POSITION": 1}, "material": 0}])",
     R"("weights": [1], "primitives": [{"attributes": {"POSITION": 1}}])", ErrorKind::kMesh,
     "/meshes/1/weights"},
    {R"({"sampler": 0, "target": {"node": 1)", R"({"sampler": 9, "target": {"node": 1)",
     ErrorKind::kReference, "/animations/0/channels/0/sampler"},
    {R"("path": "translation")", R"("path": "rotation")", ErrorKind::kAnimation, "/animations/0/channels/0"},
    {R"({"node": 0, "path": "weights"})", R"({"node": 1, "path": "translation"})", ErrorKind::kAnimation,
     "/animations/0/channels/1"},
    {R"("input": 3, "output": 6, "interpolation": "STEP")",
     R"("input": 3, "output": 6, "interpolation": "CUBICSPLINE")", ErrorKind::kAnimation,
     "/animations/0/channels/1"},
    {R"("interpolation": "STEP")", R"("interpolation": "CUBIC")", ErrorKind::kAnimation,
     "/animations/0/samplers/1/interpolation"},
    {R"("samplers": [{"input": 3)", R"("samplers": [{"input": 4)", ErrorKind::kAnimation,
     "/animations/0/samplers/0/input"},
    {R"("byteOffset": 80, "byteLength": 8)", R"("byteOffset": 88, "byteLength": 8)", ErrorKind::kAnimation,
     "/animations/0/samplers/0/input"},  // two equal times
    {R"("count": 2, "type": "MAT4")", R"("count": 3, "type": "MAT4")", ErrorKind::kBounds, "/accessors/5"},
    {R"("componentType": 5126, "count": 2, "type": "MAT4")",
     R"("componentType": 5124, "count": 2, "type": "MAT4")", ErrorKind::kStructure,
     "/accessors/5/componentType"},
    {R"("type": "MAT4")", R"("type": "MAT5")", ErrorKind::kStructure, "/accessors/5/type"},
    {R"("count": 2, "type": "MAT4")", R"("count": 4611686018427387905, "type": "MAT4")", ErrorKind::kLimit,
     "/accessors/5/count"},
    {R"({"bufferView": 5, "componentType": 5126, "count": 2)", R"({"componentType": 5126, "count": 20000000)",
     ErrorKind::kLimit, "/accessors/5/count"},
    {R"({"bufferView": 5, )", R"({"bufferView": 5, "byteOffset": 18446744073709551615, )", ErrorKind::kBounds,
     "/accessors/5"},
    {R"("min": [0], "max": [1])", R"("min": [0, 0], "max": [1])", ErrorKind::kStructure, "/accessors/3/min"},
    {R"("byteOffset": 248, "byteLength": 8)", R"("byteOffset": 248, "byteLength": 9)", ErrorKind::kBounds,
     "/bufferViews/7"},
    {R"("byteOffset": 112, "byteLength": 128)", R"("byteOffset": 112, "byteLength": 128, "byteStride": 32)",
     ErrorKind::kBounds, "/accessors/5"},
    {R"("byteOffset": 112, "byteLength": 128)", R"("byteOffset": 112, "byteLength": 128, "byteStride": 66)",
     ErrorKind::kBounds, "/bufferViews/5/byteStride"},
    {R"([{"byteLength": 256}])", R"([{"byteLength": 260}])", ErrorKind::kBounds, "/buffers/0/byteLength"},
    {R"([{"byteLength": 256}])", R"([{"byteLength": 256, "uri": "../x.bin"}])", ErrorKind::kUri,
     "/buffers/0/uri"},
    {R"([{"byteLength": 256}])", R"([{"byteLength": 256, "uri": "https://a/x.bin"}])", ErrorKind::kUri,
     "/buffers/0/uri"},
    {R"([{"byteLength": 256}])", R"([{"byteLength": 256, "uri": "data:;base64,!"}])", ErrorKind::kUri,
     "/buffers/0/uri"},
    {R"([{"byteLength": 256}])", R"([{"byteLength": 256, "uri": "missing.bin"}])", ErrorKind::kFile,
     "/buffers/0/uri"},
};

TEST(Check, EveryFaultIsReportedWithItsPlace) {
    for (const Case& fault : kCases) {
        std::string json = test::SampleJson();
        const std::size_t at = json.find(fault.from);
        ASSERT_NE(at, std::string::npos) << fault.from;
        json.replace(at, fault.from.size(), fault.to);
        try {
            Document::FromBytes(BytesOf(test::Glb(json, test::SampleBin())), "f.glb");
            ADD_FAILURE() << "accepted: " << fault.to;
        } catch (const Error& error) {
            EXPECT_EQ(error.Place(), fault.place) << fault.to << "\n" << error.what();
            EXPECT_EQ(error.Kind(), fault.kind) << error.what();
            EXPECT_EQ(std::string_view(error.what()).find("f.glb: "), 0U);
        }
    }
}

TEST(Check, SaysHowManyNumbersThereShouldBe) {
    try {
        test::FromText(R"({"asset":{"version":"2.0"},"nodes":[{"translation":[1,2]}]})");
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_TRUE(std::string_view(error.what()).ends_with("should be an array of 3 numbers"))
            << error.what();
    }
}

TEST(Check, OddButReadableScenesPass) {
    for (
        const char* json : {
            R"({"asset":{"version":"2.0"}})",
            R"({"asset":{"version":"2.7","minVersion":"2.0"},"scenes":[{"nodes":[]}],"nodes":[],"accessors":[]})",
            R"({"asset":{"version":"2.0"},"nodes":[{"extras":42},{"extras":null},{"name":"","children":[0]}]})",
            R"({"asset":{"version":"2.0"},"extensionsRequired":["ODD_thing"],"extensions":{"ODD_thing":[1,{"a":-1}]}})",
            R"({"asset":{"version":"2.0"},"meshes":[{"primitives":[{"attributes":{}}]}],"buffers":[{"byteLength":1}]})",
            R"({"asset":{"version":"2.0"},"images":[{"uri":"http://x/y.png"},{"uri":"gone.png"},{"uri":"100%.png"}]})",
        })
        EXPECT_NO_THROW(test::FromText(json)) << json;
}

TEST(Check, ADeepChainOfNodesIsFineALongCycleIsNot) {
    constexpr int kDepth = 200000;
    std::string json = R"({"asset":{"version":"2.0"},"nodes":[)";
    for (int i = 0; i + 1 < kDepth; ++i) json += "{\"children\":[" + std::to_string(i + 1) + "]},";
    EXPECT_NO_THROW(test::FromText(json + "{}]}"));
    EXPECT_THROW(test::FromText(json + "{\"children\":[0]}]}"), Error);
}

TEST(Check, ContainerFaultsAreReported) {
    const std::string good = test::Glb(test::SampleJson(), test::SampleBin());
    const auto fault = [](std::string file) {
        try {
            Document::FromBytes(BytesOf(file), "f.glb");
        } catch (const Error& error) {
            return error.Place();
        }
        return std::string("none");
    };
    const auto with = [&](std::size_t at, char value) {
        std::string file = good;
        file[at] = value;
        return fault(file);
    };
    EXPECT_EQ(fault(good), "none");
    EXPECT_EQ(fault(good + "x"), "none");
    EXPECT_EQ(with(8, static_cast<char>(good[8] + 1)), "byte 8");
    EXPECT_EQ(with(4, 1), "byte 4");
    EXPECT_EQ(with(15, 1), "byte 12");
    EXPECT_EQ(with(16, 'K'), "byte 12");
    EXPECT_EQ(fault("glTF"), "byte 4");
    EXPECT_EQ(fault(""), "");
    const std::size_t bin = good.size() - test::SampleBin().size() - 8;
    EXPECT_EQ(with(bin + 1, 2), "byte " + std::to_string(bin));
}

}  // namespace
}  // namespace zr::gltf
