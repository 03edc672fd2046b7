// SPDX-License-Identifier: MIT
#include "app/operations/export/node_choice.h"

#include <algorithm>
#include <stdexcept>
#include <unordered_set>

#include "app/scene/name_patterns.h"
#include "base/text.h"
#include "gltf/references.h"
#include "kernix/scene/plain_objects.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;
using kernix::NodeModel;

namespace {

std::string Quoted(const std::string& name) {
    return Join("\"", name, "\"");
}

const NodeModel* TargetOf(const NodeModel& node) {
    vl::zr::Node* target = nullptr;
    if (auto* camera = dynamic_cast<vl::zr::Camera*>(node.m_pObject)) target = camera->GetTargetNode();
    if (auto* light = dynamic_cast<vl::zr::Light*>(node.m_pObject)) target = light->GetTargetNode();
    return static_cast<NodeModel*>(target);
}

// Whether the node has a mesh, a camera or a light.
bool ShowsSomething(const NodeModel& node) {
    const auto is = [&](int kind) { return node.m_pObject != nullptr && node.m_pObject->IsKindOf(kind); };
    return is(vl::zr::kKindRenderable) || is(vl::zr::kKindCamera) || is(vl::zr::kKindLight);
}

class Chooser {
public:
    Chooser(LoadedScene& loaded, const NodeChoice& choice)
        : m_loaded(loaded), m_scene(loaded.Scene()), m_choice(choice) {
        for (vl::zr::Node* node : vl::ArrayOf<vl::zr::Node*>(m_scene.m_pNodes))
            m_nodes.push_back(static_cast<NodeModel*>(node));
        m_marks.resize(m_scene.AllNodes().size());
    }

    ChosenNodes Run() && {
        MarkShown();
        KeepDependencies();
        NoteReferences();
        RemoveOthers();
        return std::move(m_chosen);
    }

private:
    struct Mark {
        bool isBelowOnly = false;
        bool isExcluded = false;
        bool isShown = false;
        bool stays = false;
    };
    Mark& MarkOf(const NodeModel& node) { return m_marks[node.GetNumber()]; }
    bool Goes(std::size_t index) {
        const NodeModel* node = m_loaded.Node(index);
        return node != nullptr && !MarkOf(*node).stays;
    }

    std::unordered_set<const vl::zr::Node*> OnLayers() const {
        std::unordered_set<const vl::zr::Node*> members;
        std::unordered_set<std::string> found;
        std::string names;
        for (const kernix::LayerModel* layer : m_loaded.Parts().layers) {
            names += Join(names.empty() ? "" : ", ", Quoted(layer->m_name));
            if (std::find(m_choice.layers.begin(), m_choice.layers.end(), layer->m_name) ==
                m_choice.layers.end())
                continue;
            found.insert(layer->m_name);
            for (vl::zr::Node* member : vl::ArrayOf<vl::zr::Node*>(layer->m_pMembers)) members.insert(member);
        }
        for (const std::string& wanted : m_choice.layers)
            if (found.count(wanted) == 0)
                throw std::runtime_error(Join("no layer is named ", Quoted(wanted), ": the scene has ",
                                              names.empty() ? "no layer" : names));
        return members;
    }

    // The mark of the node's parent or, for a level of detail, of the node it stands for.
    Mark MarkAbove(const NodeModel& node) {
        const NodeLayout& layout = m_loaded.Parts().layout;
        const std::size_t index = *m_loaded.IndexOf(&node);
        const std::size_t base = layout.BaseOf(index);
        if (base != index) return MarkOf(*m_loaded.Node(base));
        return node.GetParent() != nullptr ? MarkOf(*node.GetParent()) : Mark();
    }

    // Relies on parents coming before their children.
    void MarkShown() {
        const auto onLayers = OnLayers();
        bool showsAny = false;
        for (const NodeModel* node : m_nodes) {
            const Mark above = MarkAbove(*node);
            Mark& mark = MarkOf(*node);
            mark.isBelowOnly = above.isBelowOnly || MatchesAny(m_choice.only, node->GetNameText());
            mark.isExcluded = above.isExcluded || MatchesAny(m_choice.exclude, node->GetNameText());
            mark.isShown = mark.stays = !mark.isExcluded && (m_choice.only.empty() || mark.isBelowOnly) &&
                                        (m_choice.layers.empty() || onLayers.count(node) != 0);
            showsAny = showsAny || mark.isShown;
        }
        for (const auto* patterns : {&m_choice.only, &m_choice.exclude}) {
            for (const std::string& pattern : *patterns) {
                const bool matches = std::any_of(m_nodes.begin(), m_nodes.end(), [&](const NodeModel* node) {
                    return MatchesAny({pattern}, node->GetNameText());
                });
                if (!matches) m_chosen.notes.push_back(Join("no node's name matches ", Quoted(pattern)));
            }
        }
        if (!showsAny)
            throw std::runtime_error("nothing to export: --only-nodes, --exclude and --layer leave no node");
        KeepAncestors();
    }

    void KeepAncestors() {
        for (std::size_t i = m_nodes.size(); i-- > 0;) {
            const NodeModel* parent = m_nodes[i]->GetParent();
            if (parent != nullptr && MarkOf(*m_nodes[i]).stays) MarkOf(*parent).stays = true;
        }
    }

