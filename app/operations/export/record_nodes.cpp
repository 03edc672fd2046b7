// SPDX-License-Identifier: MIT
#include "app/operations/export/record_nodes.h"

#include <unordered_map>

#include "app/operations/export/record_names.h"
#include "app/operations/export/record_rest.h"
#include "app/operations/export/record_scenes.h"
#include "app/scene/moved_members.h"

namespace zr {
namespace {

// If the scale axes are rotated by more than this angle (radians), the transform needs a matrix.
constexpr float kTurned = 1e-4f;

NodeTransform TransformOf(const ExportNode& record, const ExportOptions& options) {
    const vl::Matrix4<double> local = RestLocal(record, options);
    vl::AffineParts parts;
    local.AffineDecompose(parts);
    const bool moves = record.pController != nullptr;
    if (!moves && vl::AngleAxis(parts.u).angle > kTurned) {
        std::array<float, 16> numbers;
        for (std::size_t i = 0; i < 16; ++i) numbers[i] = static_cast<float>(local.m[i / 4][i % 4]);
        return numbers;
    }
    return TransformParts{{parts.t.x, parts.t.y, parts.t.z},
                          {parts.q.x, parts.q.y, parts.q.z, parts.q.w},
                          {parts.k.x * parts.f, parts.k.y * parts.f, parts.k.z * parts.f}};
}

class Nodes {
public:
    Nodes(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options)
        : m_loaded(loaded), m_tool(tool), m_options(options), m_scenes(loaded, tool) {}

    RecordNodes Run() && {
        PlaceRecords();
        for (const auto& node : m_loaded.Scene().AllNodes()) MoveObject(*node);
        m_nodes.changes.nodes.reserve(m_nodes.indices.size());
        std::size_t at = 0;
        for (const ExportNode* record : AllRecords(m_tool)) AddNode(*record, m_nodes.indices[at++]);
        ListRoots();
        MoveJoints();
        RejectNodes();
        m_nodes.changes.exchangesAxes = m_options.Has(vl::tk::kFlipAxes);
        return std::move(m_nodes);
    }

private:
    // Source nodes keep their index; other records, such as that of the view camera, get new ones.
    void PlaceRecords() {
        std::size_t next = m_loaded.Document().Elements(gltf::Kind::kNode).size();
        m_isExported.resize(next, false);
        m_carriers.resize(next, kNone);
        m_nodes.indices.reserve(next);
        for (const ExportNode* record : AllRecords(m_tool)) {
            const auto source = m_loaded.IndexOf(record->pSourceNode);
            const std::size_t index = source ? *source : next++;
            m_nodes.indices.push_back(index);
            m_index[record] = index;
            if (source) m_isExported[*source] = true;
            const auto shown = m_loaded.IndexOf(record->pNode);
            if (!shown) continue;
            if ((record->dwFlags & NF_GEOMETRY) != 0 && m_carriers[*shown] == kNone)
                m_carriers[*shown] = index;
            if (!source && StandsBelowPivot(*record)) m_belowPivot.insert({*shown, index});
        }
    }

    // Moves a node's object to the record that carries it or, without one, to the record in the node's place,
    // and drops what the options leave out.
    void MoveObject(const kernix::NodeModel& node) {
        const auto from = m_loaded.IndexOf(&node);
        if (!from || !m_isExported[*from]) return;
        if (!HasObject(m_loaded.Document().Elements(gltf::Kind::kNode)[*from])) return;
        const bool isCarried = m_carriers[*from] != kNone;
        const bool isBare = !isCarried && m_options.Has(vl::tk::kSkeletonOnly) &&
                            (node.m_dwFlags & vl::zr::kNodeSkeleton) != 0;
        const auto shows = [&](int kind, bool besideOthers) {
            const bool isItsObject = node.m_pObject != nullptr && node.m_pObject->IsKindOf(kind);
            return !isBare && (isItsObject ? isCarried : besideOthers);
        };
        Keep(*from, kMeshMembers, shows(vl::zr::kKindRenderable, false));
        Keep(*from, kCameraMembers, shows(vl::zr::kKindCamera, m_options.Has(vl::tk::kExportCameras)));
        Keep(*from, kLightMembers, shows(vl::zr::kKindLight, m_options.Has(vl::tk::kExportLights)));
        const auto below = m_belowPivot.find(*from);
        const std::size_t to = isCarried                     ? m_carriers[*from]
                               : below != m_belowPivot.end() ? below->second
                                                             : *from;
        if (to != *from) m_nodes.changes.movedObjects.push_back({*from, to});
    }

