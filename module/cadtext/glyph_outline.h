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
    // Takes the outline from the system. The font is made ten times as high as the record says and
    // toleranceAngle, in radians, is counted as pi/2 at most; size 12 gives scale 1. When the system has no
    // outline to give, or a broken one, there are no contours, or those read so far, and the advance is 0.
    GlyphOutline(std::uint32_t characterCode, const LOGFONTW& font, double toleranceAngle, double size);

    // An outline without contours, for ParseNativeOutline.
    GlyphOutline(double toleranceAngle, double size);

    // Adds the polygons of a buffer in native form. False when the buffer is not of that form: a polygon or
    // curve of another type, a polygon that is shorter than its header, anything that reaches past
    // byteCount. What was read before the fault stays. A record without points leaves the current point where
    // it was; a spline of one point is a line to it.
    bool ParseNativeOutline(const BYTE* buffer, std::size_t byteCount);

    std::vector<std::vector<GlyphPoint>> contours;
    double advance = 0;  // of the glyph's cell, times scale

private:
    bool LoadNativeOutline(HDC dc, std::uint32_t characterCode);

    // Adds the spline through the off-curve points but the last, which is on the curve. At pi/2 a piece gives
    // its end points only.
    void AddSpline(GlyphPoint start, const GlyphPoint* points, std::size_t count);

    // Adds the piece of a cubic between two parameters, halved until the angle at its middle is flat.
    void FlattenCubic(const GlyphPoint (&cp)[4], float t0, float t1);
    static GlyphPoint EvaluateCubic(const GlyphPoint (&cp)[4], float t);

    // Adds a point in device units to the newest contour unless it repeats the last one.
    bool AddPoint(GlyphPoint point);

    double flatnessLimit;  // cosine of half the angle below which a piece is halved
    double scale;          // size / 12
};
