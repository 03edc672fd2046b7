// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <utility>

#include "host/extension.h"
#include "host/font.h"
#include "host/math.h"

class MessageSink;

inline constexpr char kTypeCadText[] = "CADTEXT";

// Indices of a triangle's corners among the vertices, counter-clockwise.
struct LetterTriangle {
    std::int32_t i0;
    std::int32_t i1;
    std::int32_t i2;
};

namespace vl::zr::legacy {

// A text as polylines, in the plane z = 0 until it is transformed. Contours are numbered from 0; a number out
// of range yields 0 or null. The object may outlive the extension that made it. The order of functions and
// fields is the binary interface (host/api.h).
class GlyphContour : public Interface {
public:
    virtual int GetContourCount() = 0;
    virtual int GetPointCount(int contour) = 0;  // at least 1 for an existing contour

    // Position in the text, in UTF-16 units, of the character the contour belongs to.
    virtual int GetLetterIndex(int contour) = 0;
    virtual const Vector3<float>* GetPoints(int contour) = 0;  // owned by the object
    virtual void Transform(const Matrix4<double>& m) = 0;      // every point, in place

    // Width and height of the box around all points; (-2e25, -2e25) without points.
    virtual std::pair<float, float> GetSize() = 0;

    const char* GetTypeName() override { return "zr_charcontour"; }
    bool IsTypeOf(const char* name) override {
        return EqualNoCase(name, "zr_charcontour") || Interface::IsTypeOf(name);
    }
    ResultEnum CopyFrom(Interface* source, unsigned flags) override {
        return dynamic_cast<GlyphContour*>(source) != nullptr ? CloneFrom(source, flags) : kWrongClass;
    }
};

// A text as a flat triangle mesh, in the plane z = 0 until it is transformed. The object may outlive the
// extension that made it. The order of functions and fields is the binary interface (host/api.h).
class GlyphTesselated : public Interface {
public:
    virtual int GetVertexCount() = 0;
    virtual int GetTriangleCount() = 0;
    virtual const Vector3<float>* GetVertices() = 0;   // owned by the object; null when there are none
    virtual const LetterTriangle* GetTriangles() = 0;  // the same
    virtual void Transform(const Matrix4<double>& m) = 0;
    virtual std::pair<float, float> GetSize() = 0;  // as GlyphContour::GetSize

    const char* GetTypeName() override { return "zr_charpoly"; }
    bool IsTypeOf(const char* name) override {
        return EqualNoCase(name, "zr_charpoly") || Interface::IsTypeOf(name);
    }
    ResultEnum CopyFrom(Interface* source, unsigned flags) override {
        return dynamic_cast<GlyphTesselated*>(source) != nullptr ? CloneFrom(source, flags) : kWrongClass;
    }
};

// Turns text into geometry. text is zero-terminated UTF-16; a line feed begins a new line. Each operation
// returns a new object with count 1, owned by the caller, or null when the result could not be made, also for
// lack of memory. sink may be null. Nothing is kept between calls. The order of functions and fields is the
// binary interface (host/api.h).
class CadText : public Extension {
public:
    // Open strokes of a built-in font, in units of that font, whose line spacing is 29. font, size and sink
    // are not used.
    virtual GlyphContour* CreateStrokeContours(const char16_t* text, LOGFONTW font, double size,
                                               MessageSink* sink) = 0;

    // Closed outlines of a system font. Points are in device units of the font enlarged ten times, times
    // size / 12: at size 12 one unit is one device unit.
    virtual GlyphContour* CreateOutlineContours(const char16_t* text, LOGFONTW font, double size,
                                                MessageSink* sink) = 0;

    // The outlines filled with triangles, by the host's extension "PolyBoolean". Without it the sink receives
    // a message and the result is null.
    virtual GlyphTesselated* CreatePolygons(const char16_t* text, LOGFONTW font, double size,
                                            MessageSink* sink) = 0;

    const char* GetTypeName() override { return "zr_cadtext"; }
    bool IsTypeOf(const char* name) override {
        return EqualNoCase(name, "zr_cadtext") || Extension::IsTypeOf(name);
    }
    ResultEnum CopyFrom(Interface* source, unsigned flags) override {
        return dynamic_cast<CadText*>(source) != nullptr ? CloneFrom(source, flags) : kWrongClass;
    }
};

}  // namespace vl::zr::legacy
