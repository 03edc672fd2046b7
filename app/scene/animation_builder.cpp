// SPDX-License-Identifier: MIT
#include "app/scene/animation_builder.h"

#include "app/scene/curves.h"
#include "base/text.h"
#include "gltf/members.h"
#include "gltf/walk.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

int KeyTypeOf(std::string_view path) {
    if (path == "translation") return vl::zr::kKeyPosition;
    if (path == "rotation") return vl::zr::kKeyRotation;
    return path == "scale" ? vl::zr::kKeyScale : 0;
}

}  // namespace

AnimationBuilder::Goal AnimationBuilder::GoalOf(const Json& target) {
    const std::string_view path = target.Find("path")->String();
    if (path != "pointer") {
        // A channel without a node plays nothing.
        const std::size_t node = IndexMember(target, "node", kNone);
        return node != kNone ? Goal{node, path} : Goal{};
    }
    const Json* extension = gltf::FindExtension(target, "KHR_animation_pointer");
    if (extension == nullptr) return {};
    const std::string_view pointer = extension->Find("pointer")->String();
    const auto named = gltf::PointerTarget(pointer);
    if (named && named->kind == Kind::kNode) {
        const std::size_t end = named->textOffset + named->textSize;
        const std::string_view rest = end < pointer.size() ? pointer.substr(end + 1) : std::string_view();
        if (KeyTypeOf(rest) != 0 || rest == "weights") return {named->index, rest};
    }
    return {kNone, pointer};
}

void AnimationBuilder::NoteMotions() {
    const auto animations = m_document.Elements(Kind::kAnimation);
    for (std::size_t i = 0; i < animations.size(); ++i) {
        const Json* channels = animations[i].Find("channels");
        if (channels == nullptr) continue;
        for (const Json& channel : channels->Items()) {
            const Goal goal = GoalOf(*channel.Find("target"));
            if (goal.node == kNone) continue;
            const Json& sampler = animations[i].Find("samplers")->Items()[IndexMember(channel, "sampler")];
            const Json* interpolation = sampler.Find("interpolation");
            m_motions[goal.node] +=
                Join("moves ", i, " ", goal.path, " ", m_ids.Accessor(IndexMember(sampler, "input")), " ",
                     m_ids.Accessor(IndexMember(sampler, "output")), " ",
                     interpolation != nullptr ? interpolation->String() : std::string_view("LINEAR"), ";");
        }
    }
}

std::string AnimationBuilder::Motion(std::size_t node, std::size_t parent) {
    const auto above = m_movingAbove.find(parent);
    const std::size_t moving = above != m_movingAbove.end() ? above->second : kNone;
    const auto own = m_motions.find(node);
    if (own != m_motions.end()) {
        m_movingAbove[node] = node;
        // Equal curves mean equal motion only below the same parent.
        return Join("below ", parent, ";", own->second);
    }
    if (moving == kNone) return {};
    m_movingAbove[node] = moving;
    return Join("with ", moving, ";");
}

void AnimationBuilder::Build() {
    const auto animations = m_document.Elements(Kind::kAnimation);
    for (std::size_t i = 0; i < animations.size(); ++i) {
        const Json* channels = animations[i].Find("channels");
        if (channels == nullptr) continue;
        for (std::size_t k = 0; k < channels->Items().size(); ++k) {
            const Json& channel = channels->Items()[k];
            const Json& sampler = animations[i].Find("samplers")->Items()[IndexMember(channel, "sampler")];
            Goal goal = GoalOf(*channel.Find("target"));
            // When the whole document changes, the keys of a channel without a known target stay in time with
            // the rest.
            std::string place;
            if (goal.path.empty() && m_parts.layout.isWhole)
                goal = {kNone, place = Join("/animations/", i, "/channels/", k)};
            if (goal.path.empty()) continue;
            const bool isReadable = IsReadable(m_document, sampler);
            if (isReadable && Channel(i, k, sampler, goal)) continue;
            SkippedChannel skipped{i, k, isReadable ? Skipped::kNotShown : Skipped::kUnreadable, {}};
            if (KeyTypeOf(goal.path) != 0) skipped.node = goal.node;
            m_parts.skipped.push_back(skipped);
        }
    }
}

