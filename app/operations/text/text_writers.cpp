// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <string>
#include <string_view>

#include "app/operations/text/text_geometry.h"
#include "base/file_transaction.h"
#include "base/text.h"
#include "gltf/document.h"

namespace zr {
namespace {

using Point = vl::Vector3<float>;

// Text put together piece by piece; numbers in the shortest form that reads back as the same float.
class Text {
public:
    Text& operator<<(std::string_view text) {
        m_text += text;
        return *this;
    }
    Text& operator<<(float value) { return Number(value == 0 ? 0.0f : value); }
    Text& operator<<(int value) { return Number(value); }

    void Write(const std::filesystem::path& target) const {
        FileTransaction files;
        files.Add(target, BytesOf(m_text));
        files.Commit();
    }

private:
    template <class T>
    Text& Number(T value) {
        char buffer[32];
        m_text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
        return *this;
    }

    std::string m_text;
};

std::span<const Point> PointsOf(const TextGeometry& geometry, const TextGeometry::Contour& contour) {
    return {geometry.points.data() + contour.first, contour.count};
}

struct Box {
    Point low{};
    Point high{};
};

Box BoxOf(const std::vector<Point>& points) {
    if (points.empty()) return {};
    Box box{points[0], points[0]};
    for (const Point& p : points) {
        box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y), std::min(box.low.z, p.z)};
        box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y), std::max(box.high.z, p.z)};
    }
    return box;
}

// Pictures have y downwards.
void AddPath(Text& svg, std::span<const Point> points) {
    const char* step = "M";
    for (const Point& p : points) {
        svg << step << p.x << " " << -p.y;
        step = " L";
    }
}

void WriteSvg(const TextGeometry& geometry, const std::filesystem::path& target) {
    const Box box = BoxOf(geometry.points);
    const auto pen = static_cast<float>(geometry.penWidth);
    const float margin = 2 * pen;
    Text svg;
    svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"" << box.low.x - margin << " "
        << -box.high.y - margin << " " << box.high.x - box.low.x + 2 * margin << " "
        << box.high.y - box.low.y + 2 * margin << "\">\n";
    if (geometry.isMesh) {
        // One path, so that no seam shows between triangles.
        svg << "<path d=\"";
        for (const LetterTriangle& t : geometry.triangles) {
            const auto corner = [&](int i) { return geometry.points[static_cast<std::size_t>(i)]; };
            AddPath(svg, std::array{corner(t.i0), corner(t.i1), corner(t.i2)});
            svg << " Z\n";
        }
        svg << "\"/>\n";
    } else {
        svg << "<g fill=\"none\" stroke=\"black\" stroke-linecap=\"round\" stroke-linejoin=\"round\" "
               "stroke-width=\""
            << pen << "\">\n";
        for (const TextGeometry::Contour& contour : geometry.contours) {
            svg << "<path d=\"";
            AddPath(svg, PointsOf(geometry, contour));
            svg << "\"/>\n";
        }
        svg << "</g>\n";
    }
    svg << "</svg>\n";
    svg.Write(target);
}

void WriteJson(const TextGeometry& geometry, const std::filesystem::path& target) {
    Text json;
    const auto addPoints = [&](std::span<const Point> points) {
        const char* separator = "";
        for (const Point& p : points) {
            json << separator << "[" << p.x << ", " << p.y << "]";
            separator = ", ";
        }
    };
    const char* separator = "\n";
    if (geometry.isMesh) {
        json << "{\"vertices\": [";
        addPoints(geometry.points);
        json << "],\n\"triangles\": [";
        for (const LetterTriangle& t : geometry.triangles) {
            json << separator << "[" << t.i0 << ", " << t.i1 << ", " << t.i2 << "]";
            separator = ",\n";
        }
    } else {
        json << "{\"contours\": [";
        for (const TextGeometry::Contour& contour : geometry.contours) {
            json << separator << "{\"letter\": " << contour.letter << ", \"points\": [";
            addPoints(PointsOf(geometry, contour));
            json << "]}";
            separator = ",\n";
        }
    }
    json << "\n]}\n";
    json.Write(target);
}

void WriteObj(const TextGeometry& geometry, const std::filesystem::path& target) {
    Text obj;
    for (const Point& p : geometry.points) obj << "v " << p.x << " " << p.y << " " << p.z << "\n";
    for (const LetterTriangle& t : geometry.triangles) {
        obj << "f " << t.i0 + 1 << " " << t.i1 + 1 << " " << t.i2 + 1 << "\n";
    }
    obj.Write(target);
}

// Corners of the triangles, or ends of the segments.
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

void WriteGltf(const TextGeometry& geometry, const std::filesystem::path& target) {
    constexpr unsigned kVertexTarget = 34962;
    constexpr unsigned kIndexTarget = 34963;
    const std::vector<std::uint32_t> indices = Indices(geometry);
    const bool isEmpty = indices.empty();
    const std::string_view head = R"({"asset": {"version": "2.0", "generator": "zr"}, "scene": 0,
        "scenes": [{"nodes": [0]}], "nodes": [{"name": "text"}]})";
    gltf::Document document = gltf::Document::FromBytes(BytesOf(head), target);
    if (!isEmpty) {
        gltf::JsonTree& tree = document.Tree();
        const std::size_t vertexView =
            document.AppendView(std::as_bytes(std::span(geometry.points)), kVertexTarget, 0);
        const std::size_t indexView = document.AppendView(std::as_bytes(std::span(indices)), kIndexTarget, 0);
        const Box box = BoxOf(geometry.points);
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
        tree.Member(document.Elements(gltf::Kind::kNode)[0], "mesh") = tree.MakeIndex(mesh);
    }
    document.Save(target);
}

}  // namespace

void WriteText(const TextGeometry& geometry, TextFormat format, const std::filesystem::path& target) {
    switch (format) {
        case TextFormat::kSvg:
            return WriteSvg(geometry, target);
        case TextFormat::kGltf:
            return WriteGltf(geometry, target);
        case TextFormat::kJson:
            return WriteJson(geometry, target);
        case TextFormat::kObj:
            return WriteObj(geometry, target);
    }
}

}  // namespace zr
