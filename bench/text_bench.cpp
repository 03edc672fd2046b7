// SPDX-License-Identifier: MIT
// Time to make a mesh of letters against the length of the text, with decomposing the bare outlines of the
// font as the floor.
#include <benchmark/benchmark.h>
#include <ft2build.h>

#include <cstring>
#include <string>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include "app/services/poly_boolean.h"
#include "kernix/host_app_base.h"
#include "module/cadtext/cad_text.h"
#include "module/frame/globals.h"

namespace {

class BenchHost : public kernix::HostAppBase {
public:
    BenchHost() {
        g_pHost = this;
        AddExtension(kTypePolyBoolean, [] { return new zr::PolyBooleanExtension; });
    }
};

LOGFONTW Font() {
    LOGFONTW font{};
    font.lfHeight = -12;
    std::memcpy(font.lfFaceName, u"DejaVu Sans", sizeof u"DejaVu Sans");
    return font;
}

// Every printable character in turn, in lines of 80.
std::u16string Sample(std::int64_t length) {
    std::u16string text;
    for (std::int64_t i = 0; i < length; ++i) {
        text += static_cast<char16_t>(33 + i % 94);
        if (i % 80 == 79) text += u"\r\n";
    }
    return text;
}

void PerLetter(benchmark::State& state) {
    state.SetComplexityN(state.range(0));
    state.counters["s/letter"] =
        benchmark::Counter(static_cast<double>(state.range(0)) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void Mesh(benchmark::State& state) {
    BenchHost host;
    const std::u16string text = Sample(state.range(0));
    const auto cadText = vl::Ref<ZR_CADTEXT>::Adopt(new ZR_CADTEXT);
    for (auto _ : state) {
        const auto mesh = vl::Ref<vl::zr::legacy::GlyphTesselated>::Adopt(
            cadText->CreatePolygons(text.c_str(), Font(), 12, nullptr));
        benchmark::DoNotOptimize(mesh->GetTriangleCount());
    }
    PerLetter(state);
}
BENCHMARK(Mesh)->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMillisecond);

void Outlines(benchmark::State& state) {
    const std::u16string text = Sample(state.range(0));
    const auto cadText = vl::Ref<ZR_CADTEXT>::Adopt(new ZR_CADTEXT);
    for (auto _ : state) {
        const auto contours = vl::Ref<vl::zr::legacy::GlyphContour>::Adopt(
            cadText->CreateOutlineContours(text.c_str(), Font(), 12, nullptr));
        benchmark::DoNotOptimize(contours->GetContourCount());
    }
    PerLetter(state);
}
BENCHMARK(Outlines)->RangeMultiplier(10)->Range(100, 100000)->Unit(benchmark::kMillisecond);

void BareDecomposition(benchmark::State& state) {
    FT_Library library;
    FT_Init_FreeType(&library);
    FT_Face face;
    if (FT_New_Face(library, "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", 0, &face) != 0) {
        state.SkipWithError("DejaVu Sans was not found");
        return;
    }
    int points = 0;
    const auto count = [](const FT_Vector*, void* user) { return ++*static_cast<int*>(user), 0; };
    const auto conic = [](const FT_Vector*, const FT_Vector*, void* user) {
        return ++*static_cast<int*>(user), 0;
    };
    const auto cubic = [](const FT_Vector*, const FT_Vector*, const FT_Vector*, void*) { return 0; };
    const FT_Outline_Funcs functions{count, count, conic, cubic, 0, 0};
    const std::u16string text = Sample(state.range(0));
    for (auto _ : state) {
        for (const char16_t c : text) {
            FT_Load_Char(face, c, FT_LOAD_NO_SCALE);
            FT_Outline_Decompose(&face->glyph->outline, &functions, &points);
        }
    }
    benchmark::DoNotOptimize(points);
    PerLetter(state);
    FT_Done_FreeType(library);
}
BENCHMARK(BareDecomposition)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
