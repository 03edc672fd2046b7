// SPDX-License-Identifier: MIT
#include "app/operations/export/record_names.h"

#include <unordered_map>

#include "gltf/json.h"
#include "host/material_name.h"
#include "kernix/utf.h"

namespace zr {
namespace {

using gltf::Json;
using gltf::JsonTree;

std::string NodePath(const kernix::NodeModel* node) {
    std::vector<const kernix::NodeModel*> line;
    for (; node != nullptr; node = node->GetParent()) line.push_back(node);
    std::string path;
    for (auto it = line.rbegin(); it != line.rend(); ++it) path += "/" + (*it)->GetNameText();
    return path;
}

}  // namespace

std::string NameOf(const ExportNode& record) {
    if (record.szName != nullptr)
        return kernix::ToUtf8(kernix::ToUtf16(record.szName));  // makes invalid bytes valid
    if (record.wszName != nullptr) return kernix::ToUtf8(record.wszName);
    return record.pNode != nullptr ? static_cast<kernix::NodeModel*>(record.pNode)->GetNameText()
                                   : std::string();
}

std::vector<std::pair<std::size_t, std::string>> MaterialNamesOf(const LoadedScene& loaded,
                                                                 const Tool& tool) {
    std::vector<std::pair<std::size_t, std::string>> names;
    std::unordered_map<const vl::zr::Material*, std::size_t> indices;
    const auto& materials = loaded.Parts().materials;
    for (std::size_t i = 0; i < materials.size(); ++i) indices[materials[i]] = i;
    for (const MaterialName* name : vl::ArrayOf<MaterialName*>(tool->m_pMaterialNames)) {
        const auto found = indices.find(name->pMaterial);
        if (found == indices.end()) continue;
        const std::u16string text = name->wszName != nullptr ? name->wszName : kernix::ToUtf16(name->szName);
        names.emplace_back(found->second, kernix::ToUtf8(text));
    }
    return names;
}

std::string RenameMap(LoadedScene& loaded, const Tool& tool) {
    constexpr std::uint64_t kCopies = 3;  // of a path: as it is made, in the tree and in the text
    JsonTree tree;
    Json list = JsonTree::MakeArray();
    for (const ExportNode* record : AllRecords(tool)) {
        const auto* node = static_cast<kernix::NodeModel*>(record->pNode);
        if (node == nullptr) continue;
        const std::string path = NodePath(node);
        loaded.Document().Claim(kCopies * path.size(), "/nodes");
        Json entry = JsonTree::MakeObject();
        tree.Member(entry, "path") = tree.MakeString(path);
        tree.Member(entry, "name") = tree.MakeString(node->GetNameText());
        tree.Member(entry, "exported") = tree.MakeString(NameOf(*record));
        tree.Append(list, entry);
    }
    return gltf::WriteJson(list, true) + "\n";
}

}  // namespace zr
