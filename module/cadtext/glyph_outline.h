// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/windows.h"

// Device units of the ten times enlarged font times GlyphOutline::scale, y up, relative to the glyph's
// origin on the baseline.
struct GlyphPoint {
    float x = 0;
    float y = 0;
    friend bool operator==(const GlyphPoint&, const GlyphPoint&) = default;
};

// One character of a scalable font as flat closed contours; the segment from the last point back to the
// first is implied. No point equals the one before it in its contour.
class GlyphOutline {
public:
    // Gets the outline from the system. The font is created ten times as high as the record says;
    // toleranceAngle, in radians, is capped at pi/2; size 12 gives scale 1. If the system has no outline, or
    // a broken one, there are no contours, or only those read so far, and the advance is 0.
    GlyphOutline(std::uint32_t characterCode, const LOGFONTW& font, double toleranceAngle, double size);

    // An outline without contours, for ParseNativeOutline.
    GlyphOutline(double toleranceAngle, double size);

    // Adds the polygons of a buffer in native form. False if the buffer is malformed: a polygon or curve of
    // an unknown type, a polygon shorter than its header, anything that extends past byteCount. What was read
    // before the fault is kept. A record without points leaves the current point where it was; a spline of
    // one point is a line to that point.
    bool ParseNativeOutline(const BYTE* buffer, std::size_t byteCount);

    std::vector<std::vector<GlyphPoint>> contours;
    double advance = 0;  // of the glyph's cell, times scale

private:
    bool LoadNativeOutline(HDC dc, std::uint32_t characterCode);

    // Adds a quadratic spline: the last point is on the curve, the others are control points. At a tolerance
    // of pi/2 each piece gives its end points only.
    void AddSpline(GlyphPoint start, const GlyphPoint* points, std::size_t count);

    // Adds the piece of a cubic between two parameters, halved until it is flat at its middle.
    void FlattenCubic(const GlyphPoint (&cp)[4], float t0, float t1);
    static GlyphPoint EvaluateCubic(const GlyphPoint (&cp)[4], float t);

    // Adds a point in device units to the newest contour unless it repeats the last one.
    bool AddPoint(GlyphPoint point);

    double flatnessLimit;  // cosine of half the angle below which a piece is halved
    double scale;          // size / 12
};
