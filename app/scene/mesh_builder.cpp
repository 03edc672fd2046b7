// SPDX-License-Identifier: MIT
#include "app/scene/mesh_builder.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

#include "gltf/accessor.h"

namespace zr {
namespace {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

enum Mode : std::uint32_t {
    kPoints,
    kLines,
    kLineLoop,
    kLineStrip,
    kTriangles,
    kTriangleStrip,
    kTriangleFan
};

constexpr std::string_view kCompression = "KHR_draco_mesh_compression";

// Of KHR_materials_variants; extensions: those of a primitive, or null.
std::span<const Json> Mappings(const Json* extensions) {
    const Json* variants = extensions != nullptr ? extensions->Find("KHR_materials_variants") : nullptr;
    const Json* mappings = variants != nullptr ? variants->Find("mappings") : nullptr;
    return mappings != nullptr ? mappings->Items() : std::span<const Json>();
}

}  // namespace

bool IsBlended(const Json& material) {
    const Json* mode = material.Find("alphaMode");
    return mode != nullptr && mode->String() == "BLEND";
}

// A mesh that is stored only in compressed form is represented by the two corners of its bounds, so that it
// has data; what it equals is decided by where its data is stored.
std::vector<float> MeshBuilder::PositionsOf(const Part& part) const {
    if (part.positions == kNone) return {};
    const gltf::Document& document = m_document;
    if (!part.isCompressed && gltf::HasData(document, part.positions))
        return gltf::ReadFloats(document, part.positions);
    std::vector<float> corners;
    const Json& json = document.Elements(Kind::kAccessor)[part.positions];
    for (std::string_view bound : {"min", "max"}) {
        const Json* values = json.Find(bound);
        for (std::size_t i = 0; i < 3; ++i)
            corners.push_back(values != nullptr ? static_cast<float>(values->Items()[i].Number()) : 0.0F);
    }
    return corners;
}

MeshBuilder::MeshBuilder(const gltf::Document& document, const std::vector<kernix::MaterialModel*>& materials,
                         ContentIds& ids)
    : m_document(document),
      m_materials(materials),
      m_ids(ids),
      m_shapes(document.Elements(Kind::kMesh).size()),
      m_skins(document.Elements(Kind::kSkin).size(), kNone) {
    m_lists.reserve(m_shapes.size());
}

void MeshBuilder::AddFormat(const Part& part, Words& format) {
    const auto addVertexData = [&](const Json& accessors, std::string_view but) {
        for (const gltf::JsonMember& member : accessors.Members()) {
            if (member.Name() == but) continue;
            format.push_back(m_ids.Text(member.Name()));
            format.push_back(m_ids.Accessor(*member.value.Index()));
        }
        format.push_back(kNone);
    };
    const auto targets = part.targets != nullptr ? part.targets->Items() : std::span<const Json>();
    format.push_back(part.mode);
    addVertexData(*part.attributes, "POSITION");
    format.push_back(static_cast<std::uint32_t>(targets.size()));
    for (const Json& target : targets) addVertexData(target, {});
    if (part.extensions == nullptr) return format.push_back(kNone);
    // Compressed data is compared by its view unless it was decoded, materials of variants by their content.
    for (const gltf::JsonMember& extension : part.extensions->Members()) {
        if (extension.Name() == kCompression && !part.isCompressed) continue;
        format.push_back(m_ids.Text(extension.Name()));
        format.push_back(m_ids.Text(m_ids.Canonical(extension.value)));
    }
    format.push_back(kNone);
    for (const Json& mapping : Mappings(part.extensions)) {
        const std::size_t material = IndexMember(mapping, "material");
        format.push_back(m_ids.Text(m_ids.Canonical(m_document.Elements(Kind::kMaterial)[material])));
    }
}

// Meshes that use the same materials share their list.
void MeshBuilder::SetUses(const std::vector<Part>& parts, Shape& shape) {
    Words key;
    const auto add = [&](std::size_t material) {
        if (m_materials[material] != nullptr) key.push_back(static_cast<std::uint32_t>(material));
        shape.isBlended = shape.isBlended || IsBlended(m_document.Elements(Kind::kMaterial)[material]);
    };
    for (const Part& part : parts) {
        if (part.material != nullptr) add(*part.material->Index());
        for (const Json& mapping : Mappings(part.extensions)) add(IndexMember(mapping, "material"));
    }
    const auto [number, isNew] = m_usesKeys.Intern(key);
    if (isNew) {
        m_uses.push_back(std::make_shared<kernix::MaterialUses>());
        for (const std::uint32_t material : key) m_uses.back()->Add(m_materials[material]);
    }
    shape.uses = number;
}

MeshBuilder::Part MeshBuilder::PartOf(const Json& primitive) {
    Part part;
    for (const gltf::JsonMember& member : primitive.Members()) {
        const std::string_view name = member.Name();
        if (name == "attributes")
            part.attributes = &member.value;
        else if (name == "indices")
            part.indices = &member.value;
        else if (name == "material")
            part.material = &member.value;
        else if (name == "mode")
            part.mode = static_cast<std::uint32_t>(*member.value.Index());
        else if (name == "targets")
            part.targets = &member.value;
        else if (name == "extensions")
            part.extensions = &member.value;
    }
    if (const Json* positions = part.attributes->Find("POSITION")) {
        part.positions = static_cast<std::uint32_t>(*positions->Index());
        part.positionsId = m_ids.Accessor(part.positions);
    }
    if (part.indices != nullptr) part.indicesId = m_ids.Accessor(*part.indices->Index());
    if (part.material != nullptr) {
        const kernix::MaterialModel* material = m_materials[*part.material->Index()];
        if (material != nullptr) part.attribute = material->GetId();
    }
    const bool isDecoded = part.positions != kNone && m_document.SuppliedBytes(part.positions).has_value();
    part.isCompressed =
        !isDecoded && part.extensions != nullptr && part.extensions->Find(kCompression) != nullptr;
    return part;
}

// A part that a mesh repeats, as hostile ones do by the thousand, is kept once; the repetition becomes part
// of the format value.
void MeshBuilder::DropRepeated(std::vector<Part>& parts, Words& format) {
    if (parts.size() < 2) return;
    Interner seen;
    std::erase_if(parts, [&](const Part& part) {
        const std::uint32_t words[] = {part.positionsId, part.isCompressed, part.indicesId, part.mode,
                                       part.attribute};
        const auto [number, isNew] = seen.Intern(words);
        if (!isNew) format.push_back(number);
        return !isNew;
    });
}

// Empty for a part whose positions must be converted.
std::span<const float> MeshBuilder::StoredPositions(const Part& part) const {
    if (part.positions == kNone || part.isCompressed) return {};
    return gltf::StoredFloats(m_document, part.positionsId);
}

// Vertices that several parts share are stored once; `sources` receives the number of each part's vertices.
MeshBuilder::Vertices MeshBuilder::VerticesOf(const std::vector<Part>& parts, Words& sources) {
    // Most meshes have one part, whose vertices can stay where they are.
    const auto stored = parts.size() == 1 ? StoredPositions(parts.front()) : std::span<const float>();
    if (!stored.empty()) {
        sources = {0};
        return {nullptr, stored, {0, static_cast<std::uint32_t>(stored.size() / 3)}};
    }
    Interner seen;
    Words key;
    std::vector<const Part*> distinct;
    for (const Part& part : parts) {
        const std::uint32_t words[] = {part.positionsId, part.isCompressed};
        const auto [number, isNew] = seen.Intern(words);
        sources.push_back(number);
        if (!isNew) continue;
        key.insert(key.end(), std::begin(words), std::end(words));
        distinct.push_back(&part);
    }
    const auto [number, isNew] = m_verticesKeys.Intern(key);
    if (!isNew) return m_vertices[number];
    Vertices vertices;
    std::vector<float> all;
    for (const Part* part : distinct) {
        vertices.ends.push_back(static_cast<std::uint32_t>(all.size() / 3));
        std::vector<float> positions = PositionsOf(*part);
        if (all.empty())
            all = std::move(positions);
        else
            all.insert(all.end(), positions.begin(), positions.end());
    }
    vertices.ends.push_back(static_cast<std::uint32_t>(all.size() / 3));
    vertices.positions = std::make_shared<const kernix::Positions>(std::move(all));
    m_vertices.push_back(std::move(vertices));
    return m_vertices.back();
}

// Converts the vertex order of a primitive to triangles or lines.
void MeshBuilder::AddInOrder(std::uint32_t mode, const Words& indices, std::uint32_t first, Order& order) {
    const auto at = [&](std::size_t i) { return first + indices[i]; };
    const auto triangle = [&](std::size_t a, std::size_t b, std::size_t c) {
        order.faces.insert(order.faces.end(), {at(a), at(b), at(c)});
    };
    const auto pair = [&](std::size_t a, std::size_t b) {
        order.lines.insert(order.lines.end(), {at(a), at(b)});
    };
    const std::size_t count = indices.size();
    switch (mode) {
        case kTriangles:
            order.faces.reserve(order.faces.size() + count);
            for (std::size_t i = 0; i + 2 < count; i += 3) triangle(i, i + 1, i + 2);
            break;
        case kTriangleStrip:
            // Every other triangle of a strip is reversed.
            for (std::size_t i = 0; i + 2 < count; ++i) triangle(i, i + 1 + i % 2, i + 2 - i % 2);
            break;
        case kTriangleFan:
            for (std::size_t i = 1; i + 1 < count; ++i) triangle(i, i + 1, 0);
            break;
        case kLines:
            for (std::size_t i = 0; i + 1 < count; i += 2) pair(i, i + 1);
            break;
        case kLineLoop:
        case kLineStrip:
            for (std::size_t i = 0; i + 1 < count; ++i) pair(i, i + 1);
            if (mode == kLineLoop && count > 1) pair(count - 1, 0);
            break;
        default:
            break;
    }
}

// Likewise when only the number of vertices is known, not their order.
void MeshBuilder::AddUnread(std::uint32_t mode, std::size_t count, Order& order) {
    const auto add = [](std::uint32_t& total, std::size_t more) {
        constexpr std::size_t kMost = 0x7FFFFFFF;
        total = static_cast<std::uint32_t>(std::min(total + std::min(more, kMost), kMost));
    };
    if (mode == kLines) add(order.unreadLines, count / 2);
    if (mode == kLineLoop && count > 1) add(order.unreadLines, count);
    if (mode == kLineStrip && count > 1) add(order.unreadLines, count - 1);
    if (mode == kTriangles) add(order.unreadFaces, count / 3);
    if (mode > kTriangles && count > 2) add(order.unreadFaces, count - 2);
}

bool MeshBuilder::IsReadable(const Part& part) const {
    const std::size_t ordering = part.indices != nullptr ? *part.indices->Index() : part.positions;
    return !part.isCompressed && gltf::HasData(m_document, part.positions) &&
           gltf::HasData(m_document, ordering);
}

// `first`: the index in the mesh of the first of the part's `count` vertices.
void MeshBuilder::AddLists(const Part& part, std::uint32_t first, std::size_t count, Order& order) const {
    if (part.positions == kNone) return;
    const std::size_t ordering = part.indices != nullptr ? *part.indices->Index() : part.positions;
    if (!IsReadable(part)) return AddUnread(part.mode, gltf::Describe(m_document, ordering).count, order);
    Words indices;
    if (part.indices != nullptr) {
        indices = gltf::ReadIntegers(m_document, ordering);
    } else {
        indices.resize(count);
        std::iota(indices.begin(), indices.end(), 0U);
    }
    const bool isAll = part.mode == kTriangles && first == 0 && order.faces.empty();
    if (isAll && indices.size() % 3 == 0)
        order.faces = std::move(indices);
    else
        AddInOrder(part.mode, indices, first, order);
}

// Returns the number of faces of each part.
MeshBuilder::Words MeshBuilder::SetLists(const std::vector<Part>& parts, const Vertices& vertices,
                                         const Words& sources, kernix::MeshGeometry& geometry) const {
    Order order;
    Words faces;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::uint32_t first = vertices.ends[sources[i]];
        const std::size_t before = order.faces.size();
        AddLists(parts[i], first, vertices.ends[sources[i] + 1] - first, order);
        faces.push_back(static_cast<std::uint32_t>((order.faces.size() - before) / 3));
    }
    geometry.faces = kernix::MakeFaces(std::move(order.faces));
    geometry.secondary = kernix::MakeLines(std::move(order.lines));
    geometry.unreadFaces = order.unreadFaces;
    geometry.unreadSecondary = order.unreadLines;
    return faces;
}

