// SPDX-License-Identifier: MIT
#include "app/operations/export/split_aims.h"

#include <unordered_map>
#include <vector>

#include "app/scene/moved_members.h"

namespace zr {
namespace {

using gltf::IndexMember;
using gltf::Json;
using gltf::JsonTree;
using gltf::Kind;

constexpr std::string_view kCamera = kCameraMembers.front();
constexpr std::string_view kLight = kLightMembers.front();

class AimSplitter {
public:
    AimSplitter(gltf::Document& document, const ExportOptions& options)
        : m_document(document), m_options(options), m_isJoint(document.Elements(Kind::kNode).size(), false) {
        for (const Json& skin : document.Elements(Kind::kSkin)) {
            const Json* joints = skin.Find("joints");
            if (joints == nullptr) continue;
            for (const Json& joint : joints->Items()) m_isJoint[*joint.Index()] = true;
        }
    }

    void Run() {
        std::unordered_map<std::size_t, std::size_t> cameras, lights;
        for (std::size_t node = 0; node < m_isJoint.size(); ++node) {
            if (!Aims(Node(node)) || !SharesItsNode(node) || IsSplitAnyway(Node(node))) continue;
            const bool isCamera = Node(node).Find(kCamera) != nullptr;
            (isCamera ? cameras : lights)[node] = Split(node, isCamera ? kCamera : kLight);
        }
        FollowMembers(m_document, kCameraMembers, cameras);
        FollowMembers(m_document, kLightMembers, lights);
    }

private:
    Json& Node(std::size_t index) { return m_document.Elements(Kind::kNode)[index]; }

    // A node with several objects counts as a mesh first, then as a camera, then as a light.
    bool Aims(const Json& node) const {
        if (FindMember(node, kTargetMember) == nullptr || node.Find("mesh") != nullptr) return false;
        if (node.Find(kCamera) != nullptr) return m_options.Has(vl::tk::kExportCameras);
        const Json* light = FindMember(node, kLight);
        if (light == nullptr || !m_options.Has(vl::tk::kExportLights)) return false;
        const Json& shown = m_document.Elements(Kind::kLight)[IndexMember(*light, "light")];
        return shown.Find("type")->String() != "point";
    }

    bool SharesItsNode(std::size_t index) {
        const Json& node = Node(index);
        return node.Find("children") != nullptr || m_isJoint[index] ||
               (node.Find(kCamera) != nullptr && FindMember(node, kLight) != nullptr);
    }

    // An object with a pivot or offset of its own gets its own node in any case.
    static bool IsSplitAnyway(const Json& node) {
        const Json* group = FindMember(node, kPivotGroupMember);
        const bool hasOwnPivot =
            FindMember(node, kPivotMember) != nullptr && (group == nullptr || !group->Bool());
        return hasOwnPivot || FindMember(node, kObjectOffsetMember) != nullptr;
    }

    std::size_t Split(std::size_t index, std::string_view object) {
        const std::string_view members[] = {object, kTargetMember};
        const std::size_t child = *SplitMembers(m_document, index, members);
        JsonTree& tree = m_document.Tree();
        Json list = JsonTree::MakeArray();
        tree.Append(list, tree.MakeIndex(child));
        if (const Json* children = Node(index).Find("children"))
            for (const Json& other : children->Items()) tree.Append(list, other);
        tree.Member(Node(index), "children") = list;
        return child;
    }

    gltf::Document& m_document;
    const ExportOptions& m_options;
    std::vector<bool> m_isJoint;
};

}  // namespace

void SplitAims(gltf::Document& document, const ExportOptions& options) {
    if (!options.Has(vl::tk::kGroupSplit) && !options.Has(vl::tk::kGeometrySplit))
        AimSplitter(document, options).Run();
}

}  // namespace zr
