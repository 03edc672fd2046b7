// SPDX-License-Identifier: MIT
#include "app/operations/inspect/inspect_document.h"

#include "app/operations/inspect/inspection.h"

namespace zr::inspect {

std::vector<Table> InspectDocument(gltf::Document& document) {
    Inspection in(document);
    for (const auto add : {AddSummary, AddScenes, AddNodes, AddMeshes, AddMaterials, AddTextures, AddSkins,
                           AddCameras, AddLights, AddAnimations, AddExtensions, AddBytes})
        add(in);
    std::erase_if(in.tables, [](const Table& table) { return table.rows.empty(); });
    WarnOfVertices(in);
    Table& table = in.Add("warnings", {"place", "warning"});
    for (const auto& [place, text] : in.warnings) table.rows.push_back({place, text});
    return std::move(in.tables);
}

}  // namespace zr::inspect
