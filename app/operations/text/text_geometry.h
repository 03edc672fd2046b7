// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/cad_text.h"
#include "host/math.h"

namespace zr {

// What one unit of the coordinates means. kNone: nothing, the reader decides.
enum class LengthUnit { kNone, kMillimetre, kCentimetre, kInch };

// A text as geometry: contours, or triangles.
struct TextGeometry {
    using Point = vl::Vector3<float>;

    struct Contour {
        std::uint32_t first;  // its points
        std::uint32_t count;
        int letter;  // position in the text, in UTF-16 units
    };

    std::vector<Point> points;  // y upwards
    std::vector<Contour> contours;
    std::vector<LetterTriangle> triangles;  // counter-clockwise seen from outside, or from above
    bool isMesh = false;
    bool isClosed = false;  // of contours: each ends with a copy of its first point
    bool isSolid = false;   // of a mesh: it has a front, a back and sides; else it is flat at z = 0
    double penWidth = 1;    // for pictures of the contours
    LengthUnit unit = LengthUnit::kNone;

    std::span<const Point> PointsOf(const Contour& contour) const {
        return {points.data() + contour.first, contour.count};
    }
};

struct TextBox {
    TextGeometry::Point low{};
    TextGeometry::Point high{};
};

// All 0 without points.
TextBox BoxOf(std::span<const TextGeometry::Point> points);

}  // namespace zr
