// SPDX-License-Identifier: MIT
#include "app/operations/export/record_nodes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <unordered_map>

#include "app/operations/export/moved_members.h"
#include "app/operations/export/record_rest.h"
#include "kernix/utf.h"

namespace zr {
namespace {

using gltf::Json;
using gltf::JsonTree;
using gltf::Kind;

constexpr std::string_view kInExtensions = "extensions/";
constexpr std::string_view kTransformMembers[] = {"matrix", "translation", "rotation", "scale"};

// Angle of turned scale axes above which a transform needs a matrix, radians.
constexpr float kTurned = 1e-4f;

class NodeWriter {
public:
    NodeWriter(LoadedScene& loaded, const Tool& tool, const ExportOptions& options)
        : m_loaded(loaded),
          m_document(loaded.Document()),
          m_tree(m_document.Tree()),
          m_tool(tool),
          m_options(options) {}

    std::vector<std::size_t> Run() {
        PlaceRecords();
        for (const auto& node : m_loaded.Scene().AllNodes()) MoveObject(*node);
        for (ExportNode* record : AllRecords(m_tool)) WriteNode(*record);
        WriteRoots();
        MoveJoints();
        FollowMembers(m_document, kObjectMembers, m_objectMoved);
        DeleteRejected();
        std::vector<std::size_t> nodes;
        for (const ExportNode* record : AllRecords(m_tool)) nodes.push_back(m_index[record]);
        return nodes;
    }

private:
    Json& NodeAt(std::size_t index) { return m_document.Elements(Kind::kNode)[index]; }
    static kernix::NodeModel* ModelOf(vl::zr::Node* node) { return static_cast<kernix::NodeModel*>(node); }

    // Source nodes keep their place; what the host added itself (its view camera) has none.
    void PlaceRecords() {
        for (ExportNode* record : AllRecords(m_tool)) {
            kernix::NodeModel* source = ModelOf(record->pSourceNode);
            const bool keeps = source != nullptr && source->m_source >= 0;
            m_index[record] = keeps ? static_cast<std::size_t>(source->m_source)
                                    : m_document.Append(Kind::kNode, JsonTree::MakeObject());
            if (keeps) m_exported.insert({source, record});
            if ((record->dwFlags & NF_GEOMETRY) != 0) m_carrier.insert({ModelOf(record->pNode), record});
        }
    }

    // Takes the members of a node that belong to its object to the record that carries it.
    void MoveObject(kernix::NodeModel& model) {
        if (model.m_source < 0 || m_exported.count(&model) == 0) return;
        const auto from = static_cast<std::size_t>(model.m_source);
        const auto carrier = m_carrier.find(&model);
        if (carrier != m_carrier.end() && m_index[carrier->second] == from) return;
        if (carrier != m_carrier.end()) {
            m_objectMoved[from] = m_index[carrier->second];
        } else {
            DropWeights(model);
        }
        for (std::string_view name : kObjectMembers) {
            const bool isExtension = name.starts_with(kInExtensions);
            if (isExtension) name.remove_prefix(kInExtensions.size());
            Json* holder = isExtension ? NodeAt(from).Find("extensions") : &NodeAt(from);
            const Json* member = holder != nullptr ? holder->Find(name) : nullptr;
            if (member == nullptr) continue;
            const Json value = *member;
            holder->EraseMember(name);
            if (isExtension && holder->Members().empty()) NodeAt(from).EraseMember("extensions");
            if (carrier == m_carrier.end()) continue;
            Json* target = &NodeAt(m_index[carrier->second]);
            if (isExtension) {
                target = &m_tree.Member(*target, "extensions");
                if (!target->IsObject()) *target = JsonTree::MakeObject();
            }
            m_tree.Member(*target, name) = value;
        }
    }

    // Without its mesh a node has no morph weights to move.
    static void DropWeights(kernix::NodeModel& model) {
        for (vl::zr::Controller* plain : vl::ArrayOf<vl::zr::Controller*>(model.m_pControllers)) {
            auto* controller = dynamic_cast<kernix::SampledControllerModel*>(plain);
            if (controller == nullptr || !controller->GetTarget().ends_with("/weights")) continue;
            for (vl::zr::Track* track : vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks)) {
                static_cast<kernix::SampledTrack*>(track)->m_times.clear();
                static_cast<kernix::SampledTrack*>(track)->m_values.clear();
            }
        }
    }

