// SPDX-License-Identifier: MIT
#include "tests/gltf/sample.h"

#include <bit>
#include <cstdint>

namespace zr::gltf::test {
namespace {

template <typename T>
void Put(std::string& out, T value) {
    for (std::size_t i = 0; i < sizeof value; ++i) out += static_cast<char>(value >> (8 * i) & 0xFF);
}

}  // namespace

std::string Glb(std::string_view json, std::string_view bin) {
    std::string text(json), data(bin);
    text.resize((text.size() + 3) & ~std::size_t{3}, ' ');
    data.resize((data.size() + 3) & ~std::size_t{3}, '\0');
    std::string out = "glTF";
    Put<std::uint32_t>(out, 2);
    Put(out, static_cast<std::uint32_t>(20 + text.size() + (data.empty() ? 0 : 8 + data.size())));
    Put(out, static_cast<std::uint32_t>(text.size()));
    out += "JSON" + text;
    if (data.empty()) return out;
    Put(out, static_cast<std::uint32_t>(data.size()));
    out += std::string_view("BIN\0", 4);
    return out + data;
}

std::string Floats(std::initializer_list<float> values) {
    std::string out;
    for (float value : values) Put(out, std::bit_cast<std::uint32_t>(value));
    return out;
}

std::string Shorts(std::initializer_list<unsigned> values) {
    std::string out;
    for (unsigned value : values) Put(out, static_cast<std::uint16_t>(value));
    return out;
}

std::string SampleBin() {
    return Shorts({0, 1, 2, 0}) +                                       // 0: indices, 6 of 8 bytes
           Floats({0, 0, 0, 1, 0, 0, 0, 1, 0}) +                        // 8: positions
           Floats({0, 0, 1, 0, 0, 1, 0, 0, 1}) +                        // 44: morph target
           Floats({0, 1}) +                                             // 80: key times
           Floats({0, 0, 0, 2, 0, 0}) +                                 // 88: translations
           Floats({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0,  0, 1,     // 112: two inverse binds
                   1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, -1, 0, 1}) +  //
           Floats({0, 1}) +                                             // 240: weights
           std::string("\x89PNG....", 8);                               // 248: an image
}

std::string SampleJson() {
    return R"({
"asset": {"version": "2.0", "generator": "by hand"},
"extensionsUsed": ["KHR_lights_punctual", "KHR_materials_variants", "KHR_animation_pointer", "ODD_marker"],
"scene": 0,
"scenes": [{"name": "main", "nodes": [0, 3, 4]}, {"nodes": [6]}],
"nodes": [
 {"name": "left", "mesh": 0, "children": [1, 2]},
 {"name": "right", "mesh": 0, "translation": [1, 0, -0.0], "extras": {"big": 123456789012345678901234567890, "e": 1e300}},
 {"name": "light", "extensions": {"KHR_lights_punctual": {"light": 0}}},
 {"name": "camera", "camera": 0},
 {"name": "hip", "children": [5]},
 {"name": "knee"},
 {"name": "skinned", "mesh": 1, "skin": 0}
],
"meshes": [
 {"primitives": [{"attributes": {"POSITION": 1}, "indices": 0, "material": 1, "targets": [{"POSITION": 2}],
   "extensions": {"KHR_materials_variants": {"mappings": [{"material": 2, "variants": [0]}, {"material": 1, "variants": [1]}]}}}]},
 {"primitives": [{"attributes": {"POSITION": 1}, "material": 0}]}
],
"materials": [
 {"name": "plain"},
 {"name": "painted", "pbrMetallicRoughness": {"baseColorTexture": {"index": 0}}},
 {"name": "sheen", "extensions": {"KHR_materials_sheen": {"sheenColorTexture": {"index": 1}}}}
],
"textures": [{"source": 0, "sampler": 0}, {"source": 0}],
"images": [{"bufferView": 7, "mimeType": "image/png"}],
"samplers": [{}],
"skins": [{"joints": [4, 5], "inverseBindMatrices": 5, "skeleton": 4}],
"cameras": [{"type": "perspective", "perspective": {"yfov": 0.7, "znear": 0.1}}],
"animations": [{"name": "walk",
 "channels": [
  {"sampler": 0, "target": {"node": 1, "path": "translation"}},
  {"sampler": 1, "target": {"node": 0, "path": "weights"}},
  {"sampler": 0, "target": {"path": "pointer", "extensions": {"KHR_animation_pointer": {"pointer": "/nodes/5/translation"}}}}],
 "samplers": [{"input": 3, "output": 4}, {"input": 3, "output": 6, "interpolation": "STEP"}]}],
"accessors": [
 {"bufferView": 0, "componentType": 5123, "count": 3, "type": "SCALAR"},
 {"bufferView": 1, "componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 0]},
 {"bufferView": 2, "componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 1], "max": [0, 0, 1]},
 {"bufferView": 3, "componentType": 5126, "count": 2, "type": "SCALAR", "min": [0], "max": [1]},
 {"bufferView": 4, "componentType": 5126, "count": 2, "type": "VEC3"},
 {"bufferView": 5, "componentType": 5126, "count": 2, "type": "MAT4"},
 {"bufferView": 6, "componentType": 5126, "count": 2, "type": "SCALAR"}
],
"bufferViews": [
 {"buffer": 0, "byteOffset": 0, "byteLength": 6},
 {"buffer": 0, "byteOffset": 8, "byteLength": 36},
 {"buffer": 0, "byteOffset": 44, "byteLength": 36},
 {"buffer": 0, "byteOffset": 80, "byteLength": 8},
 {"buffer": 0, "byteOffset": 88, "byteLength": 24},
 {"buffer": 0, "byteOffset": 112, "byteLength": 128},
 {"buffer": 0, "byteOffset": 240, "byteLength": 8},
 {"buffer": 0, "byteOffset": 248, "byteLength": 8}
],
"buffers": [{"byteLength": 256}],
"extensions": {"KHR_lights_punctual": {"lights": [{"type": "point"}]},
 "KHR_materials_variants": {"variants": [{"name": "a"}, {"name": "b"}]}},
"extras": [null, true, "\u0001\u00e9\/"]
})";
}

std::string TextScene(std::string_view buffer) {
    std::string json = SampleJson();
    const std::string_view image = R"({"bufferView": 7, "mimeType": "image/png"})",
                           bytes = R"({"byteLength": 256})";
    json.replace(json.find(image), image.size(), R"({"uri": "my%20images/a.png"}, {"uri": "gone.png"})");
    json.replace(json.find(bytes), bytes.size(),
                 R"({"byteLength": 256, "uri": ")" + std::string(buffer) + "\"}");
    return json;
}

Document FromText(std::string_view json) {
    return Document::FromBytes(BytesOf(json), "text.gltf");
}

}  // namespace zr::gltf::test
