// SPDX-License-Identifier: MIT
#include "gltf/schema.h"

namespace zr::gltf {
namespace {

using enum Shape;
using enum Cut;

constexpr Rule kCoreRules[] = {
    {"asset!", kObject},
    {"asset.version!", kString},
    {"asset.minVersion", kString},
    {"extensionsUsed", Shape::kArray},
    {"extensionsUsed[]", kString},
    {"extensionsRequired", Shape::kArray},
    {"extensionsRequired[]", kString},

    {"scene", kIndex, Kind::kScene, kValue},
    {"scenes[].name", kString},
    {"scenes[].nodes[]", kIndex, Kind::kNode, kValue},

    {"nodes[].name", kString},
    {"nodes[].children[]", kIndex, Kind::kNode, kValue},
    {"nodes[].mesh", kIndex, Kind::kMesh, kValue},
    {"nodes[].skin", kIndex, Kind::kSkin, kValue},
    {"nodes[].camera", kIndex, Kind::kCamera, kValue},
    {"nodes[].matrix", kNumbers, Kind::kCount, kNothing, 16},
    {"nodes[].translation", kNumbers, Kind::kCount, kNothing, 3},
    {"nodes[].rotation", kNumbers, Kind::kCount, kNothing, 4},
    {"nodes[].scale", kNumbers, Kind::kCount, kNothing, 3},
    {"nodes[].weights", kNumbers},

    {"meshes[].name", kString},
    {"meshes[].primitives!", Shape::kArray},
    {"meshes[].primitives[].attributes!", kObject},
    {"meshes[].primitives[].attributes{}", kIndex, Kind::kAccessor},
    {"meshes[].primitives[].indices", kIndex, Kind::kAccessor},
    {"meshes[].primitives[].material", kIndex, Kind::kMaterial, kValue},
    {"meshes[].primitives[].mode", Shape::kCount},
    {"meshes[].primitives[].targets[]{}", kIndex, Kind::kAccessor},
    {"meshes[].weights", kNumbers},

    {"skins[].name", kString},
    {"skins[].joints!", Shape::kArray},
    {"skins[].joints[]", kIndex, Kind::kNode},
    {"skins[].skeleton", kIndex, Kind::kNode, kValue},
    {"skins[].inverseBindMatrices", kIndex, Kind::kAccessor},

    {"cameras[].name", kString},
    {"cameras[].type!", kString},
    {"cameras[].perspective.yfov!", kNumber},
    {"cameras[].perspective.znear!", kNumber},
    {"cameras[].perspective.zfar", kNumber},
    {"cameras[].perspective.aspectRatio", kNumber},
    {"cameras[].orthographic.xmag!", kNumber},
    {"cameras[].orthographic.ymag!", kNumber},
    {"cameras[].orthographic.znear!", kNumber},
    {"cameras[].orthographic.zfar!", kNumber},

    {"animations[].name", kString},
    {"animations[].channels[].sampler!", Shape::kCount},
    {"animations[].channels[].target!", kObject},
    {"animations[].channels[].target.node", kIndex, Kind::kNode, kChannel},
    {"animations[].channels[].target.path!", kString},
    {"animations[].samplers[].input!", kIndex, Kind::kAccessor},
    {"animations[].samplers[].output!", kIndex, Kind::kAccessor},
    {"animations[].samplers[].interpolation", kString},

    {"materials[].name", kString},
    {"materials[].pbrMetallicRoughness", kObject},
    {"materials[].pbrMetallicRoughness.baseColorFactor", kNumbers, Kind::kCount, kNothing, 4},
    {"materials[].emissiveFactor", kNumbers, Kind::kCount, kNothing, 3},
    {"materials[].alphaMode", kString},
    {"materials[].doubleSided", kBool},

    {"textures[].name", kString},
    {"textures[].source", kIndex, Kind::kImage},
    {"textures[].sampler", kIndex, Kind::kSampler, kValue},
    {"images[].name", kString},
    {"images[].uri", kString},
    {"images[].mimeType", kString},
    {"images[].bufferView", kIndex, Kind::kBufferView},
    {"samplers[].name", kString},

    {"accessors[].name", kString},
    {"accessors[].bufferView", kIndex, Kind::kBufferView},
    {"accessors[].byteOffset", Shape::kCount},
    {"accessors[].componentType!", Shape::kCount},
    {"accessors[].normalized", kBool},
    {"accessors[].count!", Shape::kCount},
    {"accessors[].type!", kString},
    {"accessors[].min", kNumbers},
    {"accessors[].max", kNumbers},
    {"accessors[].sparse.count!", Shape::kCount},
    {"accessors[].sparse.indices!", kObject},
    {"accessors[].sparse.indices.bufferView!", kIndex, Kind::kBufferView},
    {"accessors[].sparse.indices.byteOffset", Shape::kCount},
    {"accessors[].sparse.indices.componentType!", Shape::kCount},
    {"accessors[].sparse.values!", kObject},
    {"accessors[].sparse.values.bufferView!", kIndex, Kind::kBufferView},
    {"accessors[].sparse.values.byteOffset", Shape::kCount},

    {"bufferViews[].name", kString},
    {"bufferViews[].buffer!", kIndex, Kind::kBuffer},
    {"bufferViews[].byteOffset", Shape::kCount},
    {"bufferViews[].byteLength!", Shape::kCount},
    {"bufferViews[].byteStride", Shape::kCount},
    {"buffers[].name", kString},
    {"buffers[].uri", kString},
    {"buffers[].byteLength!", Shape::kCount},
};

}  // namespace

std::span<const Rule> CoreRules() {
    return kCoreRules;
}

}  // namespace zr::gltf
