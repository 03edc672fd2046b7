// SPDX-License-Identifier: MIT
#include "app/scene/scene_changes.h"

#include <algorithm>
#include <unordered_set>

#include "gltf/walk.h"
#include "host/array.h"
#include "host/interface_array.h"
#include "host/var.h"
#include "kernix/utf.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

template <typename T>
std::unordered_set<const T*> Listed(vl::Array* array) {
    std::unordered_set<const T*> listed;
    for (T* element : vl::ArrayOf<T*>(array)) listed.insert(element);
    return listed;
}

std::string_view PathOf(int keyType) {
    if (keyType == vl::zr::kKeyPosition) return "translation";
    return keyType == vl::zr::kKeyRotation ? "rotation" : "scale";
}

std::string_view TypeOf(int keyType) {
    return keyType == vl::zr::kKeyRotation ? "VEC4" : "VEC3";
}

std::size_t KeyTypeIndex(int keyType) {
    return static_cast<std::size_t>(std::find(std::begin(kKeyTypes), std::end(kKeyTypes), keyType) -
                                    std::begin(kKeyTypes));
}

class SceneComparison {
public:
    SceneComparison(const LoadedScene& loaded, ReplacedKeys replaced, std::vector<AddedKeys> added)
        : m_loaded(loaded),
          m_document(loaded.Document()),
          m_parts(loaded.Parts()),
          m_replaced(std::move(replaced)) {
        for (AddedKeys& keys : added) {
            auto& ofNode = m_added[keys.node];
            if (ofNode.empty() && keys.node >= m_parts.nodes.size()) m_newNodes.push_back(keys.node);
            ofNode.push_back(std::move(keys));
        }
    }

    DocumentChanges Run() && {
        Materials();
        Nodes();
        Animations();
        Channels();
        NewChannels();
        Layers();
        Viewports();
        m_changes.force = m_parts.force;
        return std::move(m_changes);
    }

private:
    void Remove(Kind kind, std::size_t index) {
        auto& gone = m_changes.removal[gltf::Ordinal(kind)];
        if (gone.size() <= index) gone.resize(index + 1, false);
        gone[index] = true;
    }
    bool Goes(Kind kind, std::size_t index) const {
        const auto& gone = m_changes.removal[gltf::Ordinal(kind)];
        return index < gone.size() && gone[index];
    }

    void Materials() {
        const auto& models = m_parts.materials;
        const auto listed = Listed<vl::zr::Material>(m_parts.scene->m_pMaterials);
        std::unordered_map<const kernix::MaterialModel*, std::size_t> indices;
        for (std::size_t i = 0; i < models.size(); ++i)
            if (models[i] != nullptr) indices[models[i]] = i;
        std::vector<std::size_t> becomes(models.size());
        bool merged = false;
        for (std::size_t i = 0; i < models.size(); ++i) {
            becomes[i] = i;
            if (models[i] == nullptr || listed.count(models[i]) != 0) continue;
            Remove(Kind::kMaterial, i);
            const kernix::MaterialModel* into = m_parts.scene->MergedInto(models[i]);
            if (into == models[i]) continue;
            becomes[i] = indices.at(into);
            merged = true;
        }
        if (merged) m_changes.mergedMaterials = std::move(becomes);
    }

    void Nodes() {
        for (std::size_t i = 0; i < m_parts.nodes.size(); ++i)
            if (m_parts.nodes[i] != nullptr && m_parts.nodes[i]->IsDeleted()) Remove(Kind::kNode, i);
        for (const std::size_t i : m_parts.extrasNodes) {
            vl::VarMap* map = m_parts.nodes[i]->GetMetadata(false);
            if (map == nullptr || map->GetCount() == 0) m_changes.droppedExtras.push_back(i);
        }
    }

    void Animations() {
        const auto listed = Listed<vl::zr::Animation>(m_parts.scene->m_pAnimations);
        for (std::size_t i = 0; i < m_parts.animations.size(); ++i) {
            if (listed.count(m_parts.animations[i]) != 0)
                m_indices[m_parts.animations[i]] = i;
            else
                Remove(Kind::kAnimation, i);
        }
    }

