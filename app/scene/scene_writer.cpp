// SPDX-License-Identifier: MIT
#include "app/scene/scene_writer.h"

#include <algorithm>
#include <unordered_set>

#include "app/scene/refuse_opaque.h"
#include "base/text.h"
#include "host/array.h"
#include "host/interface_array.h"
#include "host/var.h"
#include "kernix/utf.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::JsonTree;
using gltf::Kind;

namespace {

template <typename T>
std::unordered_set<const T*> Listed(vl::Array* array) {
    std::unordered_set<const T*> listed;
    for (T* element : vl::ArrayOf<T*>(array)) listed.insert(element);
    return listed;
}

// The keys of a controller's track for an animation; no keys when it has none.
Curve CurveOf(vl::zr::Controller& controller, vl::zr::Animation* animation, int keyType) {
    vl::zr::Track* track = controller.GetTrack(animation);
    if (track == nullptr) return {};
    if (keyType != 0) return TakeKeys(*static_cast<kernix::TransformTrack*>(track), keyType);
    const auto& sampled = *static_cast<kernix::SampledTrack*>(track);
    return {sampled.m_interpolation, sampled.m_times, sampled.m_values};
}

std::string_view ChannelPath(int keyType) {
    if (keyType == vl::zr::kKeyPosition) return "translation";
    return keyType == vl::zr::kKeyRotation ? "rotation" : "scale";
}

std::string_view TypeOf(int keyType) {
    return keyType == vl::zr::kKeyRotation ? "VEC4" : "VEC3";
}

}  // namespace

SceneWriter::SceneWriter(LoadedScene& loaded)
    : m_loaded(loaded), m_document(loaded.m_document), m_tree(loaded.m_document.Tree()) {}

void SceneWriter::Run() {
    Materials();
    Nodes();
    Animations();
    Channels();
    NewChannels();
    DropEmptyAnimations();
    Layers();
    Viewports();
    if (!m_loaded.m_force) RefuseOpaque(m_document, KindsOf(m_removal));
    gltf::RemoveElements(m_document, m_removal);
}

bool SceneWriter::Goes(Kind kind, std::size_t index) const {
    const auto& gone = m_removal[gltf::Ordinal(kind)];
    return index < gone.size() && gone[index];
}

void SceneWriter::Remove(Kind kind, std::size_t index) {
    auto& gone = m_removal[gltf::Ordinal(kind)];
    if (gone.size() <= index) gone.resize(index + 1, false);
    gone[index] = true;
}

void SceneWriter::Materials() {
    const auto& models = m_loaded.m_materials;
    const auto listed = Listed<vl::zr::Material>(m_loaded.m_scene->m_pMaterials);
    std::unordered_map<const kernix::MaterialModel*, std::size_t> indices;
    for (std::size_t i = 0; i < models.size(); ++i)
        if (models[i] != nullptr) indices[models[i]] = i;
    std::vector<std::size_t> becomes(models.size());
    bool merged = false;
    for (std::size_t i = 0; i < models.size(); ++i) {
        becomes[i] = i;
        if (models[i] == nullptr || listed.count(models[i]) != 0) continue;
        Remove(Kind::kMaterial, i);
        const kernix::MaterialModel* into = m_loaded.m_scene->MergedInto(models[i]);
        if (into == models[i]) continue;
        becomes[i] = indices.at(into);
        merged = true;
    }
    if (!merged) return;
    gltf::ForEachReference(m_document, [&](const gltf::Reference& reference) {
        const gltf::Target& target = reference.target;
        if (target.kind != Kind::kMaterial || target.textSize != 0 || becomes[target.index] == target.index)
            return;
        reference.value = m_tree.MakeIndex(becomes[target.index]);
    });
}

void SceneWriter::Nodes() {
    for (std::size_t i = 0; i < m_loaded.m_nodes.size(); ++i)
        if (m_loaded.m_nodes[i] != nullptr && m_loaded.m_nodes[i]->IsDeleted()) Remove(Kind::kNode, i);
    for (std::size_t i : m_loaded.m_extrasNodes) {
        vl::VarMap* map = m_loaded.m_nodes[i]->GetMetadata(false);
        if (map == nullptr || map->GetCount() == 0) m_document.Elements(Kind::kNode)[i].EraseMember("extras");
    }
}

void SceneWriter::Animations() {
    const auto listed = Listed<vl::zr::Animation>(m_loaded.m_scene->m_pAnimations);
    for (std::size_t i = 0; i < m_loaded.m_animations.size(); ++i) {
        if (listed.count(m_loaded.m_animations[i]) != 0)
            m_animationIndex[m_loaded.m_animations[i]] = i;
        else
            Remove(Kind::kAnimation, i);
    }
    m_changed.resize(m_loaded.m_animations.size(), false);
}

