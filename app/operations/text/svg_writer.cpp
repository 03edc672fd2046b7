// SPDX-License-Identifier: MIT
#include <array>

#include "app/operations/text/length_unit.h"
#include "app/operations/text/text_file.h"
#include "app/operations/text/text_format_writers.h"
#include "app/operations/text/text_writers.h"

namespace zr {
namespace {

// In SVG, y points down.
void AddPath(TextBuilder& svg, std::span<const TextGeometry::Point> points) {
    const char* step = "M";
    for (const TextGeometry::Point& p : points) {
        svg << step << p.x << " " << -p.y;
        step = " L";
    }
}

void AddMesh(TextBuilder& svg, const TextGeometry& geometry) {
    // One path, so that no seam shows between triangles.
    svg << "<path d=\"";
    for (const LetterTriangle& t : geometry.triangles) {
        const auto corner = [&](int i) { return geometry.points[static_cast<std::size_t>(i)]; };
        AddPath(svg, std::array{corner(t.i0), corner(t.i1), corner(t.i2)});
        svg << " Z\n";
        svg.Pass();
    }
    svg << "\"/>\n";
}

void AddSvg(TextBuilder& svg, const TextGeometry& geometry) {
    const TextBox box = BoxOf(geometry.points);
    const auto pen = static_cast<float>(geometry.penWidth);
    const float margin = 2 * pen;
    const float width = box.high.x - box.low.x + 2 * margin;
    const float height = box.high.y - box.low.y + 2 * margin;
    const std::string_view unit = InfoOf(geometry.unit).name;
    svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << unit << "\" height=\"" << height
        << unit << "\" viewBox=\"" << box.low.x - margin << " " << -box.high.y - margin << " " << width << " "
        << height << "\">\n";
    if (geometry.isMesh) {
        AddMesh(svg, geometry);
    } else {
        svg << "<g fill=\"none\" stroke=\"black\" stroke-linecap=\"round\" stroke-linejoin=\"round\" "
               "stroke-width=\""
            << pen << "\">\n";
        for (const TextGeometry::Contour& contour : geometry.contours) {
            svg << "<path d=\"";
            AddPath(svg, geometry.PointsOf(contour));
            svg << "\"/>\n";
            svg.Pass();
        }
        svg << "</g>\n";
    }
    svg << "</svg>\n";
}

}  // namespace

std::string TextPicture(const TextGeometry& geometry) {
    TextBuilder svg;
    AddSvg(svg, geometry);
    return svg.Take();
}

void WriteSvg(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files) {
    TextFile svg(target, files);
    AddSvg(svg, geometry);
    svg.Finish();
}

}  // namespace zr
