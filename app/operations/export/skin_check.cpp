// SPDX-License-Identifier: MIT
#include "app/operations/export/skin_check.h"

#include <string_view>
#include <vector>

#include "app/scene/moved_members.h"
#include "base/text.h"

namespace zr {

using gltf::Json;
using gltf::Kind;

namespace {

std::string_view OptionsToBlame(const ExportOptions& options) {
    const bool keepsBones = options.Has(vl::tk::kExportBones) || options.Has(vl::tk::kKeepAllNodes);
    return keepsBones ? "--chosen-only" : "--no-bones with --drop-empty";
}

}  // namespace

void CheckSkins(const gltf::Document& document, const ExportOptions& options, DocumentChanges& changes) {
    const std::vector<bool>& gone = changes.removal[gltf::Ordinal(Kind::kNode)];
    const auto skins = document.Elements(Kind::kSkin);
    const auto nodes = document.Elements(Kind::kNode);
    std::vector<bool> showsMesh(nodes.size(), true);
    for (const DroppedMembers& dropped : changes.nodes->dropped)
        if (dropped.members.front() == kMeshMembers.front()) showsMesh[dropped.node] = false;
    std::vector<bool> isUsed(skins.size(), false);
    for (std::size_t i = 0; i < nodes.size(); ++i)
        if (!gone[i] && showsMesh[i] && nodes[i].Find("skin") != nullptr)
            isUsed[gltf::IndexMember(nodes[i], "skin")] = true;
    std::vector<bool>& goneSkins = changes.removal[gltf::Ordinal(Kind::kSkin)];
    goneSkins.resize(skins.size(), false);
    for (std::size_t i = 0; i < skins.size(); ++i) {
        const auto joints = skins[i].Find("joints")->Items();
        for (std::size_t k = 0; k < joints.size(); ++k) {
            const std::size_t joint = *joints[k].Index();
            if (!gone[joint]) continue;
            if (isUsed[i])
                document.Fail(gltf::ErrorKind::kReference, Join("/skins/", i, "/joints/", k),
                              Join(OptionsToBlame(options), " leaves out node ", joint,
                                   ", which a remaining skin needs"));
            goneSkins[i] = true;
        }
    }
}

}  // namespace zr
