// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "host/message_sink.h"
#include "kernix/host_app_base.h"
#include "module/cadtext/cad_text.h"
#include "module/frame/globals.h"

// A host, and text made with one call.

using vl::zr::legacy::GlyphContour;
using vl::zr::legacy::GlyphTesselated;
using Vertex = vl::Vector3<float>;

class TestHost : public kernix::HostAppBase {
public:
    TestHost() { g_pHost = this; }
    ~TestHost() override { g_pHost = nullptr; }
    void ReportFailure(int code) override { failures.push_back(code); }

    std::vector<int> failures;
};

class TestSink final : public MessageSink {
public:
    void Message(int code, const char16_t* format, ...) override {
        codes.push_back(code);
        texts.emplace_back(format);
    }

    std::vector<int> codes;
    std::vector<std::u16string> texts;
};

inline LOGFONTW Font(const char16_t* face, LONG height = -12, LONG weight = 0) {
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWeight = weight;
    std::char_traits<char16_t>::copy(reinterpret_cast<char16_t*>(font.lfFaceName), face,
                                     std::char_traits<char16_t>::length(face));
    return font;
}

inline vl::Ref<ZR_CADTEXT> MakeCadText() {
    return vl::Ref<ZR_CADTEXT>::Adopt(new ZR_CADTEXT);
}

inline vl::Ref<GlyphContour> Outlines(const char16_t* text, const LOGFONTW& font = Font(u"DejaVu Sans"),
                                      double size = 12) {
    return vl::Ref<GlyphContour>::Adopt(MakeCadText()->CreateOutlineContours(text, font, size, nullptr));
}

inline vl::Ref<GlyphContour> Strokes(const char16_t* text) {
    return vl::Ref<GlyphContour>::Adopt(MakeCadText()->CreateStrokeContours(text, Font(u""), 12, nullptr));
}

inline vl::Ref<GlyphTesselated> Mesh(const char16_t* text, const LOGFONTW& font = Font(u"DejaVu Sans"),
                                     MessageSink* sink = nullptr) {
    return vl::Ref<GlyphTesselated>::Adopt(MakeCadText()->CreatePolygons(text, font, 12, sink));
}

inline std::vector<Vertex> Points(GlyphContour& contours, int contour) {
    const Vertex* first = contours.GetPoints(contour);
    return std::vector<Vertex>(first, first + contours.GetPointCount(contour));
}