    void WriteNode(ExportNode& record) {
        const std::size_t index = m_index[&record];
        WriteTransform(record, index);
        WriteName(record, index);
        if (record.vPivot == vl::Vector3<float>()) ErasePivots(index);
        if (record.pTarget != nullptr) WriteTarget(record, index);
        const vl::ArrayOf<ExportNode*> children(record.pChildren);
        NodeAt(index).EraseMember("children");
        if (children.IsEmpty()) return;
        Json list = JsonTree::MakeArray();
        for (ExportNode* child : children) m_tree.Append(list, m_tree.MakeIndex(m_index[child]));
        m_tree.Member(NodeAt(index), "children") = list;
    }

    // A transform that the records did not change stays as it is written.
    void WriteTransform(const ExportNode& record, std::size_t index) {
        if (StandsAsItsNode(record, m_options)) return;
        const vl::Matrix4<double> local = RestLocal(record, m_options);
        for (const std::string_view name : kTransformMembers) NodeAt(index).EraseMember(name);
        vl::AffineParts parts;
        local.AffineDecompose(parts);
        const bool moves = record.pController != nullptr;
        if (!moves && vl::AngleAxis(parts.u).angle > kTurned) {
            std::array<float, 16> numbers;
            for (std::size_t i = 0; i < 16; ++i) numbers[i] = static_cast<float>(local.m[i / 4][i % 4]);
            m_tree.Member(NodeAt(index), "matrix") = m_tree.MakeNumbers(numbers);
            return;
        }
        const auto write = [&](std::string_view name, std::initializer_list<float> values,
                               std::initializer_list<float> neutral) {
            if (std::equal(values.begin(), values.end(), neutral.begin())) return;
            const std::vector<float> numbers(values);
            m_tree.Member(NodeAt(index), name) = m_tree.MakeNumbers(numbers);
        };
        write("translation", {parts.t.x, parts.t.y, parts.t.z}, {0, 0, 0});
        write("rotation", {parts.q.x, parts.q.y, parts.q.z, parts.q.w}, {0, 0, 0, 1});
        write("scale", {parts.k.x * parts.f, parts.k.y * parts.f, parts.k.z * parts.f}, {1, 1, 1});
    }

    void WriteName(const ExportNode& record, std::size_t index) {
        std::string name;
        if (record.szName != nullptr) {
            name = kernix::ToUtf8(kernix::ToUtf16(record.szName));  // bytes that are no text become text
        } else if (record.wszName != nullptr) {
            name = kernix::ToUtf8(record.wszName);
        } else {
            return;
        }
        if (name.empty()) {
            NodeAt(index).EraseMember("name");
        } else {
            m_tree.Member(NodeAt(index), "name") = m_tree.MakeString(name);
        }
    }

    // The records stand where these would move their objects.
    void ErasePivots(std::size_t index) {
        Json* extensions = NodeAt(index).Find("extensions");
        Json* own = extensions != nullptr ? extensions->Find("ZR_scene") : nullptr;
        if (own == nullptr) return;
        for (const std::string_view name : {"pivot", "pivotGroup", "objectOffset"}) own->EraseMember(name);
        if (own->Members().empty()) extensions->EraseMember("ZR_scene");
        if (extensions->Members().empty()) NodeAt(index).EraseMember("extensions");
    }

    void WriteTarget(const ExportNode& record, std::size_t index) {
        Json& extensions = m_tree.Member(NodeAt(index), "extensions");
        if (!extensions.IsObject()) extensions = JsonTree::MakeObject();
        Json& own = m_tree.Member(extensions, "ZR_scene");
        if (!own.IsObject()) own = JsonTree::MakeObject();
        m_tree.Member(own, "target") = m_tree.MakeIndex(m_index[record.pTarget]);
        m_document.UseExtension("ZR_scene", false);
    }

