// SPDX-License-Identifier: MIT
#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include <gtest/gtest.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include "tests/base/rounds.h"
#include "tests/platform/graphics/outline_kit.h"

namespace {

// The same outline through the rasteriser's own decomposition, in device units.
struct Reference {
    std::vector<Contour> lines;
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

// Largest distance between points of one number.
double LargestStep(const Contour& a, const Contour& b) {
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
    // Quadratic outlines are copied unchanged; cubic ones stay within their tolerance.
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
        for (UINT c = 33; c <= 126; c += 4 / zr::test::Rounds(4)) {
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
            std::erase_if(reference.lines, [](const Contour& line) {
                return std::all_of(line.begin(), line.end(),
                                   [&](Point p) { return p.x == line[0].x && p.y == line[0].y; });
            });
            for (Contour& line : reference.lines) Close(line);

            GLYPHMETRICS metrics{};
            const std::vector<Contour> native = SampleNative(screen.Outline(c, metrics));
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

}  // namespace
