// SPDX-License-Identifier: MIT
#pragma once

#include "host/cad_text.h"
#include "platform/windows.h"

// Text as geometry. Stateless. An operation that fails, also for lack of memory, frees what it built and
// returns null.
class ZR_CADTEXT final : public vl::zr::legacy::CadText {
public:
    const char* GetTypeName() override { return kTypeCadText; }

    // Lines are 29 units apart, each above the one before. Characters outside 32 to 126 are skipped.
    vl::zr::legacy::GlyphContour* CreateStrokeContours(const char16_t* text, LOGFONTW font, double size,
                                                       MessageSink* sink) override;

    // The last line's baseline is at 0; a carriage return moves the pen to the start of the line, a line feed
    // moves it down. Every contour ends with a copy of its first point.
    vl::zr::legacy::GlyphContour* CreateOutlineContours(const char16_t* text, LOGFONTW font, double size,
                                                        MessageSink* sink) override;

    // One welded mesh at z = 0, with each letter triangulated by itself.
    vl::zr::legacy::GlyphTesselated* CreatePolygons(const char16_t* text, LOGFONTW font, double size,
                                                    MessageSink* sink) override;

private:
    void DeleteThis() override { delete this; }
};
