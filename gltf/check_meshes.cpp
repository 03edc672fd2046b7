// SPDX-License-Identifier: MIT
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/check.h"
#include "gltf/document.h"
#include "gltf/members.h"

namespace zr::gltf {
namespace {

constexpr std::size_t kModes = 7;  // points, lines, line loop, line strip, triangles, strip, fan

// A primitive, or one of its targets, turned into text only when there is a fault to report.
struct MeshSpot {
    std::size_t mesh;
    std::size_t primitive;
    std::optional<std::size_t> target = std::nullopt;

    std::string Place(std::string_view below) const {
        const std::string place = Join("/meshes/", mesh, "/primitives/", primitive);
        return target ? Join(place, "/targets/", *target, below) : Join(place, below);
    }
};

class Meshes {
public:
    explicit Meshes(const Document& document)
        : m_document(document), m_highest(document.Elements(Kind::kAccessor).size()) {}

    void Mesh(const Json& mesh, std::size_t index) {
        const auto primitives = mesh.Find("primitives")->Items();
        for (std::size_t i = 0; i < primitives.size(); ++i) Primitive(primitives[i], {index, i});
        const std::size_t targets = Targets(primitives[0]);
        for (std::size_t i = 1; i < primitives.size(); ++i)
            if (Targets(primitives[i]) != targets)
                Fail(MeshSpot{index, i}.Place("/targets"),
                     "differ in number from those of the mesh's first primitive");
        const Json* weights = mesh.Find("weights");
        if (weights != nullptr && weights->Items().size() != targets)
            Fail(Join("/meshes/", index, "/weights"),
                 Join("must hold ", Counted(targets, "weight"), ", one for each target"));
    }

    static std::size_t Targets(const Json& primitive) {
        const Json* targets = primitive.Find("targets");
        return targets != nullptr ? targets->Items().size() : 0;
    }

private:
    void Primitive(const Json& primitive, const MeshSpot& spot) {
        if (IndexMember(primitive, "mode", 4) >= kModes) Fail(spot.Place("/mode"), "is not a primitive mode");
        const Json& attributes = *primitive.Find("attributes");
        std::optional<std::size_t> vertices;
        Attributes(attributes, spot, vertices);
        if (const Json* targets = primitive.Find("targets")) {
            for (std::size_t i = 0; i < targets->Items().size(); ++i)
                Attributes(targets->Items()[i], {spot.mesh, spot.primitive, i}, vertices);
        }
        if (primitive.Find("indices") != nullptr) Indices(primitive, spot, vertices);
    }

    void Attributes(const Json& attributes, const MeshSpot& spot, std::optional<std::size_t>& vertices) {
        const auto place = [&spot](const JsonMember& member) {
            return spot.Place(Join(spot.target ? "/" : "/attributes/", member.Name()));
        };
        for (const JsonMember& member : attributes.Members()) {
            const AccessorInfo info = Describe(m_document, *member.value.Index());
            // Data that is not stored costs the file nothing, however often it is used.
            if (m_document.Elements(Kind::kAccessor)[*member.value.Index()].Find("bufferView") == nullptr)
                m_unstored += info.count * info.shape.Components() * sizeof(float);
            if (m_unstored > m_document.Budget().Total())
                m_document.Fail(ErrorKind::kLimit, place(member),
                                "more elements than a file of this size may claim");
            if (!vertices) vertices = info.count;
            if (info.count != *vertices)
                Fail(place(member),
                     Join(Counted(info.count, "element"), " where the first attribute has ", *vertices));
            if ((member.Name() == "POSITION" || member.Name() == "NORMAL") &&
                (info.shape.rows != 3 || info.shape.columns != 1))
                Fail(place(member), "is not of type VEC3");
        }
    }

    void Indices(const Json& primitive, const MeshSpot& spot, std::optional<std::size_t> vertices) {
        const std::size_t accessor = IndexMember(primitive, "indices");
        const AccessorInfo info = Describe(m_document, accessor);
        if (info.shape.Components() != 1 ||
            (info.component != Component::kUnsignedByte && info.component != Component::kUnsignedShort &&
             info.component != Component::kUnsignedInt))
            Fail(spot.Place("/indices"), "are not unsigned integers");
        if (!vertices || info.count == 0 || !HasData(m_document, accessor)) return;
        // Compressed data that was not decoded would read as zeros.
        const bool isStored = m_document.Elements(Kind::kAccessor)[accessor].Find("bufferView") != nullptr;
        if (IsCompressed(primitive) && !isStored && !m_document.SuppliedBytes(accessor)) return;
        // An accessor shared by many primitives is read once.
        if (!m_highest[accessor]) {
            const std::vector<std::uint32_t> indices = ReadIntegers(m_document, accessor);
            m_highest[accessor] = *std::max_element(indices.begin(), indices.end());
        }
        if (*m_highest[accessor] >= *vertices)
            m_document.Fail(ErrorKind::kMesh, spot.Place("/indices"),
                            Join("there is no vertex ", *m_highest[accessor], " among ", *vertices));
    }

    static bool IsCompressed(const Json& primitive) {
        return FindExtension(primitive, "KHR_draco_mesh_compression") != nullptr;
    }

    [[noreturn]] void Fail(const std::string& place, std::string_view text) {
        m_document.Fail(ErrorKind::kMesh, place, text);
    }

    const Document& m_document;
    std::vector<std::optional<std::uint32_t>> m_highest;
    std::uint64_t m_unstored = 0;  // bytes
};

}  // namespace

void CheckMeshes(const Document& document) {
    Meshes check(document);
    const auto meshes = document.Elements(Kind::kMesh);
    for (std::size_t i = 0; i < meshes.size(); ++i) check.Mesh(meshes[i], i);
    const auto nodes = document.Elements(Kind::kNode);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Json* weights = nodes[i].Find("weights");
        if (weights == nullptr) continue;
        const std::size_t mesh = IndexMember(nodes[i], "mesh", meshes.size());
        const std::size_t targets =
            mesh < meshes.size() ? Meshes::Targets(meshes[mesh].Find("primitives")->Items()[0]) : 0;
        if (weights->Items().size() != targets)
            document.Fail(ErrorKind::kMesh, Join("/nodes/", i, "/weights"),
                          Join("must hold ", Counted(targets, "weight"), ", one for each target"));
    }
}

}  // namespace zr::gltf
