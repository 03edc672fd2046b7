// SPDX-License-Identifier: MIT
#include "gltf/schema.h"

namespace zr::gltf {
namespace {

using enum Shape;
using enum Cut;

#define ZR_NODE "nodes[].extensions."
#define ZR_PRIMITIVE "meshes[].primitives[].extensions."
#define ZR_TEXTURE "textures[].extensions."
#define ZR_VIEW "bufferViews[].extensions."
#define ZR_BODY ZR_NODE "KHR_physics_rigid_bodies."

// Texture infos of materials ("...Texture": {"index": n}) need no rule: the walk recognises them by their
// form.
constexpr Rule kExtensionRules[] = {
    {"extensions.KHR_lights_punctual.lights", Shape::kArray},
    {"extensions.KHR_lights_punctual.lights[].name", kString},
    {"extensions.KHR_lights_punctual.lights[].type!", kString},
    {"extensions.KHR_lights_punctual.lights[].color", kNumbers, Kind::kCount, kNothing, 3},
    {"extensions.KHR_lights_punctual.lights[].intensity", kNumber},
    {"extensions.KHR_lights_punctual.lights[].range", kNumber},
    {ZR_NODE "KHR_lights_punctual.light!", kIndex, Kind::kLight, kHolder},

    {"extensions.KHR_materials_variants.variants[].name", kString},
    {ZR_PRIMITIVE "KHR_materials_variants.mappings[].material!", kIndex, Kind::kMaterial, kHolder},
    {ZR_PRIMITIVE "KHR_materials_variants.mappings[].variants[]", kIndex, Kind::kVariant, kValue},

    {"animations[].channels[].target.extensions.KHR_animation_pointer.pointer!", kPointer, Kind::kCount,
     kChannel},

    {ZR_NODE "EXT_mesh_gpu_instancing.attributes{}", kIndex, Kind::kAccessor},
    {ZR_NODE "MSFT_lod.ids[]", kIndex, Kind::kNode, kValue},
    {"materials[].extensions.MSFT_lod.ids[]", kIndex, Kind::kMaterial, kValue},

    {ZR_TEXTURE "KHR_texture_basisu.source", kIndex, Kind::kImage, kHolder},
    {ZR_TEXTURE "EXT_texture_webp.source", kIndex, Kind::kImage, kHolder},
    {ZR_TEXTURE "EXT_texture_avif.source", kIndex, Kind::kImage, kHolder},
    {ZR_TEXTURE "MSFT_texture_dds.source", kIndex, Kind::kImage, kHolder},

    {ZR_PRIMITIVE "KHR_draco_mesh_compression.bufferView!", kIndex, Kind::kBufferView},
    {ZR_PRIMITIVE "CESIUM_primitive_outline.indices", kIndex, Kind::kAccessor},
    {ZR_VIEW "EXT_meshopt_compression.buffer!", kIndex, Kind::kBuffer},
    {ZR_VIEW "EXT_meshopt_compression.byteOffset", Shape::kCount},
    {ZR_VIEW "EXT_meshopt_compression.byteLength!", Shape::kCount},
    {ZR_VIEW "KHR_meshopt_compression.buffer!", kIndex, Kind::kBuffer},
    {ZR_VIEW "KHR_meshopt_compression.byteOffset", Shape::kCount},
    {ZR_VIEW "KHR_meshopt_compression.byteLength!", Shape::kCount},

    {"extensions.EXT_lights_image_based.lights[].specularImages[][]", kIndex, Kind::kImage},
    {"extensions.EXT_lights_ies.lights[].bufferView", kIndex, Kind::kBufferView},
    {"extensions.KHR_audio_emitter.audio[].bufferView", kIndex, Kind::kBufferView},
    {"extensions.MSFT_audio_emitter.clips[].bufferView", kIndex, Kind::kBufferView},

    {"extensions.EXT_structural_metadata.propertyTables[].properties{}.values", kIndex, Kind::kBufferView},
    {"extensions.EXT_structural_metadata.propertyTables[].properties{}.arrayOffsets", kIndex,
     Kind::kBufferView},
    {"extensions.EXT_structural_metadata.propertyTables[].properties{}.stringOffsets", kIndex,
     Kind::kBufferView},
    {"extensions.EXT_structural_metadata.propertyTextures[].properties{}.index", kIndex, Kind::kTexture},
    {ZR_PRIMITIVE "EXT_mesh_features.featureIds[].texture.index", kIndex, Kind::kTexture},

    {ZR_BODY "collider.geometry.mesh", kIndex, Kind::kMesh},
    {ZR_BODY "collider.geometry.node", kIndex, Kind::kNode},
    {ZR_BODY "trigger.geometry.mesh", kIndex, Kind::kMesh},
    {ZR_BODY "trigger.geometry.node", kIndex, Kind::kNode},
    {ZR_BODY "trigger.nodes[]", kIndex, Kind::kNode},
    {ZR_BODY "joint.connectedNode", kIndex, Kind::kNode},

    {"extensions.ZR_scene.layers[].name", kString},
    {"extensions.ZR_scene.layers[].nodes[]", kIndex, Kind::kNode, kValue},
    {"extensions.ZR_scene.viewports[].name", kString},
    {"extensions.ZR_scene.viewports[].kind!", Shape::kCount},
    {"extensions.ZR_scene.viewports[].layer", Shape::kCount},
    {"extensions.ZR_scene.viewports[].animations[]", kIndex, Kind::kAnimation, kValue},
    {ZR_NODE "ZR_scene.target", kIndex, Kind::kNode, kValue},
    {ZR_NODE "ZR_scene.note", kBool},
    {ZR_NODE "ZR_scene.selector", kBool},
    {ZR_NODE "ZR_scene.selected", kIndex, Kind::kNode, kValue},
    {ZR_NODE "ZR_scene.pivot", kNumbers, Kind::kCount, kNothing, 3},
    {ZR_NODE "ZR_scene.pivotGroup", kBool},
    {ZR_NODE "ZR_scene.objectOffset", kNumbers, Kind::kCount, kNothing, 16},
};

constexpr std::string_view kKnown[] = {
    "AGI_articulations",
    "AGI_stk_metadata",
    "CESIUM_primitive_outline",
    "EXT_instance_features",
    "EXT_lights_ies",
    "EXT_lights_image_based",
    "EXT_mesh_features",
    "EXT_mesh_gpu_instancing",
    "EXT_meshopt_compression",
    "EXT_structural_metadata",
    "EXT_texture_avif",
    "EXT_texture_webp",
    "FB_ngon_encoding",
    "KHR_animation_pointer",
    "KHR_audio_emitter",
    "KHR_draco_mesh_compression",
    "KHR_implicit_shapes",
    "KHR_interactivity",
    "KHR_lights_punctual",
    "KHR_materials_anisotropy",
    "KHR_materials_clearcoat",
    "KHR_materials_diffuse_transmission",
    "KHR_materials_dispersion",
    "KHR_materials_emissive_strength",
    "KHR_materials_ior",
    "KHR_materials_iridescence",
    "KHR_materials_pbrSpecularGlossiness",
    "KHR_materials_sheen",
    "KHR_materials_specular",
    "KHR_materials_transmission",
    "KHR_materials_unlit",
    "KHR_materials_variants",
    "KHR_materials_volume",
    "KHR_mesh_quantization",
    "KHR_meshopt_compression",
    "KHR_node_hoverability",
    "KHR_node_selectability",
    "KHR_node_visibility",
    "KHR_physics_rigid_bodies",
    "KHR_texture_basisu",
    "KHR_texture_transform",
    "KHR_xmp",
    "KHR_xmp_json_ld",
    "MSFT_audio_emitter",
    "MSFT_lod",
    "MSFT_texture_dds",
    "ZR_scene",
};

}  // namespace

std::span<const Rule> ExtensionRules() {
    return kExtensionRules;
}

std::span<const std::string_view> KnownExtensions() {
    return kKnown;
}

}  // namespace zr::gltf
