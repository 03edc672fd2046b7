// SPDX-License-Identifier: MIT
#include "app/scene/node_writer.h"

#include <algorithm>
#include <span>
#include <unordered_map>

#include "app/scene/moved_members.h"

namespace zr {

using gltf::Json;
using gltf::JsonTree;
using gltf::Kind;

namespace {

class NodeWriter {
public:
    NodeWriter(gltf::Document& document, const ChangedNodes& changes)
        : m_document(document), m_tree(document.Tree()), m_changes(changes) {}

    void Run() {
        std::size_t count = m_document.Elements(Kind::kNode).size();
        for (const ChangedNode& node : m_changes.nodes) count = std::max(count, node.index + 1);
        while (m_document.Elements(Kind::kNode).size() < count)
            m_document.Append(Kind::kNode, JsonTree::MakeObject());
        for (const DroppedMembers& dropped : m_changes.dropped)
            for (const std::string_view name : dropped.members) TakeMember(NodeAt(dropped.node), name);
        for (const MovedObject& moved : m_changes.movedObjects) MoveObject(moved);
        for (const ChangedNode& node : m_changes.nodes) Write(node);
        WriteRoots();
        MoveJoints();
        std::unordered_map<std::size_t, std::size_t> moved;
        for (const MovedObject& object : m_changes.movedObjects) moved[object.from] = object.to;
        FollowMembers(m_document, kObjectMembers, moved);
        for (const NewCamera& camera : m_changes.cameras) AddCamera(camera);
    }

private:
    Json& NodeAt(std::size_t index) { return m_document.Elements(Kind::kNode)[index]; }

    void MoveObject(const MovedObject& moved) {
        for (const std::string_view name : kObjectMembers) {
            if (const auto value = TakeMember(NodeAt(moved.from), name))
                PutMember(m_tree, NodeAt(moved.to), name, *value);
        }
    }

    void Write(const ChangedNode& node) {
        if (node.transform) WriteTransform(NodeAt(node.index), *node.transform);
        if (node.name && node.name->empty()) NodeAt(node.index).EraseMember("name");
        if (node.name && !node.name->empty())
            m_tree.Member(NodeAt(node.index), "name") = m_tree.MakeString(*node.name);
        if (node.dropsPivots) DropPivots(NodeAt(node.index));
        if (node.target) {
            PutMember(m_tree, NodeAt(node.index), kTargetMember, m_tree.MakeIndex(*node.target));
            m_document.UseExtension("ZR_scene", false);
        }
        NodeAt(node.index).EraseMember("children");
        if (!node.children.empty()) m_tree.Member(NodeAt(node.index), "children") = Indices(node.children);
    }

    void WriteTransform(Json& node, const NodeTransform& transform) {
        for (const std::string_view name : {"matrix", "translation", "rotation", "scale"})
            node.EraseMember(name);
        if (const auto* matrix = std::get_if<std::array<float, 16>>(&transform)) {
            m_tree.Member(node, "matrix") = m_tree.MakeNumbers(*matrix);
            return;
        }
        const auto write = [&](std::string_view name, std::span<const float> values,
                               std::initializer_list<float> neutral) {
            if (std::equal(values.begin(), values.end(), neutral.begin())) return;
            m_tree.Member(node, name) = m_tree.MakeNumbers(values);
        };
        const auto& parts = std::get<TransformParts>(transform);
        write("translation", parts.translation, {0, 0, 0});
        write("rotation", parts.rotation, {0, 0, 0, 1});
        write("scale", parts.scale, {1, 1, 1});
    }

    static void DropPivots(Json& node) {
        for (const std::string_view member : {kPivotMember, kPivotGroupMember, kObjectOffsetMember})
            TakeMember(node, member);
    }

    Json Indices(const std::vector<std::size_t>& indices) {
        Json list = JsonTree::MakeArray();
        for (const std::size_t index : indices) m_tree.Append(list, m_tree.MakeIndex(index));
        return list;
    }

    void WriteRoots() {
        if (m_document.Elements(Kind::kScene).empty()) {
            m_document.Append(Kind::kScene, JsonTree::MakeObject());
            m_tree.Member(m_document.Root(), "scene") = m_tree.MakeIndex(0);
        }
        const auto scenes = m_document.Elements(Kind::kScene);
        for (const auto& [scene, nodes] : m_changes.roots) {
            if (nodes.empty())
                scenes[scene].EraseMember("nodes");
            else
                m_tree.Member(scenes[scene], "nodes") = Indices(nodes);
        }
    }

    void MoveJoints() {
        if (m_changes.movedJoints.empty()) return;
        const std::unordered_map<std::size_t, std::size_t> moved(m_changes.movedJoints.begin(),
                                                                 m_changes.movedJoints.end());
        const auto mend = [&](Json& reference) {
            const auto index = reference.Index();
            const auto found = index ? moved.find(*index) : moved.end();
            if (found != moved.end()) reference = m_tree.MakeIndex(found->second);
        };
        for (Json& skin : m_document.Elements(Kind::kSkin)) {
            if (Json* joints = skin.Find("joints")) {
                for (Json& joint : joints->Items()) mend(joint);
            }
            if (Json* skeleton = skin.Find("skeleton")) mend(*skeleton);
        }
    }

    void AddCamera(const NewCamera& camera) {
        Json lens = JsonTree::MakeObject(), json = JsonTree::MakeObject();
        m_tree.Member(lens, "yfov") = m_tree.MakeNumber(camera.fieldOfView);
        m_tree.Member(lens, "znear") = m_tree.MakeNumber(camera.near);
        m_tree.Member(lens, "zfar") = m_tree.MakeNumber(camera.far);
        m_tree.Member(json, "type") = m_tree.MakeString("perspective");
        m_tree.Member(json, "perspective") = lens;
        const std::size_t added = m_document.Append(Kind::kCamera, json);
        Json& node = NodeAt(camera.node);
        m_tree.Member(node, "camera") = m_tree.MakeIndex(added);
        if (node.Find("name") == nullptr) m_tree.Member(node, "name") = m_tree.MakeString(camera.nodeName);
    }

    gltf::Document& m_document;
    JsonTree& m_tree;
    const ChangedNodes& m_changes;
};

}  // namespace

void WriteNodes(gltf::Document& document, const ChangedNodes& changes) {
    NodeWriter(document, changes).Run();
}

}  // namespace zr
