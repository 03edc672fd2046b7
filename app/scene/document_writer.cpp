// SPDX-License-Identifier: MIT
#include "app/scene/document_writer.h"

#include <algorithm>

#include "app/scene/flip_objects.h"
#include "app/scene/node_writer.h"
#include "app/scene/refuse_opaque.h"
#include "app/scene/world_lengths.h"
#include "gltf/collect.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::JsonTree;
using gltf::Kind;

namespace {

class DocumentWriter {
public:
    DocumentWriter(gltf::Document& document, const DocumentChanges& changes)
        : m_document(document),
          m_tree(document.Tree()),
          m_changes(changes),
          m_curves(document),
          m_removal(changes.removal) {}

    std::vector<gltf::OpaqueUse> Run() {
        const gltf::KindSet left = KindsLeft();
        gltf::Removal unreferenced;
        if (!left.Empty()) unreferenced = gltf::Unreferenced(m_document, left);
        for (const auto& [material, name] : m_changes.materialNames)
            m_tree.Member(m_document.Elements(Kind::kMaterial)[material], "name") = m_tree.MakeString(name);
        ScaleLengths(m_document, m_changes.lengthScale);
        if (m_changes.nodes) WriteNodes(m_document, *m_changes.nodes);
        MergeMaterials();
        for (const std::size_t node : m_changes.droppedExtras)
            m_document.Elements(Kind::kNode)[node].EraseMember("extras");
        Channels();
        Layers();
        Viewports();
        RemoveElements();
        if (m_changes.nodes && m_changes.nodes->exchangesAxes) FlipObjects(m_document);
        if (left.Empty()) return {};
        return gltf::CollectGarbage(m_document, left, m_changes.force, unreferenced).refusals;
    }

private:
    // The kinds of elements that the changes may leave unreferenced, to be removed too.
    gltf::KindSet KindsLeft() const {
        if (!m_changes.takesWhatItLeaves) return {};
        const auto& nodes = m_changes.nodes;
        const bool leaves =
            !m_changes.changedChannels.empty() || !KindsOf(m_changes.removal).Empty() ||
            (nodes && (nodes->exchangesAxes || !nodes->dropped.empty() || !nodes->movedObjects.empty()));
        if (!leaves) return {};
        gltf::KindSet kinds = gltf::kDataKinds;
        kinds.Add({Kind::kMesh, Kind::kSkin, Kind::kCamera, Kind::kLight, Kind::kMaterial});
        kinds.Remove(KindsOf(m_changes.removal));
        return kinds;
    }

    void RemoveElements() {
        const gltf::KindSet kinds = KindsOf(m_removal);
        if (kinds.Empty()) return;
        if (!m_changes.force) RefuseOpaque(m_document, kinds);
        gltf::RemoveElements(m_document, m_removal);
    }

    void MergeMaterials() {
        const auto& becomes = m_changes.mergedMaterials;
        if (becomes.empty()) return;
        gltf::ForEachReference(m_document, {Kind::kMaterial}, [&](const gltf::Reference& reference) {
            const gltf::Target& target = reference.target;
            if (target.textSize != 0 || becomes[target.index] == target.index) return;
            reference.value = m_tree.MakeIndex(becomes[target.index]);
        });
    }

    void Channels() {
        std::vector<bool> changed(m_document.Elements(Kind::kAnimation).size(), false);
        changed.resize(changed.size() + m_changes.newAnimations.size(), true);
        ChangedChannels(changed);
        for (const std::string& name : m_changes.newAnimations) AddAnimation(name);
        for (const NewChannel& added : m_changes.newChannels) {
            changed[added.animation] = true;
            AddChannel(added);
        }
        // Animations that lost their last channel are removed.
        const auto animations = m_document.Elements(Kind::kAnimation);
        auto& gone = m_removal[gltf::Ordinal(Kind::kAnimation)];
        gone.resize(animations.size(), false);
        for (std::size_t i = 0; i < animations.size(); ++i) {
            const Json* channels = animations[i].Find("channels");
            if (changed[i] && (channels == nullptr || channels->Items().empty())) gone[i] = true;
        }
    }