    // The document's animation for a model, created if new; nothing for one that the scene does not contain.
    std::optional<std::size_t> AnimationFor(const kernix::AnimationModel* model) {
        const auto known = m_indices.find(model);
        if (known != m_indices.end()) return known->second;
        const vl::ArrayOf<const vl::zr::Animation*> listed(m_parts.scene->m_pAnimations);
        if (listed.IndexOf(model) < 0) return std::nullopt;
        const std::size_t index = m_parts.animations.size() + m_changes.newAnimations.size();
        m_changes.newAnimations.push_back(kernix::ToUtf8(model->m_name));
        return m_indices[model] = index;
    }

    Curve* Replacement(const vl::zr::Track& track, int keyType) {
        const auto found = m_replaced.find(&track);
        if (found == m_replaced.end()) return nullptr;
        auto& curve = found->second[keyType != 0 ? KeyTypeIndex(keyType) : 0];
        return curve ? &*curve : nullptr;
    }

    // The final keys of the track.
    Curve CurveOf(vl::zr::Track& track, int keyType) {
        if (Curve* replacement = Replacement(track, keyType))
            return m_parts.sharesTracks ? *replacement : std::move(*replacement);
        if (keyType == 0) return static_cast<kernix::SampledTrack&>(track).GetCurve();
        return KeysOf(static_cast<kernix::TransformTrack&>(track), keyType);
    }

    // Whether the track's keys are known to be the document's without looking at them.
    bool IsAsLoaded(vl::zr::Track* track, int keyType) {
        if (track == nullptr || m_parts.sharesTracks || Replacement(*track, keyType) != nullptr) return false;
        const kernix::StoredCurve* packed =
            keyType == 0 ? &static_cast<kernix::SampledTrack*>(track)->Packed()
                         : static_cast<kernix::TransformTrack*>(track)->Packed(keyType);
        return packed != nullptr && packed->IsAsStored();
    }

    // Existing channels of the document: left alone where their keys are unchanged.
    void Channels() {
        const auto animations = m_document.Elements(Kind::kAnimation);
        for (const LoadedChannel& loaded : m_parts.channels) {
            const Json& animation = animations[loaded.animation];
            const Json& channel = animation.Find("channels")->Items()[loaded.channel];
            const Json& sampler = animation.Find("samplers")->Items()[IndexMember(channel, "sampler")];
            if (loaded.keyType == 0) {
                const Json& output = m_document.Elements(Kind::kAccessor)[IndexMember(sampler, "output")];
                m_types[loaded.controller] = output.Find("type")->String();
            }
            vl::zr::Track* track = loaded.controller->GetTrack(m_parts.animations[loaded.animation]);
            m_written[track] |= 1U << loaded.keyType;
            if (Goes(Kind::kAnimation, loaded.animation) || IsAsLoaded(track, loaded.keyType)) continue;
            Curve now = track != nullptr ? CurveOf(*track, loaded.keyType) : Curve();
            if (now == ReadCurve(m_document, sampler)) continue;
            m_changes.changedChannels.push_back({loaded.animation, loaded.channel, std::move(now)});
        }
    }

