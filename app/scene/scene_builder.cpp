// SPDX-License-Identifier: MIT
#include "app/scene/scene_builder.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "base/text.h"
#include "gltf/members.h"
#include "gltf/references.h"
#include "host/kinds.h"
#include "host/var.h"
#include "kernix/scene/plain_objects.h"
#include "kernix/utf.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

// Extensions of a node that show nothing when the node has no object of its own.
constexpr std::string_view kBareExtensions[] = {
    "EXT_mesh_gpu_instancing", "KHR_lights_punctual",
    "KHR_node_hoverability",   "KHR_node_selectability",
    "KHR_node_visibility",     "KHR_xmp",
    "KHR_xmp_json_ld",         "ZR_scene",
};

// The extension that makes a node without a mesh more than a bare transform (a sound, a physics body,
// something unknown), or null.
const gltf::JsonMember* ContentExtension(const Json& node) {
    const Json* extensions = node.Find("extensions");
    if (extensions == nullptr || node.Find("mesh") != nullptr) return nullptr;
    const auto members = extensions->Members();
    const auto found = std::find_if(members.begin(), members.end(), [](const gltf::JsonMember& member) {
        return std::find(std::begin(kBareExtensions), std::end(kBareExtensions), member.Name()) ==
               std::end(kBareExtensions);
    });
    return found != members.end() ? &*found : nullptr;
}

template <std::size_t N>
std::array<float, N> Numbers(const Json& array) {
    std::array<float, N> numbers;
    for (std::size_t i = 0; i < N; ++i) numbers[i] = static_cast<float>(array.Items()[i].Number());
    return numbers;
}

vl::Vector3<float> VectorOf(const Json& array) {
    const auto numbers = Numbers<3>(array);
    return {numbers[0], numbers[1], numbers[2]};
}

vl::Matrix4<double> MatrixOf(const Json& numbers) {
    vl::Matrix4<double> matrix;
    for (std::size_t i = 0; i < 16; ++i) matrix.m[i / 4][i % 4] = numbers.Items()[i].Number();
    return matrix;
}

vl::Var VarOf(const Json& value) {
    if (value.IsBool()) return vl::Var(value.Bool());
    if (value.IsString()) return vl::Var(kernix::ToUtf16(value.String()));
    if (const auto index = value.Index(); index && *index <= 0x7FFFFFFF)
        return vl::Var(static_cast<int>(*index));
    if (value.IsNumber()) return vl::Var(static_cast<float>(value.Number()));
    return vl::Var(kernix::ToUtf16(gltf::WriteJson(value, false)));
}

}  // namespace

SceneBuilder::SceneBuilder(gltf::Document& document, DocumentCurves& curves, const SceneOptions& options)
    : m_document(document),
      m_options(options),
      m_parts{vl::Ref<kernix::SceneModel>::AdoptNew(new kernix::SceneModel)},
      m_scene(*m_parts.scene),
      m_ids(document),
      m_meshes(document, m_parts.materials, m_ids),
      m_animations(document, curves, m_parts, m_ids),
      m_surroundings(document) {
    m_parts.force = options.force;
}

SceneParts SceneBuilder::Build() && {
    const std::size_t nodes = m_document.Elements(Kind::kNode).size();
    m_parts.nodes.resize(nodes);
    m_parts.materials.resize(m_document.Elements(Kind::kMaterial).size());
    m_parts.animations.resize(m_document.Elements(Kind::kAnimation).size());
    m_parts.layout = LayOut(m_document, m_options.whole);
    MarkReferences();
    AddMaterials();
    m_animations.NoteMotions();
    AddNodes();
    AddAnimations();
    AddLayersAndViewports();
    return std::move(m_parts);
}