// Copies of a shape at other places, and grids, differ in their vertices but not in the order of these.
void MeshBuilder::SetSharedLists(const Part& part, kernix::MeshGeometry& geometry) {
    const std::uint32_t key[] = {part.indicesId, part.mode};
    const auto [number, isNew] = m_sharedListsKeys.Intern(key);
    if (isNew) {
        Order order;
        AddLists(part, 0, 0, order);
        m_sharedLists.push_back(
            {kernix::MakeFaces(std::move(order.faces)), kernix::MakeLines(std::move(order.lines))});
    }
    geometry.faces = m_sharedLists[number].faces;
    geometry.secondary = m_sharedLists[number].lines;
}

std::uint32_t MeshBuilder::ListsOf(const std::vector<Part>& parts) {
    Words key;
    for (const Part& part : parts)
        key.insert(key.end(), {part.positionsId, part.isCompressed, part.indicesId, part.mode});
    const auto [number, isNew] = m_listsKeys.Intern(key);
    if (!isNew) return number;
    Words sources;
    const Vertices vertices = VerticesOf(parts, sources);
    m_lists.push_back(std::make_shared<kernix::MeshGeometry>());
    kernix::MeshGeometry& geometry = *m_lists.back();
    geometry.positions = vertices.positions;
    geometry.outerPositions = vertices.outerPositions;
    const Part& first = parts.front();
    if (parts.size() == 1 && first.indices != nullptr && first.positions != kNone && IsReadable(first)) {
        SetSharedLists(first, geometry);
    } else {
        Words faces = SetLists(parts, vertices, sources, geometry);
        if (parts.size() != 1) m_faces.emplace(number, std::move(faces));
    }
    return number;
}

