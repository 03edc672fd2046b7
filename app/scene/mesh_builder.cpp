// SPDX-License-Identifier: MIT
#include "app/scene/mesh_builder.h"

#include <numeric>

#include "base/text.h"
#include "gltf/accessor.h"

namespace zr {
namespace {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

enum Mode : std::size_t { kPoints, kLines, kLineLoop, kLineStrip, kTriangles, kTriangleStrip, kTriangleFan };

// Turns the vertex order of a primitive into triangles or pairs.
void AddLists(std::size_t mode, const std::vector<std::uint32_t>& order, std::uint32_t first,
              kernix::MeshGeometry& geometry) {
    const auto at = [&](std::size_t i) { return first + order[i]; };
    const auto triangle = [&](std::size_t a, std::size_t b, std::size_t c) {
        geometry.faceIndices.insert(geometry.faceIndices.end(), {at(a), at(b), at(c)});
    };
    const auto pair = [&](std::size_t a, std::size_t b) {
        geometry.secondaryIndices.insert(geometry.secondaryIndices.end(), {at(a), at(b)});
    };
    const std::size_t count = order.size();
    switch (mode) {
        case kTriangles:
            for (std::size_t i = 0; i + 2 < count; i += 3) triangle(i, i + 1, i + 2);
            break;
        case kTriangleStrip:
            // Every other triangle of a strip is turned over.
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

const Json* Compressed(const Json& primitive) {
    const Json* extensions = primitive.Find("extensions");
    return extensions != nullptr ? extensions->Find("KHR_draco_mesh_compression") : nullptr;
}

}  // namespace

bool IsBlended(const Json& material) {
    const Json* mode = material.Find("alphaMode");
    return mode != nullptr && mode->String() == "BLEND";
}

// A mesh that is stored in compressed form only shows the two corners of its bounds: it holds data, and where
// its data is kept decides what it equals.
std::vector<float> MeshBuilder::Positions(const Json& primitive) const {
    const std::size_t none = m_loaded.m_document.Elements(Kind::kAccessor).size();
    const std::size_t accessor = IndexMember(*primitive.Find("attributes"), "POSITION", none);
    if (accessor == none) return {};
    if (Compressed(primitive) == nullptr && gltf::HasData(m_loaded.m_document, accessor))
        return gltf::ReadFloats(m_loaded.m_document, accessor);
    std::vector<float> corners;
    const Json& json = m_loaded.m_document.Elements(Kind::kAccessor)[accessor];
    for (std::string_view bound : {"min", "max"}) {
        const Json* values = json.Find(bound);
        for (std::size_t i = 0; i < 3; ++i)
            corners.push_back(values != nullptr ? static_cast<float>(values->Items()[i].Number()) : 0.0F);
    }
    return corners;
}

std::string MeshBuilder::FormatOf(const Json& primitive) {
    std::string format = Join("mode ", IndexMember(primitive, "mode", kTriangles), ";");
    for (const gltf::JsonMember& member : primitive.Find("attributes")->Members())
        if (member.Name() != "POSITION")
            format += Join(member.Name(), "=", m_ids.Accessor(*member.value.Index()), ";");
    if (const Json* targets = primitive.Find("targets")) {
        for (const Json& target : targets->Items())
            for (const gltf::JsonMember& member : target.Members())
                format += Join("target ", member.Name(), "=", m_ids.Accessor(*member.value.Index()), ";");
    }
    for (const gltf::JsonMember& member : primitive.Members()) {
        if (member.Name() != "extensions") continue;
        // Compressed data differs by its view, materials of variants by what they are.
        format += m_ids.Canonical(member.value);
        const Json* variants = member.value.Find("KHR_materials_variants");
        const Json* mappings = variants != nullptr ? variants->Find("mappings") : nullptr;
        if (mappings == nullptr) continue;
        for (const Json& mapping : mappings->Items()) {
            const std::size_t material = IndexMember(mapping, "material");
            format += Join("variant ",
                           m_ids.Canonical(m_loaded.m_document.Elements(Kind::kMaterial)[material]), ";");
        }
    }
    return format;
}

kernix::MaterialModel* MeshBuilder::MaterialOf(const Json& primitive) const {
    const std::size_t none = m_loaded.m_document.Elements(Kind::kMaterial).size();
    const std::size_t material = IndexMember(primitive, "material", none);
    return material < none ? m_loaded.Material(material) : nullptr;
}

void MeshBuilder::AddUses(const Json& primitive, Shape& shape) const {
    const auto add = [&](std::size_t material) {
        shape.uses.push_back(m_loaded.Material(material));
        shape.isBlended =
            shape.isBlended || IsBlended(m_loaded.m_document.Elements(Kind::kMaterial)[material]);
    };
    if (primitive.Find("material") != nullptr)
        add(IndexMember(primitive, "material"));
    else
        shape.uses.push_back(nullptr);
    const Json* extensions = primitive.Find("extensions");
    const Json* variants = extensions != nullptr ? extensions->Find("KHR_materials_variants") : nullptr;
    const Json* mappings = variants != nullptr ? variants->Find("mappings") : nullptr;
    if (mappings == nullptr) return;
    for (const Json& mapping : mappings->Items()) add(IndexMember(mapping, "material"));
}

std::string MeshBuilder::ListsKey(const Json& primitive) {
    const std::size_t none = m_loaded.m_document.Elements(Kind::kAccessor).size();
    const std::size_t positions = IndexMember(*primitive.Find("attributes"), "POSITION", none);
    const std::size_t indices = IndexMember(primitive, "indices", none);
    return Join(positions < none ? Join(m_ids.Accessor(positions)) : "none", " ",
                indices < none ? Join(m_ids.Accessor(indices)) : "none", " ",
                IndexMember(primitive, "mode", kTriangles), ";");
}

void MeshBuilder::AddGeometry(const Json& primitive, kernix::MeshGeometry& geometry) const {
    const gltf::Document& document = m_loaded.m_document;
    const auto first = static_cast<std::uint32_t>(geometry.positions.size() / 3);
    const std::vector<float> positions = Positions(primitive);
    geometry.positions.insert(geometry.positions.end(), positions.begin(), positions.end());
    if (Compressed(primitive) != nullptr) return;
    std::vector<std::uint32_t> order;
    const std::size_t none = document.Elements(Kind::kAccessor).size();
    const std::size_t indices = IndexMember(primitive, "indices", none);
    if (indices < none) {
        if (gltf::HasData(document, indices)) order = gltf::ReadIntegers(document, indices);
    } else {
        order.resize(positions.size() / 3);
        std::iota(order.begin(), order.end(), 0U);
    }
    // Indices into positions that could not be read lead nowhere.
    for (std::uint32_t index : order)
        if (index >= positions.size() / 3) return;
    AddLists(IndexMember(primitive, "mode", kTriangles), order, first, geometry);
}

const MeshBuilder::Lists& MeshBuilder::ListsOf(std::span<const Json> primitives, const std::string& key) {
    Lists& lists = m_lists[key];
    if (lists.geometry) return lists;
    lists.geometry = std::make_shared<kernix::MeshGeometry>();
    const std::vector<std::uint32_t>& indices = lists.geometry->faceIndices;
    for (const Json& primitive : primitives) {
        const std::size_t before = indices.size();
        AddGeometry(primitive, *lists.geometry);
        lists.faces.push_back((indices.size() - before) / 3);
    }
    lists.geometry->Index();
    return lists;
}

const MeshBuilder::Shape& MeshBuilder::ShapeOf(std::size_t mesh) {
    const auto [known, isNew] = m_shapes.try_emplace(mesh);
    Shape& shape = known->second;
    if (!isNew) return shape;
    const Json& json = m_loaded.m_document.Elements(Kind::kMesh)[mesh];
    const std::span<const Json> primitives = json.Find("primitives")->Items();
    std::string listsKey, materials;
    std::vector<std::uint32_t> attributes;
    for (const Json& primitive : primitives) {
        AddUses(primitive, shape);
        shape.format += FormatOf(primitive);
        const kernix::MaterialModel* material = MaterialOf(primitive);
        attributes.push_back(material != nullptr ? material->GetId() : kNoMaterial);
        listsKey += ListsKey(primitive);
        materials += Join(attributes.back(), ";");
    }
    for (std::string_view name : {"weights", "extensions"})
        if (const Json* member = json.Find(name))
            shape.format += Join(name, "=", m_ids.Canonical(*member), ";");

    const Lists& lists = ListsOf(primitives, listsKey);
    shape.geometry = lists.geometry;
    std::shared_ptr<kernix::FaceAttributes>& shared = m_attributes[Join(listsKey, " of ", materials)];
    if (!shared) {
        shared = std::make_shared<kernix::FaceAttributes>();
        shared->reserve(lists.geometry->faces.size());
        for (std::size_t i = 0; i < attributes.size(); ++i)
            shared->insert(shared->end(), lists.faces[i], attributes[i]);
    }
    shape.attributes = shared;
    return shape;
}

std::string MeshBuilder::SkinFormat(std::size_t skin) {
    const Json& json = m_loaded.m_document.Elements(Kind::kSkin)[skin];
    std::string format = "skin ";
    for (const Json& joint : json.Find("joints")->Items()) format += Join(*joint.Index(), ",");
    const std::size_t none = m_loaded.m_document.Elements(Kind::kAccessor).size();
    const std::size_t binds = IndexMember(json, "inverseBindMatrices", none);
    return format + (binds < none ? Join(m_ids.Accessor(binds)) : "none") + ";";
}

vl::zr::Object3D* MeshBuilder::Build(const Json& node, const std::string& motion) {
    const Shape& shape = ShapeOf(IndexMember(node, "mesh"));
    std::string format = "format " + shape.format;
    if (node.Find("skin") != nullptr) format += SkinFormat(IndexMember(node, "skin"));
    for (std::string_view name : {"weights", "extensions", "camera"})
        if (const Json* member = node.Find(name))
            format += Join("node ", name, "=", m_ids.Canonical(*member), ";");
    return new kernix::MeshModel(shape.geometry, shape.attributes, shape.uses, m_ids.Text(format + motion));
}

}  // namespace zr