bool AnimationBuilder::Channel(std::size_t animation, std::size_t channel, const Json& sampler,
                               const Goal& goal) {
    kernix::AnimationModel* model = m_parts.animations[animation];
    kernix::NodeModel* node = goal.node != kNone ? m_parts.nodes[goal.node] : nullptr;
    if (goal.node != kNone && node == nullptr) return false;
    const int keyType = KeyTypeOf(goal.path);
    LoadedChannel loaded{animation, channel, nullptr, keyType};
    if (keyType != 0) {
        kernix::TransformControllerModel* controller = node->AddTransformController();
        kernix::TransformTrack* track = controller->AddTransformTrack(model);
        if (track->Count(keyType) == 0) {
            track->SetCurve(keyType, m_curves.Add(sampler));
        } else {
            m_parts.sharesTracks = true;
            PutKeys(*track, keyType, ReadCurve(m_document, sampler));
        }
        loaded.controller = controller;
    } else {
        kernix::SampledControllerModel* controller = SampledController(goal);
        if (controller == nullptr) return false;
        kernix::SampledTrack* track = controller->AddSampledTrack(model);
        if (track->GetKeyCount() != 0) m_parts.sharesTracks = true;
        track->SetCurve(m_curves.Add(sampler));
        loaded.controller = controller;
    }
    m_parts.channels.push_back(loaded);
    return true;
}

// The controller belongs to what it animates: a node for its weights, a material, or the first node that
// shows the camera, light or mesh. If nothing in the scene does: the first node of a whole document, all of
// whose animations play, else null.
kernix::SampledControllerModel* AnimationBuilder::SampledController(const Goal& goal) {
    const std::string target =
        goal.node != kNone ? Join("/nodes/", goal.node, "/weights") : std::string(goal.path);
    const auto known = m_sampled.find(target);
    if (known != m_sampled.end()) return known->second;
    kernix::SampledControllerModel*& made = m_sampled[target];
    if (goal.node != kNone) return made = m_parts.nodes[goal.node]->AddController(target);
    const auto named = gltf::PointerTarget(goal.path);
    if (named && named->kind == Kind::kMaterial && m_parts.materials[named->index] != nullptr)
        return made = m_parts.materials[named->index]->AddController(target);
    kernix::NodeModel* node = nullptr;
    if (named)
        node = named->kind == Kind::kNode ? m_parts.nodes[named->index]
                                          : FirstShowing(named->kind, named->index);
    const NodeLayout& layout = m_parts.layout;
    if (node == nullptr && layout.isWhole && !layout.order.empty()) node = m_parts.nodes[layout.order[0]];
    return made = node != nullptr ? node->AddController(target) : nullptr;
}

kernix::NodeModel* AnimationBuilder::FirstShowing(Kind kind, std::size_t index) {
    if (m_showing.empty()) {
        const auto nodes = m_document.Elements(Kind::kNode);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (m_parts.nodes[i] == nullptr) continue;
            const auto note = [&](Kind shown, const Json& holder, std::string_view name) {
                if (holder.Find(name) != nullptr)
                    m_showing.try_emplace({shown, IndexMember(holder, name)}, m_parts.nodes[i]);
            };
            note(Kind::kCamera, nodes[i], "camera");
            note(Kind::kMesh, nodes[i], "mesh");
            const Json* light = gltf::FindExtension(nodes[i], "KHR_lights_punctual");
            if (light != nullptr) note(Kind::kLight, *light, "light");
        }
    }
    const auto found = m_showing.find({kind, index});
    return found != m_showing.end() ? found->second : nullptr;
}

}  // namespace zr