void SceneBuilder::MarkReferences() {
    m_nodeMarks.resize(m_parts.nodes.size());
    m_materialMarks.resize(m_parts.materials.size());
    m_animationMarks.resize(m_parts.animations.size());
    m_drawn.resize(m_parts.materials.size(), false);
    std::vector<bool> meshInScene(m_document.Elements(Kind::kMesh).size(), false);
    for (std::size_t node : m_parts.layout.order) {
        const Json& json = m_document.Elements(Kind::kNode)[node];
        if (json.Find("mesh") != nullptr) meshInScene[IndexMember(json, "mesh")] = true;
    }
    const auto keep = [](Mark& mark, const gltf::Place& place) {
        if (!mark.reason) mark.reason = std::make_unique<std::string>(place.Pointer());
    };
    constexpr gltf::KindSet kKinds{Kind::kNode, Kind::kMaterial, Kind::kAnimation};
    gltf::ForEachReference(m_document, kKinds, [&](const gltf::Reference& reference) {
        const gltf::Target& target = reference.target;
        m_surroundings.Note(reference);
        const auto steps = reference.place.Steps();
        // Below the root, the collection and the element, the fourth step names the member of the element.
        const std::string_view member = steps.size() > 3 ? steps[3].member : std::string_view();
        const bool isOurs = steps.size() > 2 && (steps[2].member == "ZR_scene" ||
                                                 (steps.size() > 4 && steps[4].member == "ZR_scene"));
        const bool fromNode = reference.owner && reference.owner->kind == Kind::kNode;
        const bool fromScene = reference.owner && reference.owner->kind == Kind::kScene;
        if (target.kind == Kind::kNode) {
            Mark& mark = m_nodeMarks[target.index];
            if (reference.owner && reference.owner->kind == Kind::kSkin && member == "joints")
                mark.isJoint = true;
            if ((fromNode && member == "children") || (fromScene && member == "nodes") || isOurs) return;
            keep(mark, reference.place);
        } else if (target.kind == Kind::kMaterial) {
            if (reference.owner && reference.owner->kind == Kind::kMesh &&
                meshInScene[reference.owner->index])
                m_drawn[target.index] = true;
            else
                keep(m_materialMarks[target.index], reference.place);
        } else if (target.kind == Kind::kAnimation && !isOurs) {
            keep(m_animationMarks[target.index], reference.place);
        }
    });
    for (std::size_t node : m_parts.layout.order) {
        const gltf::JsonMember* content = ContentExtension(m_document.Elements(Kind::kNode)[node]);
        if (content != nullptr && !m_nodeMarks[node].reason)
            m_nodeMarks[node].reason =
                std::make_unique<std::string>(Join("/nodes/", node, "/extensions/", content->Name()));
    }
    MarkKept(Kind::kNode, m_nodeMarks);
    MarkKept(Kind::kMaterial, m_materialMarks);
    MarkKept(Kind::kAnimation, m_animationMarks);
}

void SceneBuilder::MarkKept(Kind kind, std::vector<Mark>& marks) {
    const auto elements = m_document.Elements(kind);
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (!marks[i].reason && m_options.keep) {
            if (std::string reason = m_options.keep(elements[i]); !reason.empty())
                marks[i].reason = std::make_unique<std::string>(std::move(reason));
        }
        if (marks[i].reason) m_parts.kept.push_back({kind, i, *marks[i].reason});
    }
}

void SceneBuilder::AddMaterials() {
    const auto materials = m_document.Elements(Kind::kMaterial);
    for (std::size_t i = 0; i < materials.size(); ++i) {
        const bool kept = m_materialMarks[i].reason != nullptr;
        if (kept && !UsedInScene(i)) continue;
        const Json* name = materials[i].Find("name");
        std::optional<std::string> text;
        if (name != nullptr) text = std::string(name->String());
        std::string content = m_ids.Canonical(materials[i]);
        // Something refers to this one, so it equals no other.
        if (kept) content += Join(" #", i);
        m_parts.materials[i] = m_scene.AddMaterial(std::move(text), std::move(content));
    }
}

void SceneBuilder::AddNodes() {
    constexpr std::size_t kNodesAtOnce = 256;
    const std::vector<std::size_t>& order = m_parts.layout.order;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i % kNodesAtOnce == 0)
            m_options.progress(static_cast<double>(i) / static_cast<double>(order.size()));
        AddNode(order[i], m_parts.layout.parents[order[i]]);
    }
    // Extensions refer to other nodes, so they wait until all nodes exist.
    for (std::size_t node : m_extended) ApplyExtension(node);
}

