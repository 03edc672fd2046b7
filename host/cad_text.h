// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <utility>

#include "host/extension.h"
#include "host/math.h"
#include "host/window_types.h"

class MessageSink;

// Indices of a triangle's corners.
struct LetterTriangle {
    std::int32_t i0;
    std::int32_t i1;
    std::int32_t i2;
};

namespace vl::zr::legacy {

// A text as polylines. Contours count from 0; a number outside gives 0 and null.
class GlyphContour : public Interface {
public:
    virtual int GetContourCount() = 0;
    virtual int GetPointCount(int contour) = 0;

    // Position in the text, in UTF-16 units, of the character the contour belongs to.
    virtual int GetLetterIndex(int contour) = 0;
    virtual const Vector3<float>* GetPoints(int contour) = 0;  // valid until the object changes
    virtual void Transform(const Matrix4<double>& m) = 0;

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

// A text as a flat triangle mesh.
class GlyphTesselated : public Interface {
public:
    virtual int GetVertexCount() = 0;
    virtual int GetTriangleCount() = 0;
    virtual const Vector3<float>* GetVertices() = 0;   // null when there is none
    virtual const LetterTriangle* GetTriangles() = 0;  // null when there is none
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

// Turns text into geometry. text is zero-terminated UTF-16; the caller holds the result's one count. Null
// when the result could not be made.
class CadText : public Extension {
public:
    // Open strokes of a built-in font, in font units. font, size and sink are not used.
    virtual GlyphContour* CreateStrokeContours(const char16_t* text, LOGFONTW font, double size,
                                               MessageSink* sink) = 0;

    // Closed outlines of a system font. Points are device units of the ten times enlarged font, times
    // size / 12.
    virtual GlyphContour* CreateOutlineContours(const char16_t* text, LOGFONTW font, double size,
                                                MessageSink* sink) = 0;

    // The outlines filled with triangles. sink, which may be null, receives the failure message.
    virtual GlyphTesselated* CreatePolygons(const char16_t* text, LOGFONTW font, double size,
                                            MessageSink* sink) = 0;

    const char* GetTypeName() override { return "zr_cadtext"; }
    bool IsTypeOf(const char* name) override {
        return EqualNoCase(name, "zr_cadtext") || EqualNoCase(name, "zr_extension") ||
               Interface::IsTypeOf(name);
    }
    ResultEnum CopyFrom(Interface* source, unsigned flags) override {
        return dynamic_cast<CadText*>(source) != nullptr ? CloneFrom(source, flags) : kWrongClass;
    }
};

}  // namespace vl::zr::legacy