    void ChangedChannels(std::vector<bool>& changed) {
        std::vector<std::vector<std::size_t>> gone(m_document.Elements(Kind::kAnimation).size());
        for (const ChangedChannel& channel : m_changes.changedChannels) {
            changed[channel.animation] = true;
            if (channel.curve.IsEmpty()) {
                gone[channel.animation].push_back(channel.channel);
                continue;
            }
            const Json& animation = m_document.Elements(Kind::kAnimation)[channel.animation];
            const Json& json = animation.Find("channels")->Items()[channel.channel];
            const Json& sampler = animation.Find("samplers")->Items()[IndexMember(json, "sampler")];
            const Json& output = m_document.Elements(Kind::kAccessor)[IndexMember(sampler, "output")];
            const std::string type(output.Find("type")->String());
            const std::size_t added = m_curves.Append(channel.animation, channel.curve, type);
            m_tree.Member(m_document.Elements(Kind::kAnimation)[channel.animation]
                              .Find("channels")
                              ->Items()[channel.channel],
                          "sampler") = m_tree.MakeIndex(added);
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

    void AddAnimation(const std::string& name) {
        Json animation = JsonTree::MakeObject();
        if (!name.empty()) m_tree.Member(animation, "name") = m_tree.MakeString(name);
        m_tree.Member(animation, "channels") = JsonTree::MakeArray();
        m_tree.Member(animation, "samplers") = JsonTree::MakeArray();
        m_document.Append(Kind::kAnimation, animation);
    }

    void AddChannel(const NewChannel& added) {
        Json target = JsonTree::MakeObject();
        const auto* pointer = std::get_if<std::string>(&added.goal);
        if (pointer == nullptr) {
            const auto& goal = std::get<NodeGoal>(added.goal);
            m_tree.Member(target, "node") = m_tree.MakeIndex(goal.node);
            m_tree.Member(target, "path") = m_tree.MakeString(goal.path);
        } else {
            Json content = JsonTree::MakeObject(), extensions = JsonTree::MakeObject();
            m_tree.Member(content, "pointer") = m_tree.MakeString(*pointer);
            m_tree.Member(extensions, "KHR_animation_pointer") = content;
            m_tree.Member(target, "path") = m_tree.MakeString("pointer");
            m_tree.Member(target, "extensions") = extensions;
        }
        const std::size_t sampler = m_curves.Append(added.animation, added.curve, added.type);
        Json channel = JsonTree::MakeObject();
        m_tree.Member(channel, "sampler") = m_tree.MakeIndex(sampler);
        m_tree.Member(channel, "target") = target;
        Json& animation = m_document.Elements(Kind::kAnimation)[added.animation];
        m_tree.Append(m_tree.Member(animation, "channels"), channel);
        if (pointer != nullptr) m_document.UseExtension("KHR_animation_pointer", false);
    }

    Json& Extension() { return *m_document.Root().Find("extensions")->Find("ZR_scene"); }

    void Layers() {
        const auto& kept = m_changes.keptLayers;
        if (std::find(kept.begin(), kept.end(), false) == kept.end()) return;
        std::vector<std::size_t> renumbered(kept.size());
        std::size_t next = 0, at = 0;
        for (std::size_t i = 0; i < kept.size(); ++i) renumbered[i] = kept[i] ? next++ : 0;
        Extension().Find("layers")->FilterItems([&](const Json&) { return kept[at++]; });
        if (next == 0) Extension().EraseMember("layers");
        Json* viewports = Extension().Find("viewports");
        for (Json& viewport : viewports != nullptr ? viewports->Items() : std::span<Json>()) {
            const std::size_t layer = IndexMember(viewport, "layer", kept.size());
            if (layer >= kept.size()) continue;
            if (kept[layer])
                m_tree.Member(viewport, "layer") = m_tree.MakeIndex(renumbered[layer]);
            else
                viewport.EraseMember("layer");
        }
    }

    // A document without a list of viewports plays everything, so one that lost them all keeps an empty list.
    void Viewports() {
        const auto& changes = m_changes.viewports;
        if (changes.empty()) return;
        Json& viewports = *Extension().Find("viewports");
        for (std::size_t i = 0; i < changes.size(); ++i) {
            Json& json = viewports.Items()[i];
            Json played = JsonTree::MakeArray();
            for (const std::size_t animation : changes[i].animations)
                m_tree.Append(played, m_tree.MakeIndex(animation));
            if (played.Items().empty())
                json.EraseMember("animations");
            else
                m_tree.Member(json, "animations") = played;
        }
        std::size_t at = 0;
        viewports.FilterItems([&](const Json&) { return changes[at++].stays; });
    }

    gltf::Document& m_document;
    JsonTree& m_tree;
    const DocumentChanges& m_changes;
    CurveWriter m_curves;
    gltf::Removal m_removal;
};

}  // namespace

std::vector<gltf::OpaqueUse> WriteDocument(gltf::Document& document, const DocumentChanges& changes) {
    return DocumentWriter(document, changes).Run();
}

}  // namespace zr