std::uint32_t MeshBuilder::AttributesOf(const std::vector<Part>& parts, std::uint32_t lists) {
    const kernix::MeshGeometry& geometry = *m_lists[lists];
    const auto all = static_cast<std::uint32_t>(geometry.faces ? geometry.faces->Count() : 0);
    const auto faces = m_faces.find(lists);
    const auto count = [&](std::size_t part) { return faces == m_faces.end() ? all : faces->second[part]; };
    Words key;
    for (std::size_t i = 0; i < parts.size(); ++i) key.insert(key.end(), {count(i), parts[i].attribute});
    const auto [number, isNew] = m_attributesKeys.Intern(key);
    if (!isNew) return number;
    auto attributes = std::make_shared<kernix::FaceAttributes>();
    attributes->reserve(all);
    for (std::size_t i = 0; i < parts.size(); ++i)
        attributes->insert(attributes->end(), count(i), parts[i].attribute);
    m_attributes.push_back(std::move(attributes));
    return number;
}

const MeshBuilder::Shape& MeshBuilder::ShapeOf(std::size_t mesh) {
    Shape& shape = m_shapes[mesh];
    if (shape.lists != kNone) return shape;
    const Json& json = m_document.Elements(Kind::kMesh)[mesh];
    std::vector<Part> parts;
    Words format;
    const auto primitives = json.Find("primitives")->Items();
    format.push_back(static_cast<std::uint32_t>(primitives.size()));
    for (const Json& primitive : primitives) {
        parts.push_back(PartOf(primitive));
        AddFormat(parts.back(), format);
    }
    for (std::string_view name : {"weights", "extensions"}) {
        const Json* member = json.Find(name);
        format.push_back(member != nullptr ? m_ids.Text(m_ids.Canonical(*member)) : kNone);
    }
    SetUses(parts, shape);
    DropRepeated(parts, format);
    shape.format = m_formats.Intern(format).number;
    const std::uint32_t lists = ListsOf(parts);
    shape.attributes = AttributesOf(parts, lists);
    shape.lists = lists;
    return shape;
}