std::optional<std::size_t> SceneWriter::AnimationFor(kernix::AnimationModel* model) {
    const auto known = m_animationIndex.find(model);
    if (known != m_animationIndex.end()) return known->second;
    if (vl::ArrayOf<vl::zr::Animation*>(m_loaded.m_scene->m_pAnimations).IndexOf(model) < 0)
        return std::nullopt;
    Json animation = JsonTree::MakeObject();
    if (!model->m_name.empty())
        m_tree.Member(animation, "name") = m_tree.MakeString(kernix::ToUtf8(model->m_name));
    m_tree.Member(animation, "channels") = JsonTree::MakeArray();
    m_tree.Member(animation, "samplers") = JsonTree::MakeArray();
    const std::size_t index = m_document.Append(Kind::kAnimation, animation);
    m_changed.push_back(true);
    return m_animationIndex[model] = index;
}

// Channels the document has: left alone where their keys are as they were.
void SceneWriter::Channels() {
    std::vector<std::vector<std::size_t>> gone(m_loaded.m_animations.size());
    for (const LoadedChannel& loaded : m_loaded.m_channels) {
        vl::zr::Controller& controller = *loaded.controller;
        kernix::AnimationModel* model = m_loaded.m_animations[loaded.animation];
        const auto sampler = [&]() -> const Json& {
            const Json& animation = m_document.Elements(Kind::kAnimation)[loaded.animation];
            const Json& channel = animation.Find("channels")->Items()[loaded.channel];
            return animation.Find("samplers")->Items()[IndexMember(channel, "sampler")];
        };
        const std::size_t output = IndexMember(sampler(), "output");
        const std::string type(m_document.Elements(Kind::kAccessor)[output].Find("type")->String());
        if (loaded.keyType == 0) m_types[&controller] = type;
        m_written[{{&controller, model}, loaded.keyType}] = true;
        if (Goes(Kind::kAnimation, loaded.animation)) continue;
        const Curve now = CurveOf(controller, model, loaded.keyType);
        if (now == ReadCurve(m_document, sampler())) continue;
        m_changed[loaded.animation] = true;
        if (now.times.empty()) {
            gone[loaded.animation].push_back(loaded.channel);
            continue;
        }
        const std::size_t added = AppendCurve(m_document, loaded.animation, now, type);
        Json& animation = m_document.Elements(Kind::kAnimation)[loaded.animation];
        m_tree.Member(animation.Find("channels")->Items()[loaded.channel], "sampler") =
            m_tree.MakeIndex(added);
    }
    for (std::size_t i = 0; i < gone.size(); ++i) {
        if (gone[i].empty()) continue;
        std::sort(gone[i].begin(), gone[i].end());
        std::size_t at = 0;
        m_document.Elements(Kind::kAnimation)[i].Find("channels")->FilterItems([&](const Json&) {
            return !std::binary_search(gone[i].begin(), gone[i].end(), at++);
        });
    }
}

void SceneWriter::NewChannels() {
    for (const auto& node : m_loaded.m_scene->AllNodes()) {
        if (node->IsDeleted()) continue;
        if (node->m_source >= 0) TransformChannels(*node);
        for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(node->m_pControllers))
            if (dynamic_cast<kernix::SampledControllerModel*>(controller) != nullptr)
                SampledChannels(*controller);
    }
    for (const auto& material : m_loaded.m_scene->AllMaterials())
        for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(material->m_pControllers))
            SampledChannels(*controller);
}

void SceneWriter::TransformChannels(kernix::NodeModel& node) {
    vl::zr::Controller* controller = node.GetController(vl::zr::kControllerTransform);
    if (controller == nullptr) return;
    for (vl::zr::Track* track : vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks)) {
        for (int keyType : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale}) {
            Json target = JsonTree::MakeObject();
            m_tree.Member(target, "node") = m_tree.MakeIndex(static_cast<std::size_t>(node.m_source));
            m_tree.Member(target, "path") = m_tree.MakeString(ChannelPath(keyType));
            NewChannel(*controller, *track, keyType, target, TypeOf(keyType));
        }
    }
}

void SceneWriter::SampledChannels(vl::zr::Controller& controller) {
    const std::string& pointer = static_cast<kernix::SampledControllerModel&>(controller).GetTarget();
    for (vl::zr::Track* track : vl::ArrayOf<vl::zr::Track*>(controller.m_pTracks)) {
        Json target = JsonTree::MakeObject();
        const auto named = gltf::PointerTarget(pointer);
        if (named && named->kind == Kind::kNode && pointer.ends_with("/weights")) {
            m_tree.Member(target, "node") = m_tree.MakeIndex(named->index);
            m_tree.Member(target, "path") = m_tree.MakeString("weights");
        } else {
            Json content = JsonTree::MakeObject(), extensions = JsonTree::MakeObject();
            m_tree.Member(content, "pointer") = m_tree.MakeString(pointer);
            m_tree.Member(extensions, "KHR_animation_pointer") = content;
            m_tree.Member(target, "path") = m_tree.MakeString("pointer");
            m_tree.Member(target, "extensions") = extensions;
        }
        const auto type = m_types.find(&controller);
        NewChannel(controller, *track, 0, target, type != m_types.end() ? type->second : "SCALAR");
    }
}