    void NewChannels() {
        for (const auto& node : m_parts.scene->AllNodes()) {
            if (node->IsDeleted()) continue;
            if (const auto index = m_loaded.IndexOf(node.Get())) {
                TransformChannels(*node, *index);
                AddedChannels(*index);
            }
            for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(node->m_pControllers))
                if (!controller->IsTypeOf(vl::zr::kTypeTransformController)) SampledChannels(*controller);
        }
        for (const std::size_t node : m_newNodes) AddedChannels(node);
        for (const auto& material : m_parts.scene->AllMaterials())
            for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(material->m_pControllers))
                SampledChannels(*controller);
    }

    void TransformChannels(kernix::NodeModel& node, std::size_t index) {
        vl::zr::Controller* controller = node.GetController(vl::zr::kControllerTransform);
        if (controller == nullptr) return;
        for (vl::zr::Track* track : vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks)) {
            for (const int keyType : kKeyTypes) {
                NewChannelOf(*track, keyType, NodeGoal{index, PathOf(keyType)}, TypeOf(keyType));
            }
        }
    }

    void AddedChannels(std::size_t node) {
        const auto found = m_added.find(node);
        if (found == m_added.end()) return;
        for (AddedKeys& keys : found->second) {
            for (const int keyType : kKeyTypes) {
                Append(keys.animation, NodeGoal{node, PathOf(keyType)}, TypeOf(keyType),
                       std::move(keys.curves[KeyTypeIndex(keyType)]));
            }
        }
    }

    void SampledChannels(vl::zr::Controller& controller) {
        const std::string& pointer = static_cast<kernix::SampledControllerModel&>(controller).GetTarget();
        const auto type = m_types.find(&controller);
        const auto named = gltf::PointerTarget(pointer);
        const bool isWeights = named && named->kind == Kind::kNode && pointer.ends_with("/weights");
        for (vl::zr::Track* track : vl::ArrayOf<vl::zr::Track*>(controller.m_pTracks)) {
            NewChannelOf(*track, 0, isWeights ? Goal(NodeGoal{named->index, "weights"}) : Goal(pointer),
                         type != m_types.end() ? type->second : "SCALAR");
        }
    }

    void NewChannelOf(vl::zr::Track& track, int keyType, const Goal& goal, std::string_view type) {
        const auto written = m_written.find(&track);
        if (written != m_written.end() && (written->second & 1U << keyType) != 0) return;
        Append(track.GetAnimation(), goal, type, CurveOf(track, keyType));
    }

    void Append(const kernix::AnimationModel* model, const Goal& goal, std::string_view type, Curve curve) {
        if (curve.IsEmpty()) return;
        if (const auto animation = AnimationFor(model))
            m_changes.newChannels.push_back({*animation, goal, std::string(type), std::move(curve)});
    }

    void Layers() {
        std::unordered_set<const vl::Interface*> listed;
        vl::InterfaceArray* list = m_parts.scene->m_pLayers;
        for (unsigned i = 0; list != nullptr && i < list->GetCount(); ++i) listed.insert(list->GetAt(i));
        for (const kernix::LayerModel* layer : m_parts.layers)
            m_changes.keptLayers.push_back(listed.count(layer) != 0);
    }

    void Viewports() {
        std::unordered_set<const kernix::ViewportModel*> listed;
        for (const auto& viewport : m_parts.scene->Viewports()) listed.insert(viewport.Get());
        for (const kernix::ViewportModel* viewport : m_parts.viewports) {
            ChangedViewport changed{listed.count(viewport) != 0, {}};
            for (auto* reference :
                 vl::ArrayOf<vl::zr::AnimationReference*>(viewport->m_pAnimationReferences)) {
                const auto known = m_indices.find(reference->pAnimation);
                if (known != m_indices.end()) changed.animations.push_back(known->second);
            }
            m_changes.viewports.push_back(std::move(changed));
        }
    }

    const LoadedScene& m_loaded;
    const gltf::Document& m_document;
    const SceneParts& m_parts;
    ReplacedKeys m_replaced;
    std::unordered_map<std::size_t, std::vector<AddedKeys>> m_added;  // by node
    std::vector<std::size_t> m_newNodes;                              // with added keys
    DocumentChanges m_changes;
    std::unordered_map<const vl::zr::Animation*, std::size_t> m_indices;
    std::unordered_map<const vl::zr::Controller*, std::string> m_types;  // accessor type of sampled values
    std::unordered_map<const vl::zr::Track*, unsigned> m_written;  // a bit for each key type with a channel
};

}  // namespace

DocumentChanges ChangesOf(const LoadedScene& loaded, ReplacedKeys replaced, std::vector<AddedKeys> added) {
    return SceneComparison(loaded, std::move(replaced), std::move(added)).Run();
}

}  // namespace zr