bool MeshBuilder::Shows(const NodeParts& node, Meshes meshes) {
    if (meshes == Meshes::kAll) return true;
    const kernix::MeshGeometry& geometry = *m_lists[ShapeOf(*node.mesh->Index()).lists];
    return geometry.HasFaces() || (meshes == Meshes::kFacesOrLines && geometry.HasSecondary());
}

std::uint32_t MeshBuilder::SkinFormat(std::size_t skin) {
    std::uint32_t& known = m_skins[skin];
    if (known != kNone) return known;
    const Json& json = m_document.Elements(Kind::kSkin)[skin];
    Words format;
    for (const Json& joint : json.Find("joints")->Items())
        format.push_back(static_cast<std::uint32_t>(*joint.Index()));
    const Json* binds = json.Find("inverseBindMatrices");
    format.push_back(binds != nullptr ? m_ids.Accessor(*binds->Index()) : kNone);
    return known = m_skinFormats.Intern(format).number;
}

vl::zr::Object3D* MeshBuilder::Build(const NodeParts& node, const std::string& motion) {
    const Shape& shape = ShapeOf(*node.mesh->Index());
    const auto text = [&](const Json* json) {
        return json != nullptr ? m_ids.Text(m_ids.Canonical(*json)) : kNone;
    };
    const std::uint32_t format[] = {shape.format,
                                    node.skin != nullptr ? SkinFormat(*node.skin->Index()) : kNone,
                                    motion.empty() ? kNone : m_ids.Text(motion),
                                    text(node.weights),
                                    text(node.extensions),
                                    text(node.camera)};
    return new kernix::MeshModel(m_lists[shape.lists], m_attributes[shape.attributes], m_uses[shape.uses],
                                 m_nodeFormats.Intern(format).number);
}

}  // namespace zr
