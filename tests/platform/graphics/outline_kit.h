// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "platform/windows.h"

// Outlines from the graphics calls, as polylines.

inline constexpr MAT2 kIdentity{{0, 1}, {0, 0}, {0, 0}, {0, 1}};

inline LOGFONTW Record(const char16_t* face, LONG height, LONG weight = 0, bool italic = false) {
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWeight = weight;
    font.lfItalic = italic;
    std::char_traits<char16_t>::copy(reinterpret_cast<char16_t*>(font.lfFaceName), face,
                                     std::char_traits<char16_t>::length(face));
    return font;
}

// A font selected into the screen.
class Screen {
public:
    explicit Screen(const LOGFONTW& font)
        : m_font(CreateFontIndirectW(&font)), m_dc(GetDC(nullptr)), m_previous(SelectObject(m_dc, m_font)) {}
    ~Screen() {
        SelectObject(m_dc, m_previous);
        ReleaseDC(nullptr, m_dc);
        DeleteObject(m_font);
    }

    HDC Dc() const { return m_dc; }
    bool HasFont() const { return m_font != nullptr; }

    std::vector<BYTE> Outline(UINT character, GLYPHMETRICS& metrics) const {
        const DWORD size = GetGlyphOutlineA(m_dc, character, GGO_NATIVE, &metrics, 0, nullptr, &kIdentity);
        EXPECT_NE(size, GDI_ERROR) << character;
        if (size == GDI_ERROR) return {};
        std::vector<BYTE> bytes(size);
        if (size != 0) {
            EXPECT_EQ(GetGlyphOutlineA(m_dc, character, GGO_NATIVE, &metrics, size, bytes.data(), &kIdentity),
                      size);
        }
        return bytes;
    }

    int Advance(UINT character) const {
        GLYPHMETRICS metrics{};
        Outline(character, metrics);
        return metrics.gmCellIncX;
    }

    std::u16string Face() const {
        char16_t name[LF_FACESIZE];
        const int length = GetTextFaceW(m_dc, LF_FACESIZE, platform::Wide(name));
        return std::u16string(name, static_cast<std::size_t>(std::max(length - 1, 0)));
    }

private:
    HFONT m_font;
    HDC m_dc;
    HGDIOBJ m_previous;
};

struct Point {
    double x;
    double y;
};
using Contour = std::vector<Point>;

inline constexpr int kSamples = 32;

inline void SampleQuadratic(Contour& line, Point b, Point c) {
    const Point a = line.back();
    for (int i = 1; i <= kSamples; ++i) {
        const double t = static_cast<double>(i) / kSamples;
        const double s = 1 - t;
        line.push_back(
            {s * s * a.x + 2 * s * t * b.x + t * t * c.x, s * s * a.y + 2 * s * t * b.y + t * t * c.y});
    }
}

inline void Close(Contour& line) {
    if (line.back().x != line.front().x || line.back().y != line.front().y) line.push_back(line.front());
}

inline Point ToPoint(const POINTFX& p) {
    return {p.x.value + p.x.fract / 65536.0, p.y.value + p.y.fract / 65536.0};
}

// Reads the native records back, checking that their sizes tile the buffer.
inline std::vector<Contour> SampleNative(const std::vector<BYTE>& bytes) {
    std::vector<Contour> lines;
    std::size_t at = 0;
    while (at < bytes.size()) {
        TTPOLYGONHEADER header;
        if (at + sizeof header > bytes.size()) ADD_FAILURE() << "a header is cut off";
        std::memcpy(&header, &bytes[at], sizeof header);
        EXPECT_EQ(header.dwType, TT_POLYGON_TYPE);
        const std::size_t end = at + header.cb;
        Contour line{ToPoint(header.pfxStart)};
        at += sizeof header;
        while (at < end) {
            WORD head[2];
            std::memcpy(head, &bytes[at], sizeof head);
            std::vector<POINTFX> points(head[1]);
            std::memcpy(points.data(), &bytes[at + sizeof head], points.size() * sizeof(POINTFX));
            at += sizeof head + points.size() * sizeof(POINTFX);
            if (head[0] == TT_PRIM_LINE) {
                for (const POINTFX& p : points) line.push_back(ToPoint(p));
                continue;
            }
            EXPECT_EQ(head[0], TT_PRIM_QSPLINE);
            for (std::size_t k = 0; k + 1 < points.size(); ++k) {
                const Point control = ToPoint(points[k]);
                const Point next = ToPoint(points[k + 1]);
                const bool isLast = k + 2 == points.size();
                SampleQuadratic(line, control,
                                isLast ? next : Point{(control.x + next.x) / 2, (control.y + next.y) / 2});
            }
        }
        EXPECT_EQ(at, end);
        Close(line);
        lines.push_back(line);
    }
    return lines;
}

inline double Distance(Point p, Point a, Point b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double length2 = dx * dx + dy * dy;
    double t = length2 > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length2 : 0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

// Largest distance of a point of `from` to the polyline `to`.
inline double Deviation(const Contour& from, const Contour& to) {
    double worst = 0;
    for (const Point p : from) {
        double best = 1e30;
        for (std::size_t i = 0; i + 1 < to.size(); ++i) best = std::min(best, Distance(p, to[i], to[i + 1]));
        worst = std::max(worst, best);
    }
    return worst;
}