    void ListRoots() {
        const NodeLayout& layout = m_loaded.Parts().layout;
        const auto records = m_scenes.Roots();
        for (std::size_t scene = 0; scene < records.size(); ++scene) {
            if (!layout.isWhole && scene != layout.shown) continue;
            SceneRoots roots{scene, {}};
            for (const ExportNode* record : records[scene]) roots.nodes.push_back(m_index[record]);
            m_nodes.changes.roots.push_back(std::move(roots));
        }
    }

    void Keep(std::size_t node, std::span<const std::string_view> members, bool isKept) {
        const gltf::Json& json = m_loaded.Document().Elements(gltf::Kind::kNode)[node];
        if (isKept || FindMember(json, members.front()) == nullptr) return;
        m_nodes.changes.dropped.push_back({node, members});
        if (members.front() == kMeshMembers.front()) m_nodes.bare.push_back(node);
    }

    void AddNode(const ExportNode& record, std::size_t index) {
        ChangedNode node;
        node.index = index;
        // A transform that did not change stays as it is written in the document.
        if (!m_loaded.IndexOf(record.pSourceNode) || !KeepsRestTransform(record, m_options))
            node.transform = std::make_unique<const NodeTransform>(TransformOf(record, m_options));
        if (record.szName != nullptr || record.wszName != nullptr) node.name = NameOf(record);
        node.dropsPivots = record.vPivot == vl::Vector3<float>();
        if (record.pTarget != nullptr) node.target = m_index[record.pTarget];
        for (const ExportNode* child : vl::ArrayOf<ExportNode*>(record.pChildren))
            if (!m_scenes.IsDetachedLevel(*child)) node.children.push_back(m_index[child]);
        m_nodes.changes.nodes.push_back(std::move(node));
    }

    // An empty level of detail means that nothing is shown at that level: it stays if its node does.
    void RejectNodes() {
        const NodeLayout& layout = m_loaded.Parts().layout;
        std::vector<bool> stays(layout.parents.size(), false);
        for (const std::size_t node : layout.order) {
            if (m_isExported[node]) continue;
            const std::size_t parent = layout.parents[node];
            stays[node] = layout.standsFor[node] != NodeLayout::kNone
                              ? m_isExported[layout.BaseOf(node)]
                              : parent != NodeLayout::kNone && stays[parent];
            if (!stays[node]) m_nodes.rejected.push_back(node);
        }
    }

    // Where a pivot was split off a joint, the record below it is the one in the place of the joint.
    void MoveJoints() {
        for (const auto& [node, index] : m_belowPivot) m_nodes.changes.movedJoints.push_back({node, index});
    }

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    const LoadedScene& m_loaded;
    const Tool& m_tool;
    const ExportOptions& m_options;
    const RecordScenes m_scenes;
    RecordNodes m_nodes;
    std::unordered_map<const ExportNode*, std::size_t> m_index;  // the node of each record
    std::vector<bool> m_isExported;       // by node of the document: whether a record stands for it
    std::vector<std::size_t> m_carriers;  // likewise: the node of the first record that carries its object
    std::unordered_map<std::size_t, std::size_t> m_belowPivot;  // by node: the new node in its old place
};

}  // namespace

RecordNodes NodesOf(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options) {
    return Nodes(loaded, tool, options).Run();
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
