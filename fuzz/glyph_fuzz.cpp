// SPDX-License-Identifier: MIT
#include <ft2build.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

#include "app/services/poly_boolean.h"
#include "app/services/poly_boolean_contacts.h"
#include "host/ref.h"
#include "module/cadtext/glyph_outline.h"
#include "module/cadtext/letters_polygons.h"
#include "platform/graphics/native_outline.h"
#include "tests/base/random.h"
#include FT_OUTLINE_H

namespace {

using zr::test::Random;

// A glyph that a font could contain: lines, conic and cubic segments in any order, contours of any length
// that cross themselves and each other.
class Glyph {
public:
    explicit Glyph(Random& choices) {
        constexpr unsigned char kTags[] = {FT_CURVE_TAG_ON, FT_CURVE_TAG_ON, FT_CURVE_TAG_CONIC,
                                           FT_CURVE_TAG_CUBIC};
        for (std::size_t contours = choices.Pick(5); contours-- > 0;) {
            for (std::size_t points = 1 + choices.Pick(12); points-- > 0;) {
                m_points.push_back({Coordinate(choices), Coordinate(choices)});
                m_tags.push_back(static_cast<char>(kTags[choices.Pick(std::size(kTags))]));
            }
            m_contours.push_back(static_cast<short>(m_points.size() - 1));
        }
    }

    FT_Outline Outline() {
        FT_Outline outline{};
        outline.n_contours = static_cast<short>(m_contours.size());
        outline.n_points = static_cast<short>(m_points.size());
        outline.points = m_points.data();
        outline.tags = m_tags.data();
        outline.contours = m_contours.data();
        return outline;
    }

private:
    // Coarse, since coincident points matter most.
    static FT_Pos Coordinate(Random& choices) {
        const auto number = static_cast<FT_Pos>(choices.Pick(256));
        return number < 128 ? number % 8 * 100 : (number - 192) * 512;
    }

    std::vector<FT_Vector> m_points;
    std::vector<char> m_tags;
    std::vector<short> m_contours;
};

int Count(const double* a, const double* b, const double* c, void* user) {
    for (const double* corner : {a, b, c})
        if (!std::isfinite(corner[0]) || !std::isfinite(corner[1])) __builtin_trap();
    return LettersPolygons::CollectTriangle(a, b, c, user);
}

}  // namespace

// A glyph from the font to triangles: the system's native form, contours, the region that they enclose.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Random choices(0, {data, size});
    const double angles[] = {std::numbers::pi / 2, 0.35, 0.02};
    GlyphOutline outline(angles[choices.Pick(3)], choices.Chance() ? 12 : 0.5);
    Glyph glyph(choices);
    std::vector<BYTE> native;
    if (!platform::AppendNativeOutline(glyph.Outline(), 120, 1000, native)) return 0;
    // The parser must accept all that was written.
    if (!outline.ParseNativeOutline(native.data(), native.size())) __builtin_trap();

    const auto engine = vl::Ref<PolyBoolean>::AdoptNew(new zr::PolyBooleanExtension);
    engine->SetScale(1000, 1000);
    PolyBoolean::Polygon* region = nullptr;
    for (const std::vector<GlyphPoint>& contour : outline.contours) {
        std::vector<double> xy;
        for (const GlyphPoint& point : contour) xy.insert(xy.end(), {point.x, point.y});
        PolyBoolean::Polygon* added = engine->CreatePolygon(static_cast<int>(contour.size()), xy.data());
        region = region == nullptr ? added : engine->Combine(region, added, PolyBoolean::kCombineLetter, 1);
    }
    if (region == nullptr) return 0;
    const auto mesh = vl::Ref<LettersPolygons>::AdoptNew(new LettersPolygons);
    try {
        engine->Triangulate(region, Count, mesh.Get());
    } catch (const zr::TooIntricate&) {
    }
    engine->DeletePolygon(region);
    return 0;
}
