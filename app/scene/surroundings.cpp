// SPDX-License-Identifier: MIT
#include "app/scene/surroundings.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"

namespace zr {

using gltf::Json;
using gltf::Kind;

namespace {

// Extensions of a node that concern the node alone.
constexpr std::string_view kOwnExtensions[] = {
    "EXT_instance_features", "EXT_lights_ies",      "EXT_mesh_gpu_instancing",
    "KHR_audio_emitter",     "KHR_lights_punctual", "KHR_xmp",
    "KHR_xmp_json_ld",       "MSFT_audio_emitter",  "ZR_scene",
};

const gltf::JsonMember* SharedExtension(const Json* extensions) {
    if (extensions == nullptr) return nullptr;
    const auto members = extensions->Members();
    const auto found = std::find_if(members.begin(), members.end(), [](const gltf::JsonMember& member) {
        return std::find(std::begin(kOwnExtensions), std::end(kOwnExtensions), member.Name()) ==
               std::end(kOwnExtensions);
    });
    return found != members.end() ? &*found : nullptr;
}

bool IsSelector(const Json* extensions) {
    const Json* scene = extensions != nullptr ? extensions->Find("ZR_scene") : nullptr;
    const Json* selector = scene != nullptr ? scene->Find("selector") : nullptr;
    return selector != nullptr && selector->Bool();
}

// Whether the reference is part of the node hierarchy, of a skin, or of a channel, which is compared as
// motion.
bool IsPlacement(const gltf::Reference& reference) {
    if (!reference.owner) return false;
    const auto steps = reference.place.Steps();
    const std::string_view member = steps[3].member;  // below the root, the collection and the element
    switch (reference.owner->kind) {
        case Kind::kNode:
            return member == "children";
        case Kind::kScene:
            return member == "nodes";
        case Kind::kSkin:
            return member == "joints" || member == "skeleton";
        case Kind::kAnimation:
            return steps.back().member == "node";
        default:
            return false;
    }
}

bool IsOurs(const gltf::Place& place) {
    const auto steps = place.Steps();
    return std::any_of(steps.begin(), steps.end(),
                       [](const gltf::Place::Step& step) { return step.member == "ZR_scene"; });
}

}  // namespace

Surroundings::Surroundings(const gltf::Document& document)
    : m_document(document),
      m_below(document.Elements(Kind::kNode).size(), kNone),
      m_isSelector(m_below.size(), false) {}

void Surroundings::Note(const gltf::Reference& reference) {
    if (reference.target.kind != Kind::kNode) return;
    if (IsPlacement(reference) || IsOurs(reference.place)) return;
    m_named.try_emplace(reference.target.index, reference.place.Pointer());
}

std::size_t Surroundings::Enter(std::size_t node, std::size_t parent, const Json* extensions) {
    std::size_t apart = kNone;
    if (parent != kNone) apart = m_isSelector[parent] ? node : m_below[parent];
    m_isSelector[node] = IsSelector(extensions);
    const bool sets =
        SharedExtension(extensions) != nullptr || (!m_named.empty() && m_named.count(node) != 0);
    m_below[node] = sets ? node : apart;
    return apart;
}

std::string Surroundings::PlaceOf(std::size_t node) const {
    const gltf::JsonMember* extension =
        SharedExtension(m_document.Elements(Kind::kNode)[node].Find("extensions"));
    if (extension != nullptr) return Join("/nodes/", node, "/extensions/", extension->Name());
    const auto named = m_named.find(node);
    return named != m_named.end() ? named->second : Join("/nodes/", node);
}

}  // namespace zr
