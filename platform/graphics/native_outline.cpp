// SPDX-License-Identifier: MIT
#include "platform/graphics/native_outline.h"

#include <ft2build.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include FT_OUTLINE_H

namespace platform {
namespace {

struct Point {
    double x;
    double y;
};

Point operator+(Point a, Point b) {
    return {a.x + b.x, a.y + b.y};
}
Point operator-(Point a, Point b) {
    return {a.x - b.x, a.y - b.y};
}
Point operator*(Point a, double f) {
    return {a.x * f, a.y * f};
}

Point Middle(Point a, Point b) {
    return (a + b) * 0.5;
}

class Writer {
public:
    explicit Writer(std::vector<BYTE>& bytes) : m_bytes(bytes) {}

    bool Fits() const { return m_fits; }

    void BeginPolygon(Point start) {
        m_polygon = m_bytes.size();
        m_curveEnd = 0;
        Append(TTPOLYGONHEADER{0, TT_POLYGON_TYPE, ToFixed(start)});
    }

    void EndPolygon() {
        const auto cb = static_cast<DWORD>(m_bytes.size() - m_polygon);
        std::memcpy(&m_bytes[m_polygon + offsetof(TTPOLYGONHEADER, cb)], &cb, sizeof cb);
    }

    // Consecutive lines share a record.
    void Line(Point to) {
        if (m_curveEnd != m_bytes.size() || m_type != TT_PRIM_LINE || m_count == 0xFFFF) {
            BeginCurve(TT_PRIM_LINE);
        }
        AddPoint(to);
    }

    void BeginCurve(WORD type) {
        m_type = type;
        m_count = 0;
        m_curve = m_bytes.size();
        const WORD head[2] = {type, 0};
        Append(head);
    }

    void AddPoint(Point point) {
        Append(ToFixed(point));
        ++m_count;
        std::memcpy(&m_bytes[m_curve + offsetof(TTPOLYCURVE, cpfx)], &m_count, sizeof m_count);
        m_curveEnd = m_bytes.size();
    }

private:
    template <class T>
    void Append(const T& value) {
        const auto* first = reinterpret_cast<const BYTE*>(&value);
        m_bytes.insert(m_bytes.end(), first, first + sizeof value);
    }

    FIXED ToFixed(double value) {
        const double scaled = std::floor(value * 65536.0 + 0.5);
        if (!(scaled >= -2147483648.0 && scaled <= 2147483647.0)) {
            m_fits = false;
            return {};
        }
        const auto bits = static_cast<std::int32_t>(scaled);
        return {static_cast<WORD>(bits & 0xFFFF), static_cast<SHORT>(bits >> 16)};
    }

    POINTFX ToFixed(Point point) { return {ToFixed(point.x), ToFixed(point.y)}; }

    std::vector<BYTE>& m_bytes;
    std::size_t m_polygon = 0;
    std::size_t m_curve = 0;
    std::size_t m_curveEnd = 0;
    WORD m_type = 0;
    WORD m_count = 0;
    bool m_fits = true;
};

// With the control point (3 (b + c) - a - d) / 4 a quadratic strays from the cubic a b c d by at most
// sqrt(3) / 36 |d - 3 c + 3 b - a|; cutting the cubic into n equal pieces divides that by n cubed.
void WriteCubic(Writer& writer, Point a, Point b, Point c, Point d) {
    const Point cubicTerm = d - c * 3.0 + b * 3.0 - a;
    const double error = std::sqrt(3.0) / 36.0 * std::hypot(cubicTerm.x, cubicTerm.y);
    // A FIXED's rounding takes a little of the tolerance; no glyph that fits a FIXED needs more pieces than
    // the cap.
    const double tolerance = kCubicTolerance - 1.0 / 65536.0;
    const int pieces = static_cast<int>(std::clamp(std::ceil(std::cbrt(error / tolerance)), 1.0, 1000.0));
    const auto at = [&](double t) {
        const double s = 1.0 - t;
        return a * (s * s * s) + b * (3 * s * s * t) + c * (3 * s * t * t) + d * (t * t * t);
    };
    const auto slope = [&](double t) {
        const double s = 1.0 - t;
        return ((b - a) * (s * s) + (c - b) * (2 * s * t) + (d - c) * (t * t)) * 3.0;
    };
    const double step = 1.0 / pieces;
    Point from = a;
    for (int i = 1; i <= pieces; ++i) {
        const Point to = i == pieces ? d : at(i * step);
        const Point inner0 = from + slope((i - 1) * step) * (step / 3.0);
        const Point inner1 = to - slope(i * step) * (step / 3.0);
        writer.BeginCurve(TT_PRIM_QSPLINE);
        writer.AddPoint(((inner0 + inner1) * 3.0 - from - to) * 0.25);
        writer.AddPoint(to);
        from = to;
    }
}

// Writes the polygon from `start` through the points next to end - 1 back to `start`.
template <class PointAt, class TagAt>
void WriteContour(Writer& writer, Point start, int next, int end, PointAt point, TagAt tag) {
    writer.BeginPolygon(start);
    Point current = start;
    const auto pointOrStart = [&](int i) { return i < end ? point(i) : start; };
    for (int i = next; i < end; ++i) {
        if (tag(i) == FT_CURVE_TAG_ON) {
            current = point(i);
            writer.Line(current);
        } else if (tag(i) == FT_CURVE_TAG_CUBIC) {
            const Point to = pointOrStart(i + 2);
            WriteCubic(writer, current, point(i), point(i + 1), to);
            current = to;
            i += 2;
        } else {
            writer.BeginCurve(TT_PRIM_QSPLINE);
            for (; i < end && tag(i) == FT_CURVE_TAG_CONIC; ++i) writer.AddPoint(point(i));
            current = pointOrStart(i);
            writer.AddPoint(current);
        }
    }
    writer.EndPolygon();
}

}  // namespace

bool AppendNativeOutline(const FT_Outline_& outline, int ppem, int unitsPerEm, std::vector<BYTE>& bytes) {
    Writer writer(bytes);
    const double scale = static_cast<double>(ppem) / unitsPerEm;
    int first = 0;
    for (int contour = 0; contour < outline.n_contours; ++contour) {
        const int last = outline.contours[contour];
        const int count = last - first + 1;
        const auto point = [&](int i) {
            const FT_Vector& v = outline.points[first + i % count];
            return Point{static_cast<double>(v.x) * scale, static_cast<double>(v.y) * scale};
        };
        const auto tag = [&](int i) { return FT_CURVE_TAG(outline.tags[first + i % count]); };
        if (count >= 2) {
            int origin = 0;
            while (origin < count && tag(origin) != FT_CURVE_TAG_ON) ++origin;
            // A contour of off-curve points alone starts midway between its last and first.
            const bool hasOn = origin < count;
            const Point start = hasOn ? point(origin) : Middle(point(count - 1), point(0));
            const int next = hasOn ? origin + 1 : 0;
            WriteContour(writer, start, next, hasOn ? next + count - 1 : count, point, tag);
        }
        first = last + 1;
    }
    return writer.Fits();
}

}  // namespace platform
