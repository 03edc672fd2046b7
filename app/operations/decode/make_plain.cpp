// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstring>
#include <map>

#include "app/operations/decode/compressed_data.h"
#include "gltf/accessor.h"
#include "gltf/collect.h"
#include "gltf/members.h"

namespace zr {

using gltf::AccessorInfo;
using gltf::Component;
using gltf::IndexMember;
using gltf::Json;
using gltf::JsonMember;
using gltf::JsonTree;
using gltf::Kind;

namespace {

constexpr unsigned kVertexTarget = 34962;
constexpr unsigned kIndexTarget = 34963;

class PlainWriter {
public:
    explicit PlainWriter(gltf::Document& document) : m_document(document), m_tree(document.Tree()) {}

    void Run() {
        Views();
        const std::size_t meshes = m_document.Elements(Kind::kMesh).size();
        for (std::size_t i = 0; i < meshes; ++i)
            for (Json& primitive : m_document.Elements(Kind::kMesh)[i].Find("primitives")->Items())
                Primitive(primitive);
        m_document.ForgetSupplied();
        if (!m_changed) return;
        for (std::string_view list : {"extensionsUsed", "extensionsRequired"}) {
            Json* names = m_document.Root().Find(list);
            if (names == nullptr) continue;
            names->FilterItems([&](const Json& name) { return !IsObsolete(name.String()); });
            if (names->Items().empty()) m_document.Root().EraseMember(list);
        }
        gltf::CollectGarbage(m_document, {Kind::kBufferView, Kind::kBuffer}, false);
    }

private:
    static constexpr std::string_view kDraco = "KHR_draco_mesh_compression";
    static constexpr std::string_view kQuantization = "KHR_mesh_quantization";

    // An extension stays if some of its data could not be decoded.
    bool IsObsolete(std::string_view name) const {
        if (name == kQuantization) return true;
        if (name == kDraco) return !m_dracoLeft;
        return !m_meshoptLeft && std::find(std::begin(gltf::kMeshopt), std::end(gltf::kMeshopt), name) !=
                                     std::end(gltf::kMeshopt);
    }

    void Views() {
        const std::size_t count = m_document.Elements(Kind::kBufferView).size();
        for (std::size_t i = 0; i < count; ++i) {
            if (gltf::FindMeshopt(m_document.Elements(Kind::kBufferView)[i]) == nullptr) continue;
            if (!m_document.ViewBytes(i)) {
                m_meshoptLeft = true;
                continue;
            }
            m_changed = true;
            if (m_document.IsSuppliedView(i))
                MoveLast(Kind::kBufferView, i, m_document.AppendView(*m_document.ViewBytes(i), 0, 0));
            for (const std::string_view name : gltf::kMeshopt)
                gltf::EraseExtension(m_document.Elements(Kind::kBufferView)[i], name);
        }
    }

    // Moves the members of the last element to another one and removes the last element.
    void MoveLast(Kind kind, std::size_t index, std::size_t last) {
        const Json from = m_document.Elements(kind)[last];
        Json& to = m_document.Elements(kind)[index];
        for (const JsonMember& member : from.Members()) m_tree.Member(to, member.Name()) = member.value;
        Json* collection = m_document.Root().Find(gltf::Info(kind).path[0]);
        std::size_t i = 0;
        collection->FilterItems([&](const Json&) { return i++ != last; });
    }

    void Primitive(Json& primitive) {
        if (gltf::FindExtension(primitive, kDraco) != nullptr) {
            if (!IsReadable(primitive)) {
                m_dracoLeft = true;
                return;
            }
            m_changed = true;
            for (const JsonMember& member : primitive.Find("attributes")->Members())
                Store(*member.value.Index(), kVertexTarget);
            if (primitive.Find("indices") != nullptr) Store(IndexMember(primitive, "indices"), kIndexTarget);
            gltf::EraseExtension(primitive, kDraco);
        }
        for (const JsonMember& member : primitive.Find("attributes")->Members())
            Dequantize(member.Name(), *member.value.Index());
        if (const Json* targets = primitive.Find("targets"))
            for (const Json& target : targets->Items())
                for (const JsonMember& member : target.Members())
                    Dequantize(member.Name(), *member.value.Index());
    }

    bool IsReadable(const Json& primitive) const {
        const auto isKnown = [&](std::size_t accessor) { return gltf::HasData(m_document, accessor); };
        const auto attributes = primitive.Find("attributes")->Members();
        return std::all_of(attributes.begin(), attributes.end(),
                           [&](const JsonMember& member) { return isKnown(*member.value.Index()); }) &&
               (primitive.Find("indices") == nullptr || isKnown(IndexMember(primitive, "indices")));
    }

    // Vertex data is aligned to 4 bytes.
    void Store(std::size_t accessor, unsigned target) {
        const auto bytes = m_document.SuppliedBytes(accessor);
        if (!bytes || !m_stored.try_emplace(accessor, true).second) return;
        const std::size_t size = gltf::Describe(m_document, accessor).ElementSize();
        const std::size_t stride = target == kVertexTarget ? (size + 3) & ~std::size_t{3} : size;
        std::vector<std::byte> padded(bytes->size() / size * stride);
        for (std::size_t i = 0; i < bytes->size() / size; ++i)
            std::memcpy(padded.data() + i * stride, bytes->data() + i * size, size);
        const std::size_t view =
            m_document.AppendView(padded, target, stride != size ? static_cast<unsigned>(stride) : 0);
        m_tree.Member(m_document.Elements(Kind::kAccessor)[accessor], "bufferView") = m_tree.MakeIndex(view);
        m_document.Elements(Kind::kAccessor)[accessor].EraseMember("byteOffset");
    }

    static bool IsQuantized(std::string_view name, const AccessorInfo& info) {
        if (info.component == Component::kFloat) return false;
        if (name == "POSITION" || name == "NORMAL" || name == "TANGENT") return true;
        const bool isUnsigned =
            info.component == Component::kUnsignedByte || info.component == Component::kUnsignedShort;
        return name.starts_with("TEXCOORD_") && !(isUnsigned && info.normalized);
    }

    void Dequantize(std::string_view name, std::size_t accessor) {
        const AccessorInfo info = gltf::Describe(m_document, accessor);
        if (!IsQuantized(name, info) || !gltf::HasData(m_document, accessor)) return;
        m_changed = true;
        const std::vector<float> values = gltf::ReadFloats(m_document, accessor);
        const std::string type(m_document.Elements(Kind::kAccessor)[accessor].Find("type")->String());
        const gltf::Use use = name == "POSITION" ? gltf::Use::kPosition : gltf::Use::kAttribute;
        const std::size_t plain = gltf::AppendFloats(m_document, type, use, values);
        for (const char* member : {"byteOffset", "normalized", "sparse", "min", "max"})
            m_document.Elements(Kind::kAccessor)[accessor].EraseMember(member);
        MoveLast(Kind::kAccessor, accessor, plain);
    }

    gltf::Document& m_document;
    JsonTree& m_tree;
    std::map<std::size_t, bool> m_stored;
    bool m_changed = false;
    bool m_meshoptLeft = false;
    bool m_dracoLeft = false;
};

}  // namespace

void MakePlain(gltf::Document& document) {
    PlainWriter(document).Run();
}

}  // namespace zr
