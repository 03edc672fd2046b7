// SPDX-License-Identifier: MIT
#include <array>

#include "app/operations/text/length_unit.h"
#include "app/operations/text/text_file.h"
#include "app/operations/text/text_format_writers.h"

namespace zr {
namespace {

using Point = TextGeometry::Point;

struct Layer {
    std::string_view name;
    int color;
};
constexpr Layer kStrokes{"STROKES", 7};
constexpr Layer kOutlines{"OUTLINES", 7};
constexpr Layer kHoles{"HOLES", 1};
constexpr Layer kFaces{"FACES", 7};

// Release 12 of the format, which every reader supports: group codes and values on alternate lines.
class Drawing {
public:
    Drawing(const std::filesystem::path& target, FileTransaction& files) : m_file(target, files) {}

    void Text(int code, std::string_view value) {
        m_file << code << "\n" << value << "\n";
        m_file.Pass();
    }
    void Whole(int code, int value) { m_file << code << "\n" << value << "\n"; }
    // Written without an exponent, which some readers do not accept.
    void Real(int code, float value) {
        m_file << code << "\n";
        m_file.AddFixed(value) << "\n";
    }
    // A point uses the codes 10, 20 and 30, plus `corner`.
    void Position(const Point& p, int corner = 0) {
        Real(10 + corner, p.x);
        Real(20 + corner, p.y);
        Real(30 + corner, p.z);
    }

    void Finish() { m_file.Finish(); }

private:
    TextFile m_file;
};

void AddHeader(Drawing& dxf, const TextGeometry& geometry) {
    const TextBox box = BoxOf(geometry.points);
    dxf.Text(0, "SECTION");
    dxf.Text(2, "HEADER");
    dxf.Text(9, "$ACADVER");
    dxf.Text(1, "AC1009");
    dxf.Text(9, "$INSUNITS");
    dxf.Whole(70, InfoOf(geometry.unit).drawingCode);
    dxf.Text(9, "$EXTMIN");
    dxf.Position(box.low);
    dxf.Text(9, "$EXTMAX");
    dxf.Position(box.high);
    dxf.Text(0, "ENDSEC");
}

void AddLayers(Drawing& dxf, std::span<const Layer> layers) {
    dxf.Text(0, "SECTION");
    dxf.Text(2, "TABLES");
    dxf.Text(0, "TABLE");
    dxf.Text(2, "LTYPE");
    dxf.Whole(70, 1);
    dxf.Text(0, "LTYPE");
    dxf.Text(2, "CONTINUOUS");
    dxf.Whole(70, 0);
    dxf.Text(3, "Solid line");
    dxf.Whole(72, 65);
    dxf.Whole(73, 0);
    dxf.Real(40, 0);
    dxf.Text(0, "ENDTAB");
    dxf.Text(0, "TABLE");
    dxf.Text(2, "LAYER");
    dxf.Whole(70, static_cast<int>(layers.size()));
    for (const Layer& layer : layers) {
        dxf.Text(0, "LAYER");
        dxf.Text(2, layer.name);
        dxf.Whole(70, 0);
        dxf.Whole(62, layer.color);
        dxf.Text(6, "CONTINUOUS");
    }
    dxf.Text(0, "ENDTAB");
    dxf.Text(0, "ENDSEC");
}

void AddPolyline(Drawing& dxf, std::span<const Point> points, const Layer& layer, bool isClosed) {
    // The flag closes the polyline, so a copy of the first point would be redundant.
    while (isClosed && points.size() > 1 && points.back() == points.front())
        points = points.first(points.size() - 1);
    dxf.Text(0, "POLYLINE");
    dxf.Text(8, layer.name);
    dxf.Whole(66, 1);
    dxf.Position({});
    dxf.Whole(70, isClosed ? 1 : 0);
    for (const Point& p : points) {
        dxf.Text(0, "VERTEX");
        dxf.Text(8, layer.name);
        dxf.Position(p);
    }
    dxf.Text(0, "SEQEND");
    dxf.Text(8, layer.name);
}

void AddFace(Drawing& dxf, const std::array<Point, 3>& corners) {
    dxf.Text(0, "3DFACE");
    dxf.Text(8, kFaces.name);
    for (int i = 0; i < 3; ++i) dxf.Position(corners[static_cast<std::size_t>(i)], i);
    dxf.Position(corners[2], 3);
}

bool IsInside(const Point& p, std::span<const Point> contour) {
    bool isInside = false;
    for (std::size_t i = 0; i + 1 < contour.size(); ++i) {
        const Point& a = contour[i];
        const Point& b = contour[i + 1];
        if ((a.y > p.y) == (b.y > p.y)) continue;
        const double x = a.x + (double{p.y} - a.y) * (double{b.x} - a.x) / (double{b.y} - a.y);
        isInside ^= x > p.x;
    }
    return isInside;
}

// Whether the contour lies within an odd number of the letter's other contours.
bool IsHole(const TextGeometry& geometry, std::span<const TextGeometry::Contour> letter,
            const TextGeometry::Contour& contour) {
    const Point& start = geometry.points[contour.first];
    bool isHole = false;
    for (const TextGeometry::Contour& other : letter)
        isHole ^= &other != &contour && IsInside(start, geometry.PointsOf(other));
    return isHole;
}

void AddOutlines(Drawing& dxf, const TextGeometry& geometry) {
    const std::span<const TextGeometry::Contour> contours = geometry.contours;
    for (std::size_t first = 0, end = 0; first < contours.size(); first = end) {
        while (end < contours.size() && contours[end].letter == contours[first].letter) ++end;
        const auto letter = contours.subspan(first, end - first);
        for (const TextGeometry::Contour& contour : letter) {
            const Layer& layer = IsHole(geometry, letter, contour) ? kHoles : kOutlines;
            AddPolyline(dxf, geometry.PointsOf(contour), layer, true);
        }
    }
}

}  // namespace

void WriteDxf(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files) {
    Drawing dxf(target, files);
    AddHeader(dxf, geometry);
    if (geometry.isMesh) {
        AddLayers(dxf, std::array{kFaces});
    } else if (geometry.isClosed) {
        AddLayers(dxf, std::array{kOutlines, kHoles});
    } else {
        AddLayers(dxf, std::array{kStrokes});
    }
    dxf.Text(0, "SECTION");
    dxf.Text(2, "ENTITIES");
    for (const LetterTriangle& t : geometry.triangles) {
        const auto corner = [&](int i) { return geometry.points[static_cast<std::size_t>(i)]; };
        AddFace(dxf, {corner(t.i0), corner(t.i1), corner(t.i2)});
    }
    if (geometry.isClosed) {
        AddOutlines(dxf, geometry);
    } else {
        for (const TextGeometry::Contour& contour : geometry.contours)
            AddPolyline(dxf, geometry.PointsOf(contour), kStrokes, false);
    }
    dxf.Text(0, "ENDSEC");
    dxf.Text(0, "EOF");
    dxf.Finish();
}

}  // namespace zr
