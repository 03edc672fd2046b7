// SPDX-License-Identifier: MIT
#include "app/scene/world_lengths.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "gltf/members.h"
#include "gltf/walk.h"

namespace zr {

using gltf::Json;
using gltf::Kind;

namespace {

struct Length {
    Kind kind;
    std::string_view holder;  // path from the element
    std::string_view name;
};

constexpr std::string_view kIntensity = "intensity";

constexpr Length kLengths[] = {
    {Kind::kCamera, "perspective", "znear"},
    {Kind::kCamera, "perspective", "zfar"},
    {Kind::kCamera, "orthographic", "xmag"},
    {Kind::kCamera, "orthographic", "ymag"},
    {Kind::kCamera, "orthographic", "znear"},
    {Kind::kCamera, "orthographic", "zfar"},
    {Kind::kLight, "", "range"},
    {Kind::kLight, "", kIntensity},
    {Kind::kMaterial, "extensions/KHR_materials_volume", "attenuationDistance"},
};

double FactorOf(const Length& length, const Json& element, double scale) {
    if (length.name != kIntensity) return scale;
    // A directional light does not fade with distance.
    return element.Find("type")->String() == "directional" ? 1 : scale * scale;
}

Json* HolderOf(Json& element, std::string_view path) {
    Json* at = &element;
    while (at != nullptr && !path.empty()) {
        const std::string_view step = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(path.size(), step.size() + 1));
        at = at->Find(step);
    }
    return at;
}

std::string PlaceOf(const Length& length, std::size_t index) {
    std::string place;
    for (const std::string_view step : gltf::Info(length.kind).Path()) place += Join("/", step);
    return Join(place, "/", index, length.holder.empty() ? "" : "/", length.holder, "/", length.name);
}

}  // namespace

void ScaleLengths(gltf::Document& document, double scale) {
    if (scale == 1) return;
    for (const Length& length : kLengths) {
        const auto elements = document.Elements(length.kind);
        for (std::size_t i = 0; i < elements.size(); ++i) {
            Json* holder = HolderOf(elements[i], length.holder);
            const double factor = FactorOf(length, elements[i], scale);
            if (holder == nullptr || factor == 1) continue;
            const Json* stated = holder->Find(length.name);
            if (stated == nullptr && length.name != kIntensity) continue;
            if (stated != nullptr && !stated->IsNumber()) continue;
            const auto scaled = static_cast<float>((stated != nullptr ? stated->Number() : 1) * factor);
            if (!std::isfinite(scaled))
                document.Fail(gltf::ErrorKind::kNumber, PlaceOf(length, i), "would be too large");
            document.Tree().Member(*holder, length.name) = document.Tree().MakeNumber(scaled);
        }
    }
}

double LengthFactor(const gltf::Document& document, std::string_view pointer, double scale) {
    const auto target = gltf::PointerTarget(pointer);
    if (!target || target->index >= document.Elements(target->kind).size()) return 1;
    for (const Length& length : kLengths)
        if (length.kind == target->kind && pointer == PlaceOf(length, target->index))
            return FactorOf(length, document.Elements(length.kind)[target->index], scale);
    return 1;
}

double LengthFactor(const gltf::Document& document, const Json& channel, double scale) {
    const Json* driven = gltf::FindExtension(*channel.Find("target"), "KHR_animation_pointer");
    return driven != nullptr ? LengthFactor(document, driven->Find("pointer")->String(), scale) : 1;
}

}  // namespace zr
