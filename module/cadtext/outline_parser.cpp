// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "module/cadtext/glyph_outline.h"

// Where a value is a float, the arithmetic of this file is in single precision: its results are defined to
// the bit.

namespace {

GlyphPoint operator+(GlyphPoint a, GlyphPoint b) {
    return {a.x + b.x, a.y + b.y};
}
GlyphPoint operator*(GlyphPoint a, float f) {
    return {a.x * f, a.y * f};
}

float ToFloat(FIXED fixed) {
    return static_cast<float>(fixed.value) + static_cast<float>(fixed.fract) * 1.52587890625e-5f;
}

GlyphPoint ToPoint(const POINTFX& point) {
    return {ToFloat(point.x), ToFloat(point.y)};
}

double Distance(GlyphPoint a, GlyphPoint b) {
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    const auto squared = static_cast<float>(dx * dx + dy * dy);
    return squared > 0 ? std::sqrt(static_cast<double>(squared)) : 0.0;
}

template <class T>
T ReadAt(const BYTE* buffer, std::size_t position) {
    T value;
    std::memcpy(&value, buffer + position, sizeof value);
    return value;
}

constexpr std::size_t kCurveHeadSize = offsetof(TTPOLYCURVE, apfx);

}  // namespace

GlyphOutline::GlyphOutline(double toleranceAngle, double size)
    : flatnessLimit(
          std::cos(std::numbers::pi / 2 -
                   (toleranceAngle <= std::numbers::pi / 2 ? toleranceAngle : std::numbers::pi / 2))),
      scale(size / 12.0) {}

bool GlyphOutline::ParseNativeOutline(const BYTE* buffer, std::size_t byteCount) {
    std::vector<GlyphPoint> points;
    for (std::size_t header = 0; header < byteCount;) {
        if (byteCount - header < sizeof(TTPOLYGONHEADER)) return false;
        const auto polygon = ReadAt<TTPOLYGONHEADER>(buffer, header);
        if (polygon.dwType != TT_POLYGON_TYPE || polygon.cb < sizeof polygon ||
            polygon.cb > byteCount - header) {
            return false;
        }
        contours.emplace_back();
        const std::size_t end = header + polygon.cb;
        GlyphPoint current = ToPoint(polygon.pfxStart);
        for (std::size_t record = header + sizeof polygon; record < end;) {
            if (byteCount - record < kCurveHeadSize) return false;
            const auto type = ReadAt<WORD>(buffer, record + offsetof(TTPOLYCURVE, wType));
            const std::size_t count = ReadAt<WORD>(buffer, record + offsetof(TTPOLYCURVE, cpfx));
            const std::size_t first = record + kCurveHeadSize;
            if ((type != TT_PRIM_LINE && type != TT_PRIM_QSPLINE) ||
                count > (byteCount - first) / sizeof(POINTFX)) {
                return false;
            }
            points.clear();
            for (std::size_t i = 0; i < count; ++i) {
                points.push_back(ToPoint(ReadAt<POINTFX>(buffer, first + i * sizeof(POINTFX))));
            }
            if (type == TT_PRIM_QSPLINE && count > 1) {
                AddSpline(current, points.data(), count);
            } else if (type == TT_PRIM_LINE || count == 1) {
                AddPoint(current);
                for (const GlyphPoint point : points) AddPoint(point);
            }
            if (!points.empty()) current = points.back();
            record = first + count * sizeof(POINTFX);
        }
        header = end;
    }
    return true;
}

void GlyphOutline::AddSpline(GlyphPoint start, const GlyphPoint* points, std::size_t count) {
    for (std::size_t k = 0; k + 1 < count; ++k) {
        const GlyphPoint b = points[k];
        const GlyphPoint c = k + 2 == count ? points[k + 1] : (b + points[k + 1]) * 0.5f;
        FlattenCubic({start, (start + b) * 0.5f, (b + c) * 0.5f, c}, 0.0f, 1.0f);
        start = c;
    }
}

void GlyphOutline::FlattenCubic(const GlyphPoint (&cp)[4], float t0, float t1) {
    const float tm = (t0 + t1) * 0.5f;
    const GlyphPoint p0 = EvaluateCubic(cp, t0);
    const GlyphPoint pm = EvaluateCubic(cp, tm);
    const GlyphPoint p1 = EvaluateCubic(cp, t1);
    AddPoint(p0);
    const double a = Distance(p0, pm);
    const double b = Distance(p1, pm);
    const double c = Distance(p0, p1);
    const double s = (a + b + c) * 0.5;
    // The cosine of half the angle at the middle, and the area that distinguishes a bend from rounding. The
    // depth is bounded by the floats between t0 and t1: halving ends at the latest when the middle coincides
    // with an end and the area is 0.
    const double k = a * b == 0 ? 1.0 : std::sqrt(s * (s - c) / (a * b));
    if (k > flatnessLimit && static_cast<float>(std::sqrt(s * (s - a) * (s - b) * (s - c))) > 0.0f) {
        FlattenCubic(cp, t0, tm);
        AddPoint(pm);
        FlattenCubic(cp, tm, t1);
    }
    AddPoint(p1);
}

GlyphPoint GlyphOutline::EvaluateCubic(const GlyphPoint (&cp)[4], float t) {
    GlyphPoint q[4];
    std::copy(std::begin(cp), std::end(cp), q);
    for (int n = 3; n > 0; --n) {
        for (int j = 0; j < n; ++j) q[j] = q[j] * (1 - t) + q[j + 1] * t;
    }
    return q[0];
}

bool GlyphOutline::AddPoint(GlyphPoint point) {
    const GlyphPoint scaled{static_cast<float>(point.x * scale), static_cast<float>(point.y * scale)};
    std::vector<GlyphPoint>& contour = contours.back();
    if (!contour.empty() && contour.back() == scaled) return false;
    contour.push_back(scaled);
    return true;
}
