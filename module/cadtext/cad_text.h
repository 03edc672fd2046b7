// SPDX-License-Identifier: MIT
#pragma once

#include "host/cad_text.h"
#include "platform/windows.h"

// Text as geometry. Keeps nothing between calls. An operation that fails, for want of memory too, frees
// what it built and answers null.
class ZR_CADTEXT final : public vl::zr::legacy::CadText {
public:
    const char* GetTypeName() override { return kTypeCadText; }

    // Lines stand 29 units apart, upwards. Characters outside 32 to 126 are skipped.
    vl::zr::legacy::GlyphContour* CreateStrokeContours(const char16_t* text, LOGFONTW font, double size,
                                                       MessageSink* sink) override;

    // The last line's baseline is at 0; a carriage return takes the pen back, a line feed down. Every
    // contour ends with a copy of its first point.
    vl::zr::legacy::GlyphContour* CreateOutlineContours(const char16_t* text, LOGFONTW font, double size,
                                                        MessageSink* sink) override;

    // Each letter by itself into one welded mesh at z = 0.
    vl::zr::legacy::GlyphTesselated* CreatePolygons(const char16_t* text, LOGFONTW font, double size,
                                                    MessageSink* sink) override;

private:
    void DeleteThis() override { delete this; }
};
