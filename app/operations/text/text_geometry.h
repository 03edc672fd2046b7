// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/cad_text.h"
#include "host/math.h"

namespace zr {

// The length of one unit of the coordinates. kNone: unspecified.
enum class LengthUnit { kNone, kMillimetre, kCentimetre, kInch };

// A text as geometry: contours, or triangles.
struct TextGeometry {
    using Point = vl::Vector3<float>;

    struct Contour {
        std::uint32_t first;  // index of its first point
        std::uint32_t count;
        int letter;  // position in the text, in UTF-16 units
    };

    std::vector<Point> points;  // y points up
    std::vector<Contour> contours;
    std::vector<LetterTriangle> triangles;  // counter-clockwise seen from outside; flat ones from above
    bool isMesh = false;
    bool isClosed = false;  // contours: each ends with a copy of its first point
    bool isSolid = false;   // mesh: has a front, a back and sides; otherwise it is flat at z = 0
    double penWidth = 1;    // line width for pictures of contours
    LengthUnit unit = LengthUnit::kNone;

    std::span<const Point> PointsOf(const Contour& contour) const {
        return {points.data() + contour.first, contour.count};
    }
};

struct TextBox {
    TextGeometry::Point low{};
    TextGeometry::Point high{};
};

// The bounding box; all zeros without points.
TextBox BoxOf(std::span<const TextGeometry::Point> points);

}  // namespace zr
