// SPDX-License-Identifier: MIT
#include "app/operations/compare/evaluator.h"
#include "app/operations/inspect/inspection.h"
#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/members.h"

namespace zr::inspect {

using gltf::IndexMember;
using gltf::Json;
using gltf::JsonMember;
using gltf::Kind;

namespace {

struct Content {
    std::size_t vertices = 0, faces = 0;
    std::set<std::string> attributes, forms;
};

void Add(const Inspection& in, const Json& primitive, Content& content) {
    std::size_t count = 0;
    for (const JsonMember& member : primitive.Find("attributes")->Members()) {
        const gltf::AccessorInfo info = gltf::Describe(in.document, *member.value.Index());
        content.attributes.insert(std::string(member.Name()));
        count = info.count;
        if (info.component != gltf::Component::kFloat && member.Name() == "POSITION")
            content.forms.insert("quantized");
    }
    content.vertices += count;
    if (primitive.Find("indices") != nullptr)
        count = gltf::Describe(in.document, IndexMember(primitive, "indices")).count;
    const std::size_t mode = IndexMember(primitive, "mode", 4);
    content.faces += mode == 4 ? count / 3 : mode > 4 && count > 2 ? count - 2 : 0;
    if (gltf::FindExtension(primitive, "KHR_draco_mesh_compression") != nullptr)
        content.forms.insert("Draco");
    if (const Json* positions = primitive.Find("attributes")->Find("POSITION")) {
        const Json& accessor = in.Elements(Kind::kAccessor)[*positions->Index()];
        const std::size_t view = IndexMember(accessor, "bufferView", kNone);
        if (view != kNone && gltf::FindMeshopt(in.Elements(Kind::kBufferView)[view]) != nullptr)
            content.forms.insert("meshopt");
        if (accessor.Find("sparse") != nullptr) content.forms.insert("sparse");
    }
}

}  // namespace

void AddMeshes(Inspection& in) {
    std::vector<std::size_t> uses(in.Elements(Kind::kMesh).size(), 0);
    for (const Json& node : in.Elements(Kind::kNode))
        if (const std::size_t mesh = IndexMember(node, "mesh", kNone); mesh != kNone) ++uses[mesh];
    Table& table = in.Add("meshes", {"mesh", "name", "primitives", "vertices", "faces", "attributes",
                                     "targets", "nodes", "stored", "low", "high"});
    for (std::size_t i = 0; i < uses.size(); ++i) {
        const Json& mesh = in.Elements(Kind::kMesh)[i];
        const auto primitives = mesh.Find("primitives")->Items();
        Content content;
        for (const Json& primitive : primitives) Add(in, primitive, content);
        table.rows.push_back({Count(i), Name(mesh), Count(primitives.size()), Count(content.vertices),
                              Count(content.faces), Listed(content.attributes),
                              Count(compare::TargetCount(mesh)), Count(uses[i]), Listed(content.forms),
                              Low(in.meshBoxes[i]), High(in.meshBoxes[i])});
        if (uses[i] == 0) in.Warn(Join("/meshes/", i), "no node shows it");
    }
}

}  // namespace zr::inspect
