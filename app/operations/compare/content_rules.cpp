// SPDX-License-Identifier: MIT
#include "app/operations/compare/content_rules.h"

#include <algorithm>

#include "base/text.h"

namespace zr::compare {

using gltf::Json;
using gltf::Kind;
using gltf::SchemaNode;

namespace {

// Default values of missing members in the format. Names with several meanings have several lines.
struct Default {
    std::string_view name;
    std::string_view text;
};
constexpr Default kDefaults[] = {
    {"doubleSided", "false"},
    {"alphaMode", "\"OPAQUE\""},
    {"alphaCutoff", "0.5"},
    {"baseColorFactor", "[1,1,1,1]"},
    {"metallicFactor", "1"},
    {"roughnessFactor", "1"},
    {"emissiveFactor", "[0,0,0]"},
    {"texCoord", "0"},
    {"strength", "1"},
    {"scale", "1"},
    {"scale", "[1,1]"},
    {"offset", "[0,0]"},
    {"rotation", "0"},
    {"wrapS", "10497"},
    {"wrapT", "10497"},
    {"intensity", "1"},
    {"color", "[1,1,1]"},
    {"innerConeAngle", "0"},
    {"outerConeAngle", "0.785398185"},
    {"visible", "true"},
    {"selectable", "true"},
    {"emissiveStrength", "1"},
    {"ior", "1.5"},
    {"transmissionFactor", "0"},
    {"pbrMetallicRoughness", "{}"},
    {"extras", "{}"},
    {"extensions", "{}"},
};

void WriteNumber(double number, std::string& text) {
    text += Short(static_cast<double>(static_cast<float>(number)), 9);
}

}  // namespace

const SchemaNode* SchemaOf(Kind kind) {
    const SchemaNode* schema = &gltf::Schema();
    for (std::string_view name : gltf::Info(kind).Path())
        if (schema != nullptr) schema = schema->Find(name);
    return schema != nullptr ? schema->item.get() : nullptr;
}

const SchemaNode* Below(const SchemaNode* schema, std::string_view parent, std::string_view name) {
    const SchemaNode* below = schema != nullptr ? schema->Find(name) : nullptr;
    return below == nullptr && parent == "extensions" ? gltf::AnywhereSchema(name) : below;
}

bool IsOwn(Kind kind) {
    return kind == Kind::kScene || kind == Kind::kNode || kind == Kind::kMesh || kind == Kind::kMaterial ||
           kind == Kind::kAnimation || kind == Kind::kVariant;
}

void WritePlain(const Json& json, std::string& text) {
    if (json.IsNumber()) return WriteNumber(json.Number(), text);
    if (!json.IsArray() || !std::all_of(json.Items().begin(), json.Items().end(),
                                        [](const Json& item) { return item.IsNumber(); })) {
        text += gltf::WriteJson(json, false);
        return;
    }
    text += '[';
    for (const Json& item : json.Items()) {
        if (text.back() != '[') text += ',';
        WriteNumber(item.Number(), text);
    }
    text += ']';
}

bool IsDefault(std::string_view name, std::string_view text) {
    return std::any_of(std::begin(kDefaults), std::end(kDefaults),
                       [&](const Default& known) { return known.name == name && known.text == text; });
}

bool IsPlainDefault(std::string_view name, const Json& json) {
    std::string text;
    WritePlain(json, text);
    return IsDefault(name, text);
}

}  // namespace zr::compare
