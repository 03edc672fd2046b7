// SPDX-License-Identifier: MIT
#include "platform/windows/gdi.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <thread>
#include <vector>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace {

constexpr MAT2 kIdentity{{0, 1}, {0, 0}, {0, 0}, {0, 1}};

LOGFONTW Record(const char16_t* face, LONG height, LONG weight = 0, bool italic = false) {
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWeight = weight;
    font.lfItalic = italic;
    std::char_traits<char16_t>::copy(font.lfFaceName, face, std::char_traits<char16_t>::length(face));
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
        const int length = GetTextFaceW(m_dc, LF_FACESIZE, name);
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
using Polyline = std::vector<Point>;

constexpr int kSamples = 32;

void SampleQuadratic(Polyline& line, Point b, Point c) {
    const Point a = line.back();
    for (int i = 1; i <= kSamples; ++i) {
        const double t = static_cast<double>(i) / kSamples;
        const double s = 1 - t;
        line.push_back(
            {s * s * a.x + 2 * s * t * b.x + t * t * c.x, s * s * a.y + 2 * s * t * b.y + t * t * c.y});
    }
}

void Close(Polyline& line) {
    if (line.back().x != line.front().x || line.back().y != line.front().y) line.push_back(line.front());
}

Point ToPoint(const POINTFX& p) {
    return {p.x.value + p.x.fract / 65536.0, p.y.value + p.y.fract / 65536.0};
}

// Reads the native records back, checking that their sizes tile the buffer.
std::vector<Polyline> SampleNative(const std::vector<BYTE>& bytes) {
    std::vector<Polyline> lines;
    std::size_t at = 0;
    while (at < bytes.size()) {
        TTPOLYGONHEADER header;
        if (at + sizeof header > bytes.size()) ADD_FAILURE() << "a header is cut off";
        std::memcpy(&header, &bytes[at], sizeof header);
        EXPECT_EQ(header.dwType, TT_POLYGON_TYPE);
        const std::size_t end = at + header.cb;
        Polyline line{ToPoint(header.pfxStart)};
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

// The same outline through the rasteriser's own decomposition, in device units.
struct Reference {
    std::vector<Polyline> lines;
    double scale;

    Point Scaled(const FT_Vector* v) const { return {v->x * scale, v->y * scale}; }

    static int Move(const FT_Vector* to, void* user) {
        auto* self = static_cast<Reference*>(user);
        self->lines.push_back({self->Scaled(to)});
        return 0;
    }
    static int Line(const FT_Vector* to, void* user) {
        auto* self = static_cast<Reference*>(user);
        self->lines.back().push_back(self->Scaled(to));
        return 0;
    }
    static int Conic(const FT_Vector* control, const FT_Vector* to, void* user) {
        auto* self = static_cast<Reference*>(user);
        SampleQuadratic(self->lines.back(), self->Scaled(control), self->Scaled(to));
        return 0;
    }
    static int Cubic(const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* user) {
        auto* self = static_cast<Reference*>(user);
        const Point a = self->lines.back().back();
        const Point b = self->Scaled(c1);
        const Point c = self->Scaled(c2);
        const Point d = self->Scaled(to);
        constexpr int kCubicSamples = 8 * kSamples;
        for (int i = 1; i <= kCubicSamples; ++i) {
            const double t = static_cast<double>(i) / kCubicSamples;
            const double s = 1 - t;
            const double w[4] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
            self->lines.back().push_back({w[0] * a.x + w[1] * b.x + w[2] * c.x + w[3] * d.x,
                                          w[0] * a.y + w[1] * b.y + w[2] * c.y + w[3] * d.y});
        }
        return 0;
    }
};

std::string FontFile(const char* family) {
    FcPattern* pattern = FcNameParse(reinterpret_cast<const FcChar8*>(family));
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result;
    FcPattern* best = FcFontMatch(nullptr, pattern, &result);
    FcChar8* file = nullptr;
    FcPatternGetString(best, FC_FILE, 0, &file);
    std::string path = reinterpret_cast<const char*>(file);
    FcPatternDestroy(best);
    FcPatternDestroy(pattern);
    return path;
}

double Distance(Point p, Point a, Point b) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double length2 = dx * dx + dy * dy;
    double t = length2 > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / length2 : 0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

// Largest distance of a point of `from` to the polyline `to`.
double Deviation(const Polyline& from, const Polyline& to) {
    double worst = 0;
    for (const Point p : from) {
        double best = 1e30;
        for (std::size_t i = 0; i + 1 < to.size(); ++i) best = std::min(best, Distance(p, to[i], to[i + 1]));
        worst = std::max(worst, best);
    }
    return worst;
}

// Largest distance between points of one number.
double LargestStep(const Polyline& a, const Polyline& b) {
    if (a.size() != b.size()) return 1e30;
    double worst = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        worst = std::max(worst, std::hypot(a[i].x - b[i].x, a[i].y - b[i].y));
    }
    return worst;
}

struct FontCase {
    const char* pattern;
    const char16_t* face;
    LONG weight;
    bool isCubic;
};

TEST(GlyphOutline, FollowsTheFontsOwnCurves) {
    // Quadratic fonts go over as they are; cubic ones stay within their tolerance.
    const FontCase cases[] = {{"DejaVu Sans", u"DejaVu Sans", 0, false},
                              {"DejaVu Serif:bold", u"DejaVu Serif", FW_BOLD, false},
                              {"Liberation Sans", u"Liberation Sans", 0, false},
                              {"Cantarell", u"Cantarell", 0, true}};
    FT_Library library;
    ASSERT_EQ(FT_Init_FreeType(&library), 0);
    for (const FontCase& font : cases) {
        FT_Face face;
        ASSERT_EQ(FT_New_Face(library, FontFile(font.pattern).c_str(), 0, &face), 0);
        const Screen screen(Record(font.face, -120, font.weight));
        ASSERT_EQ(screen.Face(), font.face);
        for (UINT c = 33; c <= 126; ++c) {
            SCOPED_TRACE(std::string(font.pattern) + " " + static_cast<char>(c));
            ASSERT_EQ(FT_Load_Char(face, c, FT_LOAD_NO_SCALE), 0);
            // The decomposition rounds implied points to whole units: give it finer ones.
            const FT_Matrix finer{64 << 16, 0, 0, 64 << 16};
            FT_Outline_Transform(&face->glyph->outline, &finer);
            Reference reference{{}, 120.0 / face->units_per_EM / 64};
            const FT_Outline_Funcs functions{
                Reference::Move, Reference::Line, Reference::Conic, Reference::Cubic, 0, 0};
            FT_Outline_Decompose(&face->glyph->outline, &functions, &reference);
            // Some glyphs carry stray points as contours of their own; they draw nothing.
            std::erase_if(reference.lines, [](const Polyline& line) {
                return std::all_of(line.begin(), line.end(),
                                   [&](Point p) { return p.x == line[0].x && p.y == line[0].y; });
            });
            for (Polyline& line : reference.lines) Close(line);

            GLYPHMETRICS metrics{};
            const std::vector<Polyline> native = SampleNative(screen.Outline(c, metrics));
            ASSERT_EQ(native.size(), reference.lines.size());
            for (std::size_t i = 0; i < native.size(); ++i) {
                if (font.isCubic) {
                    ASSERT_LT(Deviation(native[i], reference.lines[i]), 0.0105);
                    ASSERT_LT(Deviation(reference.lines[i], native[i]), 0.0105);
                } else {
                    ASSERT_LT(LargestStep(native[i], reference.lines[i]), 1e-4);
                }
            }
        }
        FT_Done_Face(face);
    }
    FT_Done_FreeType(library);
}

TEST(GlyphOutline, MetricsAreWholeDeviceUnits) {
    // DejaVu Sans has 2048 units an em; its A is 1401 wide and spans 16 to 1384, 0 to 1493.
    const Screen screen(Record(u"DejaVu Sans", -120));
    GLYPHMETRICS metrics{};
    screen.Outline('A', metrics);
    EXPECT_EQ(metrics.gmCellIncX, 82);
    EXPECT_EQ(metrics.gmptGlyphOrigin.x, 0);
    EXPECT_EQ(metrics.gmptGlyphOrigin.y, 88);
    EXPECT_EQ(metrics.gmBlackBoxX, 82u);
    EXPECT_EQ(metrics.gmBlackBoxY, 88u);

    EXPECT_TRUE(screen.Outline(' ', metrics).empty());
    EXPECT_EQ(metrics.gmCellIncX, 38);  // 651 units
}

TEST(GlyphOutline, HeightIsOfTheEmOrOfTheCell) {
    EXPECT_EQ(Screen(Record(u"DejaVu Sans", -2048)).Advance('A'), 1401);
    EXPECT_EQ(Screen(Record(u"DejaVu Sans", 1901 + 483)).Advance('A'), 1401);
    EXPECT_EQ(Screen(Record(u"DejaVu Sans", 0)).Advance('A'), 11);  // 16 to the em
}

TEST(GlyphOutline, RefusesWhatItCannotGive) {
    GLYPHMETRICS metrics{};
    const Screen big(Record(u"DejaVu Sans", -100000));
    EXPECT_EQ(GetGlyphOutlineA(big.Dc(), 'A', GGO_NATIVE, &metrics, 0, nullptr, &kIdentity), GDI_ERROR);

    const Screen screen(Record(u"DejaVu Sans", -120));
    const DWORD size = GetGlyphOutlineA(screen.Dc(), 'A', GGO_NATIVE, &metrics, 0, nullptr, &kIdentity);
    std::vector<BYTE> bytes(size - 1);
    EXPECT_EQ(GetGlyphOutlineA(screen.Dc(), 'A', GGO_NATIVE, &metrics, size - 1, bytes.data(), &kIdentity),
              GDI_ERROR);
    const MAT2 turned{{0, 0}, {0, 1}, {0, -1}, {0, 0}};
    EXPECT_EQ(GetGlyphOutlineA(screen.Dc(), 'A', GGO_NATIVE, &metrics, 0, nullptr, &turned), GDI_ERROR);
    EXPECT_EQ(GetGlyphOutlineA(screen.Dc(), 'A', 0, &metrics, 0, nullptr, &kIdentity), GDI_ERROR);

    const HDC bare = GetDC(nullptr);
    EXPECT_EQ(GetGlyphOutlineA(bare, 'A', GGO_NATIVE, &metrics, 0, nullptr, &kIdentity), GDI_ERROR);
    EXPECT_EQ(SelectObject(bare, nullptr), nullptr);
    ReleaseDC(nullptr, bare);
}

TEST(Fonts, ANameTheSystemLacksGivesAnotherFamilyAndSaysSo) {
    const Screen screen(Record(u"No Such Family", -12));
    ASSERT_TRUE(screen.HasFont());
    EXPECT_NE(screen.Face(), u"No Such Family");
    EXPECT_FALSE(screen.Face().empty());
    // One of several names of a family is as good as its first.
    EXPECT_EQ(Screen(Record(u"dejavu sans condensed", -12)).Face(), u"DejaVu Sans Condensed");
}

TEST(Fonts, ACharacterTheFontLacksIsMarkedAndDrawnAsReplacement) {
    const Screen screen(Record(u"Liberation Sans", -120));
    WORD glyphs[3];
    ASSERT_EQ(GetGlyphIndicesW(screen.Dc(), u"A\u4E00\xD83D", 3, glyphs, GGI_MARK_NONEXISTING_GLYPHS), 3u);
    EXPECT_NE(glyphs[0], 0xFFFF);
    EXPECT_EQ(glyphs[1], 0xFFFF);
    EXPECT_EQ(glyphs[2], 0xFFFF);
    GLYPHMETRICS metrics{};
    EXPECT_FALSE(screen.Outline(0x4E00, metrics).empty());
    EXPECT_GT(metrics.gmCellIncX, 0);
}

TEST(Fonts, WeightAndSlantChooseTheFaceOrAreMade) {
    EXPECT_LT(Screen(Record(u"DejaVu Sans", -480)).Advance('A'),
              Screen(Record(u"DejaVu Sans", -480, FW_BOLD)).Advance('A'));

    // Cantarell has no italic: the upright outline is sheared.
    GLYPHMETRICS metrics{};
    const auto upright = SampleNative(Screen(Record(u"Cantarell", -480)).Outline('l', metrics));
    const auto slanted = SampleNative(Screen(Record(u"Cantarell", -480, 0, true)).Outline('l', metrics));
    ASSERT_EQ(upright.size(), 1u);
    ASSERT_EQ(slanted.size(), 1u);
    Polyline sheared = upright[0];
    for (Point& p : sheared) p.x += 0.2 * p.y;
    EXPECT_LT(Deviation(sheared, slanted[0]), 0.5);  // sheared in whole font units
    EXPECT_LT(Deviation(slanted[0], sheared), 0.5);
    EXPECT_GT(Deviation(upright[0], slanted[0]), 20);
}

TEST(Fonts, ThreadsShareAFace) {
    int widths[4] = {};
    std::vector<std::thread> threads;
    for (int& width : widths) {
        threads.emplace_back([&width] {
            for (UINT c = 33; c <= 126; ++c) width += Screen(Record(u"Liberation Serif", -120)).Advance(c);
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GT(widths[0], 94 * 20);
    for (const int width : widths) EXPECT_EQ(width, widths[0]);
}

TEST(MulDivTest, RoundsHalfAwayFromZero) {
    EXPECT_EQ(MulDiv(-12, 72, 96), -9);
    EXPECT_EQ(MulDiv(-10, 72, 96), -8);  // -7.5
    EXPECT_EQ(MulDiv(10, 72, 96), 8);
    EXPECT_EQ(MulDiv(10, 72, -96), -8);
    EXPECT_EQ(MulDiv(2147483647, 2147483647, 2147483647), 2147483647);
    EXPECT_EQ(MulDiv(2147483647, 2, 1), -1);
    EXPECT_EQ(MulDiv(1, 1, 0), -1);
}

}  // namespace
