// SPDX-License-Identifier: MIT
#include "app/operations/animations/rest_value.h"

#include "gltf/pointer.h"

namespace zr {
namespace {

using gltf::Json;

std::vector<float> NumbersOf(const Json& json) {
    const auto number = [](const Json& each) {
        return each.IsBool() ? static_cast<float>(each.Bool()) : static_cast<float>(each.Number());
    };
    std::vector<float> values;
    if (json.IsArray()) {
        for (const Json& item : json.Items()) values.push_back(number(item));
    } else if (json.IsNumber() || json.IsBool()) {
        values.push_back(number(json));
    }
    return values;
}

// A node without weights uses those of its mesh; a mesh without weights uses zeros.
std::vector<float> DefaultWeights(const gltf::Document& document, std::string_view pointer,
                                  std::size_t width) {
    const Json* holder = gltf::AtPointer(document.Root(), pointer.substr(0, pointer.rfind('/')));
    const Json* mesh = holder != nullptr ? holder->Find("mesh") : nullptr;
    const auto meshes = document.Root().Find("meshes");
    if (mesh != nullptr && meshes != nullptr) {
        const auto index = static_cast<std::size_t>(mesh->Number());
        const Json* weights =
            index < meshes->Items().size() ? meshes->Items()[index].Find("weights") : nullptr;
        if (weights != nullptr) return NumbersOf(*weights);
    }
    return std::vector<float>(width, 0.0F);
}

struct Default {
    std::string_view ending;  // of the pointer
    std::vector<float> value;
};

const std::vector<float>* KnownDefault(std::string_view pointer) {
    static const std::vector<Default> kDefaults = {
        {"/baseColorFactor", {1, 1, 1, 1}},
        {"/metallicFactor", {1}},
        {"/roughnessFactor", {1}},
        {"/emissiveFactor", {0, 0, 0}},
        {"/emissiveStrength", {1}},
        {"/alphaCutoff", {0.5F}},
        {"/normalTexture/scale", {1}},
        {"/occlusionTexture/strength", {1}},
        {"/KHR_texture_transform/offset", {0, 0}},
        {"/KHR_texture_transform/rotation", {0}},
        {"/KHR_texture_transform/scale", {1, 1}},
        {"/KHR_node_visibility/visible", {1}},
        {"/color", {1, 1, 1}},
        {"/intensity", {1}},
        {"/spot/innerConeAngle", {0}},
        {"/spot/outerConeAngle", {0.78539816F}},
        {"/ior", {1.5F}},
        {"/transmissionFactor", {0}},
        {"/clearcoatFactor", {0}},
        {"/clearcoatRoughnessFactor", {0}},
    };
    for (const Default& known : kDefaults) {
        if (pointer.ends_with(known.ending)) return &known.value;
    }
    return nullptr;
}

}  // namespace

std::optional<std::vector<float>> RestValue(const gltf::Document& document, std::string_view pointer,
                                            std::size_t width) {
    std::vector<float> values;
    if (const Json* json = gltf::AtPointer(document.Root(), pointer)) {
        values = NumbersOf(*json);
    } else if (pointer.ends_with("/weights")) {
        values = DefaultWeights(document, pointer, width);
    } else if (const std::vector<float>* known = KnownDefault(pointer)) {
        values = *known;
    }
    if (width == 0 || values.size() != width) return std::nullopt;
    return values;
}

}  // namespace zr
