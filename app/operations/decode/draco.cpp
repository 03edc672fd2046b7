// SPDX-License-Identifier: MIT
#include <draco/compression/decode.h>

#include <map>
#include <memory>

#include "app/operations/decode/compressed_data.h"
#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/members.h"

namespace zr {

using gltf::AccessorInfo;
using gltf::Component;
using gltf::IndexMember;
using gltf::Json;
using gltf::JsonMember;
using gltf::Kind;

namespace {

std::unique_ptr<draco::Mesh> DecodeMesh(Bytes bytes) {
    draco::DecoderBuffer buffer;
    buffer.Init(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    draco::Decoder decoder;
    try {
        auto mesh = decoder.DecodeMeshFromBuffer(&buffer);
        return mesh.ok() ? std::move(mesh).value() : nullptr;
    } catch (const std::exception&) {
        return nullptr;  // a size beyond any memory
    }
}

template <typename Number>
std::vector<std::byte> AttributeBytes(const draco::Mesh& mesh, const draco::PointAttribute& attribute,
                                      std::size_t components) {
    std::vector<std::byte> out(mesh.num_points() * components * sizeof(Number));
    std::vector<Number> value(components);
    for (std::uint32_t point = 0; point < mesh.num_points(); ++point) {
        const auto index = attribute.mapped_index(draco::PointIndex(point));
        if (index.value() >= attribute.size() ||
            !attribute.ConvertValue<Number>(index, static_cast<std::int8_t>(components), value.data()))
            return {};
        std::memcpy(out.data() + point * components * sizeof(Number), value.data(),
                    components * sizeof(Number));
    }
    return out;
}

std::vector<std::byte> AttributeBytes(const draco::Mesh& mesh, const draco::PointAttribute& attribute,
                                      const AccessorInfo& info) {
    const std::size_t components = info.shape.Components();
    switch (info.component) {
        case Component::kByte:
            return AttributeBytes<std::int8_t>(mesh, attribute, components);
        case Component::kUnsignedByte:
            return AttributeBytes<std::uint8_t>(mesh, attribute, components);
        case Component::kShort:
            return AttributeBytes<std::int16_t>(mesh, attribute, components);
        case Component::kUnsignedShort:
            return AttributeBytes<std::uint16_t>(mesh, attribute, components);
        case Component::kUnsignedInt:
            return AttributeBytes<std::uint32_t>(mesh, attribute, components);
        case Component::kFloat:
            return AttributeBytes<float>(mesh, attribute, components);
    }
    return {};
}

template <typename Number>
std::vector<std::byte> IndexBytes(const draco::Mesh& mesh) {
    std::vector<std::byte> out;
    out.reserve(std::size_t{mesh.num_faces()} * 3 * sizeof(Number));
    for (std::uint32_t face = 0; face < mesh.num_faces(); ++face)
        for (const draco::PointIndex& corner : mesh.face(draco::FaceIndex(face))) {
            const auto number = static_cast<Number>(corner.value());
            const auto* bytes = reinterpret_cast<const std::byte*>(&number);
            out.insert(out.end(), bytes, bytes + sizeof number);
        }
    return out;
}

std::vector<std::byte> IndexBytes(const draco::Mesh& mesh, const AccessorInfo& info) {
    if (info.component == Component::kUnsignedByte) return IndexBytes<std::uint8_t>(mesh);
    if (info.component == Component::kUnsignedShort) return IndexBytes<std::uint16_t>(mesh);
    return IndexBytes<std::uint32_t>(mesh);
}

class DracoDecoder {
public:
    explicit DracoDecoder(gltf::Document& document) : m_document(document) {}

    bool Decode(const Json& primitive, const Json& packed) {
        const std::size_t view = IndexMember(packed, "bufferView");
        const auto [known, isNew] = m_meshes.try_emplace(view);
        if (isNew)
            if (const auto bytes = m_document.ViewBytes(view)) known->second = DecodeMesh(*bytes);
        const draco::Mesh* mesh = known->second.get();
        bool isRead = true;
        for (const JsonMember& member : primitive.Find("attributes")->Members()) {
            const Json* attributes = packed.Find("attributes");
            const Json* id = attributes != nullptr ? attributes->Find(member.Name()) : nullptr;
            if (id == nullptr) continue;  // stored uncompressed
            isRead = Attribute(mesh, *member.value.Index(), *id) && isRead;
        }
        if (const Json* indices = primitive.Find("indices"))
            isRead = Indices(mesh, *indices->Index()) && isRead;
        return isRead;
    }

private:
    bool Attribute(const draco::Mesh* mesh, std::size_t accessor, const Json& id) {
        const auto number = id.Index();
        const draco::PointAttribute* attribute =
            mesh != nullptr && number ? mesh->GetAttributeByUniqueId(static_cast<std::uint32_t>(*number))
                                      : nullptr;
        const AccessorInfo info = gltf::Describe(m_document, accessor);
        if (attribute == nullptr || mesh->num_points() != info.count || info.shape.columns != 1)
            return Withhold(accessor);
        return m_document.SupplyAccessor(accessor, AttributeBytes(*mesh, *attribute, info)) ||
               Withhold(accessor);
    }

    bool Indices(const draco::Mesh* mesh, std::size_t accessor) {
        const AccessorInfo info = gltf::Describe(m_document, accessor);
        if (mesh == nullptr || std::size_t{3} * mesh->num_faces() != info.count) return Withhold(accessor);
        return m_document.SupplyAccessor(accessor, IndexBytes(*mesh, info)) || Withhold(accessor);
    }

    // True if the accessor has uncompressed data for readers without the codec, which serves as well.
    bool Withhold(std::size_t accessor) {
        if (m_document.Elements(Kind::kAccessor)[accessor].Find("bufferView") != nullptr) return true;
        m_document.WithholdAccessor(accessor);
        return false;
    }

    gltf::Document& m_document;
    std::map<std::size_t, std::unique_ptr<draco::Mesh>> m_meshes;
};

}  // namespace

std::vector<std::string> DecodeDraco(gltf::Document& document) {
    std::vector<std::string> unread;
    DracoDecoder decoder(document);
    const auto meshes = document.Elements(Kind::kMesh);
    for (std::size_t i = 0; i < meshes.size(); ++i) {
        const auto primitives = meshes[i].Find("primitives")->Items();
        for (std::size_t k = 0; k < primitives.size(); ++k) {
            const Json* packed = gltf::FindExtension(primitives[k], "KHR_draco_mesh_compression");
            if (packed != nullptr && !decoder.Decode(primitives[k], *packed))
                unread.push_back(
                    Join("/meshes/", i, "/primitives/", k, "/extensions/KHR_draco_mesh_compression"));
        }
    }
    return unread;
}

}  // namespace zr