void SceneBuilder::AddNode(std::size_t index, std::size_t parent) {
    const Json& json = m_document.Elements(Kind::kNode)[index];
    const NodeParts parts(json);
    kernix::NodeModel* above = parent != kNone ? m_parts.nodes[parent] : nullptr;
    kernix::NodeModel* node = m_scene.AddNode(above, std::string(parts.name));
    m_parts.nodes[index] = node;
    m_parts.nodeIndices.push_back(static_cast<std::uint32_t>(index));
    SetTransform(*node, parts);
    if (parts.extras != nullptr) SetMetadata(index, *parts.extras);
    if (parts.extensions != nullptr && parts.extensions->Find("ZR_scene") != nullptr)
        m_extended.push_back(index);
    node->SetObject(vl::Ref<vl::zr::Object3D>::Adopt(MakeObject(index, parent, parts)));
    const bool showsMore = node->m_pObject != nullptr && !node->m_pObject->IsKindOf(vl::zr::kKindBone);
    if (m_nodeMarks[index].isJoint && showsMore) node->m_dwFlags |= vl::zr::kNodeSkeleton;
}

vl::zr::Object3D* SceneBuilder::MakeObject(std::size_t index, std::size_t parent, const NodeParts& parts) {
    const Mark& mark = m_nodeMarks[index];
    std::string motion = m_animations.Motion(index, parent);
    const std::size_t apart = m_surroundings.Enter(index, parent, parts.extensions);
    if (parts.mesh != nullptr && m_meshes.Shows(parts, m_options.meshes)) {
        if (m_options.repeats != Repeats::kAlike && apart != kNone) motion += Join("apart ", apart, ";");
        // Nodes that something refers to, and translucent ones, never count as duplicates.
        const bool isUnique =
            mark.reason || (m_options.repeats == Repeats::kUnseen && m_meshes.ShowsBlended(parts));
        if (isUnique) motion += Join("node ", index, ";");
        return m_meshes.Build(parts, motion);
    }
    if (parts.camera != nullptr) return new kernix::CameraModel;
    if (parts.extensions != nullptr) {
        if (vl::zr::Object3D* light = MakeLight(*parts.extensions)) return light;
        const Json* extension = parts.extensions->Find("ZR_scene");
        const auto is = [&](std::string_view name) {
            const Json* member = extension != nullptr ? extension->Find(name) : nullptr;
            return member != nullptr && member->Bool();
        };
        if (is("note")) return kernix::CreateNote();
        if (is("selector")) return kernix::CreateSelector();
    }
    if (mark.isJoint) return kernix::CreateBone();
    if (mark.reason) return kernix::CreateDummy();
    return nullptr;
}

vl::zr::Object3D* SceneBuilder::MakeLight(const Json& extensions) {
    const Json* extension = extensions.Find("KHR_lights_punctual");
    if (extension == nullptr) return nullptr;
    const Json& light = m_document.Elements(Kind::kLight)[IndexMember(*extension, "light")];
    const std::string_view type = light.Find("type")->String();
    return new kernix::LightModel(type == "spot"          ? vl::zr::kLightSpot
                                  : type == "directional" ? vl::zr::kLightDirectional
                                                          : vl::zr::kLightPoint);
}

void SceneBuilder::SetTransform(kernix::NodeModel& model, const NodeParts& parts) {
    if (parts.matrix != nullptr) return model.SetRestMatrix(MatrixOf(*parts.matrix));
    if (parts.translation == nullptr && parts.rotation == nullptr && parts.scale == nullptr) return;
    kernix::Pose pose;
    if (parts.translation != nullptr) pose.translation = VectorOf(*parts.translation);
    if (parts.rotation != nullptr) {
        const auto r = Numbers<4>(*parts.rotation);
        pose.rotation = {r[0], r[1], r[2], r[3]};
    }
    if (parts.scale != nullptr) pose.scale = VectorOf(*parts.scale);
    model.SetRestPose(pose);
}

void SceneBuilder::SetMetadata(std::size_t index, const Json& extras) {
    if (extras.IsObject() && extras.Members().empty()) return;
    vl::VarMap* map = m_parts.nodes[index]->GetMetadata(true);
    if (map == nullptr) throw std::bad_alloc();
    if (!extras.IsObject()) map->Set(u"", VarOf(extras));
    for (const gltf::JsonMember& member : extras.Members())
        map->Set(kernix::ToUtf16(member.Name()), VarOf(member.value));
    m_parts.extrasNodes.push_back(index);
}