    void KeepDependencies() {
        const gltf::Document& document = m_loaded.Document();
        const auto nodes = document.Elements(Kind::kNode);
        std::vector<bool> isUsed(document.Elements(Kind::kSkin).size(), false);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const NodeModel* user = m_loaded.Node(i);
            const std::size_t skin = IndexMember(nodes[i], "skin", isUsed.size());
            if (skin == isUsed.size() || isUsed[skin] || (user != nullptr && !MarkOf(*user).isShown))
                continue;
            isUsed[skin] = true;
            KeepJoints(document.Elements(Kind::kSkin)[skin], user);
        }
        for (const NodeModel* node : m_nodes) {
            const NodeModel* target = MarkOf(*node).isShown ? TargetOf(*node) : nullptr;
            if (target == nullptr || MarkOf(*target).stays) continue;
            Mark& mark = MarkOf(*target);
            mark.stays = true;
            if (mark.isExcluded)
                m_chosen.notes.push_back(Join("node ", Quoted(m_loaded.NameOf(*target)), " stays: node ",
                                              Quoted(m_loaded.NameOf(*node)), " aims at it"));
        }
        KeepAncestors();
        for (std::size_t skin = 0; skin < isUsed.size(); ++skin) {
            const auto joints = document.Elements(Kind::kSkin)[skin].Find("joints")->Items();
            const bool losesJoints = std::any_of(joints.begin(), joints.end(),
                                                 [&](const Json& joint) { return Goes(*joint.Index()); });
            if (losesJoints) m_chosen.skins.push_back(skin);
        }
    }

    // user: the node with the skin; null: it is outside the scene.
    void KeepJoints(const Json& skin, const NodeModel* user) {
        const NodeModel* first = nullptr;
        std::size_t excluded = 0;
        const auto keep = [&](const Json& reference) {
            const NodeModel* node = m_loaded.Node(*reference.Index());
            if (node == nullptr || MarkOf(*node).stays) return;
            MarkOf(*node).stays = true;
            if (MarkOf(*node).isExcluded && excluded++ == 0) first = node;
        };
        for (const Json& joint : skin.Find("joints")->Items()) keep(joint);
        if (const Json* skeleton = skin.Find("skeleton")) keep(*skeleton);
        if (first == nullptr) return;
        m_chosen.notes.push_back(Join(
            "node ", Quoted(m_loaded.NameOf(*first)),
            excluded > 1 ? Join(" and ", excluded - 1, " more stay: joints") : " stays: a joint",
            " of the skin of ",
            user != nullptr ? Join("node ", Quoted(m_loaded.NameOf(*user))) : "a node outside the scene"));
    }

    // Notes references from what stays to nodes that go; keys, layers and the hierarchy do not count.
    void NoteReferences() {
        gltf::ForEachReference(m_loaded.Document(), {Kind::kNode}, [&](const gltf::Reference& reference) {
            const gltf::Target& target = reference.target;
            if (!Goes(target.index)) return;
            const auto steps = reference.place.Steps();
            if (reference.owner) {
                const Kind kind = reference.owner->kind;
                if (kind == Kind::kScene || kind == Kind::kSkin || kind == Kind::kAnimation) return;
                const bool isChild = kind == Kind::kNode && steps.size() > 3 && steps[3].member == "children";
                if (isChild || (kind == Kind::kNode && Goes(reference.owner->index))) return;
            } else if (steps.size() > 2 && steps[2].member == "ZR_scene") {
                return;
            }
            m_chosen.notes.push_back(Join(reference.place.Pointer(), ": refers to node ",
                                          Quoted(m_loaded.NameOf(*m_loaded.Node(target.index))),
                                          ", which is left out"));
        });
    }

    void RemoveOthers() {
        for (NodeModel* node : m_nodes) {
            const Mark& mark = MarkOf(*node);
            if (mark.isShown) continue;
            if (!mark.stays) {
                DropKeys(*node, true);
                const NodeModel* parent = node->GetParent();
                if (parent == nullptr || MarkOf(*parent).stays) m_scene.RemoveNode(*node);
            } else if (ShowsSomething(*node)) {
                DropKeys(*node, false);
                const bool isJoint = (node->m_dwFlags & vl::zr::kNodeSkeleton) != 0;
                node->SetObject(isJoint ? vl::Ref<vl::zr::Object3D>::Adopt(kernix::CreateBone())
                                        : vl::Ref<vl::zr::Object3D>());
                node->m_dwFlags &= ~std::uint32_t{vl::zr::kNodeSkeleton};
            }
        }
        m_scene.Notify(0, 0, 0);
    }

    // Removes the keys of the node's morph weights and, if it goes, of its transform.
    static void DropKeys(const NodeModel& node, bool goes) {
        for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(node.m_pControllers)) {
            const auto* sampled = dynamic_cast<kernix::SampledControllerModel*>(controller);
            // Other controllers may move what other nodes show too.
            if (sampled != nullptr ? !sampled->GetTarget().starts_with("/nodes/") : !goes) continue;
            for (vl::zr::Track* track : vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks)) {
                if (sampled != nullptr) {
                    static_cast<kernix::SampledTrack*>(track)->SetCurve({});
                } else {
                    for (const int keyType : kernix::kKeyTypes)
                        static_cast<kernix::TransformTrack*>(track)->SetCurve(keyType, {});
                }
            }
        }
    }

    LoadedScene& m_loaded;
    kernix::SceneModel& m_scene;
    const NodeChoice& m_choice;
    std::vector<NodeModel*> m_nodes;
    std::vector<Mark> m_marks;  // by the node's number
    ChosenNodes m_chosen;
};

}  // namespace

ChosenNodes ChooseNodes(LoadedScene& loaded, const NodeChoice& choice) {
    if (choice.IsAll()) return {};
    return Chooser(loaded, choice).Run();
}

}  // namespace zr