    void WriteRoots() {
        Json roots = JsonTree::MakeArray();
        for (ExportNode* root : vl::ArrayOf<ExportNode*>(m_tool->m_pRoots)) {
            m_tree.Append(roots, m_tree.MakeIndex(m_index[root]));
        }
        if (m_document.Elements(Kind::kScene).empty()) {
            m_document.Append(Kind::kScene, JsonTree::MakeObject());
            m_tree.Member(m_document.Root(), "scene") = m_tree.MakeIndex(0);
        }
        const std::size_t scene = gltf::IndexMember(m_document.Root(), "scene", 0);
        m_tree.Member(m_document.Elements(Kind::kScene)[scene], "nodes") = roots;
    }

    // A skin follows the record that stands where its joint stood: below a pivot that was split off.
    void MoveJoints() {
        std::unordered_map<std::size_t, std::size_t> moved;
        for (ExportNode* record : AllRecords(m_tool)) {
            kernix::NodeModel* node = ModelOf(record->pNode);
            if (node == nullptr || node->m_source < 0 || record->pSourceNode != nullptr) continue;
            const bool belowStaticPivot =
                record->pSplit != nullptr && (record->pSplit->dwFlags & NF_STATICPIVOT) != 0;
            const bool belowPivotGroup =
                (record->dwFlags & NF_PIVOT) != 0 && (record->dwFlags & NF_SPLIT) == 0;
            if (belowStaticPivot || belowPivotGroup)
                moved[static_cast<std::size_t>(node->m_source)] = m_index[record];
        }
        if (moved.empty()) return;
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

    void DeleteRejected() {
        std::vector<kernix::NodeModel*> rejected;
        for (auto* node : vl::ArrayOf<vl::zr::Node*>(m_loaded.Scene().m_pNodes)) {
            if (m_exported.count(ModelOf(node)) == 0) rejected.push_back(ModelOf(node));
        }
        for (kernix::NodeModel* node : rejected) node->Delete(0);
    }

    LoadedScene& m_loaded;
    gltf::Document& m_document;
    JsonTree& m_tree;
    const Tool& m_tool;
    const ExportOptions& m_options;
    std::unordered_map<const ExportNode*, std::size_t> m_index;  // node of each record
    std::unordered_map<std::size_t, std::size_t> m_objectMoved;  // from node to node
    std::unordered_map<const kernix::NodeModel*, ExportNode*> m_exported;
    std::unordered_map<const kernix::NodeModel*, ExportNode*> m_carrier;  // of each node's object
};

}  // namespace

std::vector<std::size_t> WriteRecordNodes(LoadedScene& loaded, const Tool& tool,
                                          const ExportOptions& options) {
    return NodeWriter(loaded, tool, options).Run();
}

bool SameStructure(const Tool& a, const Tool& b) {
    const vl::ArrayOf<ExportNode*> left = AllRecords(a);
    const vl::ArrayOf<ExportNode*> right = AllRecords(b);
    if (left.Count() != right.Count()) return false;
    std::unordered_map<const ExportNode*, const ExportNode*> partner;
    for (int i = 0; i < left.Count(); ++i) {
        const ExportNode& l = *left[i];
        const ExportNode& r = *right[i];
        if (l.pNode != r.pNode || l.pSourceNode != r.pSourceNode || l.dwFlags != r.dwFlags) return false;
        partner[&l] = &r;
    }
    for (int i = 0; i < left.Count(); ++i) {
        const ExportNode* parent = left[i]->pParent;
        if ((parent != nullptr ? partner[parent] : nullptr) != right[i]->pParent) return false;
    }
    return true;
}

bool KeysFit(const Tool& keys, const Tool& records) {
    std::unordered_map<const vl::zr::Node*, const ExportNode*> places;
    for (const ExportNode* record : AllRecords(records)) {
        if (record->pController != nullptr) places[record->pSourceNode] = record;
    }
    for (const ExportNode* record : AllRecords(keys)) {
        if (record->pController == nullptr) continue;
        const auto found = places.find(record->pSourceNode);
        if (found == places.end() || (found->second->pParent == nullptr) != (record->pParent == nullptr))
            return false;
    }
    return true;
}

}  // namespace zr