void SceneWriter::NewChannel(vl::zr::Controller& controller, vl::zr::Track& track, int keyType,
                             const Json& target, std::string_view type) {
    kernix::AnimationModel* model = track.GetAnimation();
    if (m_written.count({{&controller, model}, keyType}) != 0) return;
    const Curve curve = CurveOf(controller, model, keyType);
    if (curve.times.empty()) return;
    const auto animation = AnimationFor(model);
    if (!animation) return;
    m_changed[*animation] = true;
    const std::size_t sampler = AppendCurve(m_document, *animation, curve, type);
    Json channel = JsonTree::MakeObject();
    m_tree.Member(channel, "sampler") = m_tree.MakeIndex(sampler);
    m_tree.Member(channel, "target") = target;
    m_tree.Append(m_tree.Member(m_document.Elements(Kind::kAnimation)[*animation], "channels"), channel);
    if (target.Find("extensions") != nullptr) m_document.UseExtension("KHR_animation_pointer", false);
}

void SceneWriter::DropEmptyAnimations() {
    const auto animations = m_document.Elements(Kind::kAnimation);
    for (std::size_t i = 0; i < animations.size(); ++i) {
        const Json* channels = animations[i].Find("channels");
        if (m_changed[i] && (channels == nullptr || channels->Items().empty())) Remove(Kind::kAnimation, i);
    }
}

void SceneWriter::Layers() {
    if (m_loaded.m_layers.empty()) return;
    std::unordered_set<const vl::Interface*> listed;
    vl::InterfaceArray* list = m_loaded.m_scene->m_pLayers;
    for (unsigned i = 0; list != nullptr && i < list->GetCount(); ++i) listed.insert(list->GetAt(i));
    Json& extension = *m_document.Root().Find("extensions")->Find("ZR_scene");
    std::vector<std::size_t> renumbered(m_loaded.m_layers.size());
    std::size_t next = 0, at = 0;
    for (std::size_t i = 0; i < renumbered.size(); ++i)
        renumbered[i] = listed.count(m_loaded.m_layers[i]) != 0 ? next++ : 0;
    if (next == renumbered.size()) return;
    extension.Find("layers")->FilterItems(
        [&](const Json&) { return listed.count(m_loaded.m_layers[at++]) != 0; });
    if (next == 0) extension.EraseMember("layers");
    Json* viewports = extension.Find("viewports");
    for (Json& viewport : viewports != nullptr ? viewports->Items() : std::span<Json>()) {
        const std::size_t layer = IndexMember(viewport, "layer", renumbered.size());
        if (layer >= renumbered.size()) continue;
        if (listed.count(m_loaded.m_layers[layer]) != 0)
            m_tree.Member(viewport, "layer") = m_tree.MakeIndex(renumbered[layer]);
        else
            viewport.EraseMember("layer");
    }
}

void SceneWriter::Viewports() {
    if (m_loaded.m_viewports.empty()) return;
    std::unordered_set<const kernix::ViewportModel*> listed;
    for (const auto& viewport : m_loaded.m_scene->Viewports()) listed.insert(viewport.Get());
    Json& extensions = *m_document.Root().Find("extensions");
    Json& extension = *extensions.Find("ZR_scene");
    Json& viewports = *extension.Find("viewports");
    for (std::size_t i = 0; i < m_loaded.m_viewports.size(); ++i) {
        Json played = JsonTree::MakeArray();
        for (auto* reference :
             vl::ArrayOf<vl::zr::AnimationReference*>(m_loaded.m_viewports[i]->m_pAnimationReferences)) {
            const auto known = m_animationIndex.find(reference->pAnimation);
            if (known != m_animationIndex.end()) m_tree.Append(played, m_tree.MakeIndex(known->second));
        }
        Json& json = viewports.Items()[i];
        if (played.Items().empty())
            json.EraseMember("animations");
        else
            m_tree.Member(json, "animations") = played;
    }
    // A document that lists no viewports would play everything, so one that lost them all keeps the empty
    // list.
    std::size_t at = 0;
    viewports.FilterItems([&](const Json&) { return listed.count(m_loaded.m_viewports[at++]) != 0; });
}

}  // namespace zr
