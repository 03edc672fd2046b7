// SPDX-License-Identifier: MIT
#include <array>
#include <string_view>

#include "app/operations/text/length_unit.h"
#include "app/operations/text/text_format_writers.h"
#include "app/operations/text/text_writers.h"
#include "base/text.h"
#include "gltf/document.h"

namespace zr {
namespace {

// The corners of the triangles, or the ends of the line segments.
std::vector<std::uint32_t> Indices(const TextGeometry& geometry) {
    std::vector<std::uint32_t> indices;
    for (const LetterTriangle& t : geometry.triangles) {
        for (const int i : {t.i0, t.i1, t.i2}) indices.push_back(static_cast<std::uint32_t>(i));
    }
    for (const TextGeometry::Contour& contour : geometry.contours) {
        for (std::uint32_t i = 1; i < contour.count; ++i) {
            indices.push_back(contour.first + i - 1);
            indices.push_back(contour.first + i);
        }
    }
    return indices;
}

}  // namespace

// Coordinates keep their unit; the node's scale converts them to metres, the unit of the format.
gltf::Document TextScene(const TextGeometry& geometry) {
    constexpr unsigned kVertexTarget = 34962;
    constexpr unsigned kIndexTarget = 34963;
    const std::vector<std::uint32_t> indices = Indices(geometry);
    const bool isEmpty = indices.empty();
    const std::string_view head = R"({"asset": {"version": "2.0", "generator": "zr"}, "scene": 0,
        "scenes": [{"nodes": [0]}], "nodes": [{"name": "text"}]})";
    gltf::Document document = gltf::Document::FromBytes(BytesOf(head), "text");
    if (!isEmpty) {
        gltf::JsonTree& tree = document.Tree();
        const std::size_t vertexView =
            document.AppendView(std::as_bytes(std::span(geometry.points)), kVertexTarget, 0);
        const std::size_t indexView = document.AppendView(std::as_bytes(std::span(indices)), kIndexTarget, 0);
        const TextBox box = BoxOf(geometry.points);
        gltf::Json positions = tree.Build(
            Join("{\"bufferView\": ", vertexView,
                 ", \"componentType\": 5126, \"type\": \"VEC3\", \"count\": ", geometry.points.size(), "}"));
        tree.Member(positions, "min") = tree.MakeNumbers(std::array{box.low.x, box.low.y, box.low.z});
        tree.Member(positions, "max") = tree.MakeNumbers(std::array{box.high.x, box.high.y, box.high.z});
        const std::size_t vertices = document.Append(gltf::Kind::kAccessor, positions);
        const std::size_t corners = document.Append(
            gltf::Kind::kAccessor,
            tree.Build(Join("{\"bufferView\": ", indexView,
                            ", \"componentType\": 5125, \"type\": \"SCALAR\", \"count\": ", indices.size(),
                            "}")));
        const std::size_t mesh = document.Append(
            gltf::Kind::kMesh,
            tree.Build(Join("{\"primitives\": [{\"attributes\": {\"POSITION\": ", vertices,
                            "}, \"indices\": ", corners, ", \"mode\": ", geometry.isMesh ? 4 : 1, "}]}")));
        gltf::Json& node = document.Elements(gltf::Kind::kNode)[0];
        tree.Member(node, "mesh") = tree.MakeIndex(mesh);
        const auto metres = static_cast<float>(InfoOf(geometry.unit).metres);
        if (metres != 1) tree.Member(node, "scale") = tree.MakeNumbers(std::array{metres, metres, metres});
    }
    return document;
}

void WriteGltf(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files) {
    TextScene(geometry).Save(target, files);
}

}  // namespace zr