void SceneBuilder::ApplyExtension(std::size_t index) {
    const Json* extension = gltf::FindExtension(m_document.Elements(Kind::kNode)[index], "ZR_scene");
    kernix::NodeModel* node = m_parts.nodes[index];
    const auto named = [&](std::string_view name) {
        return extension->Find(name) != nullptr ? m_parts.nodes[IndexMember(*extension, name)] : nullptr;
    };
    if (kernix::NodeModel* target = named("target")) {
        if (auto* camera = dynamic_cast<kernix::CameraModel*>(node->m_pObject)) camera->SetTarget(target);
        if (auto* light = dynamic_cast<kernix::LightModel*>(node->m_pObject)) light->SetTarget(target);
    }
    if (extension->Find("selector") != nullptr) m_scene.SetSelector(node, named("selected"));
    if (const Json* pivot = extension->Find("pivot")) {
        kernix::TransformControllerModel* controller = node->AddTransformController();
        controller->m_offset = VectorOf(*pivot);
        const Json* group = extension->Find("pivotGroup");
        if (group != nullptr && group->Bool()) controller->m_dwFlags |= vl::zr::kControllerPivotGroup;
    }
    if (const Json* offset = extension->Find("objectOffset")) node->SetObjectOffset(MatrixOf(*offset));
}

void SceneBuilder::AddAnimations() {
    const auto animations = m_document.Elements(Kind::kAnimation);
    for (std::size_t i = 0; i < animations.size(); ++i) {
        kernix::AnimationModel* model = m_scene.AddAnimation(kernix::ToUtf16(gltf::NameOf(animations[i])));
        model->m_locked = m_animationMarks[i].reason != nullptr;
        m_parts.animations[i] = model;
    }
    m_animations.Build();
}

void SceneBuilder::AddLayersAndViewports() {
    const Json* extension = gltf::FindExtension(m_document.Root(), "ZR_scene");
    const Json* layers = extension != nullptr ? extension->Find("layers") : nullptr;
    const Json* viewports = extension != nullptr ? extension->Find("viewports") : nullptr;
    if (layers != nullptr) {
        for (const Json& json : layers->Items()) {
            kernix::LayerModel* layer = m_scene.AddLayer(std::string(gltf::NameOf(json)));
            m_parts.layers.push_back(layer);
            if (const Json* members = json.Find("nodes"))
                for (const Json& member : members->Items())
                    if (kernix::NodeModel* node = m_parts.nodes[*member.Index()]) layer->AddMember(node);
        }
    }
    if (viewports == nullptr) return AddDefaultViewport();
    for (const Json& json : viewports->Items()) {
        kernix::ViewportModel* viewport =
            m_scene.AddViewport(static_cast<int>(IndexMember(json, "kind")), std::string(gltf::NameOf(json)));
        m_parts.viewports.push_back(viewport);
        const std::size_t layer = IndexMember(json, "layer", m_parts.layers.size());
        if (layer < m_parts.layers.size()) viewport->m_pLayer = m_parts.layers[layer];
        if (const Json* played = json.Find("animations"))
            for (const Json& animation : played->Items())
                viewport->AddAnimationReference(m_parts.animations[*animation.Index()]);
    }
}

// A document without viewports plays all its animations.
void SceneBuilder::AddDefaultViewport() {
    kernix::ViewportModel* viewport = m_scene.AddViewport(vl::zr::kViewportView, "");
    const auto animations = m_document.Elements(Kind::kAnimation);
    for (std::size_t i = 0; i < animations.size(); ++i) {
        const Json* channels = animations[i].Find("channels");
        const bool moves =
            channels != nullptr &&
            std::any_of(channels->Items().begin(), channels->Items().end(), [](const Json& channel) {
                const Json& target = *channel.Find("target");
                return target.Find("node") != nullptr || target.Find("path")->String() == "pointer";
            });
        if (moves || m_animationMarks[i].reason) viewport->AddAnimationReference(m_parts.animations[i]);
    }
}

}  // namespace zr
