// SPDX-License-Identifier: MIT
#include <algorithm>
#include <utility>
#include <vector>

#include "host/message_sink.h"
#include "host/poly_boolean.h"
#include "module/cadtext/cad_text.h"
#include "module/cadtext/letters_polygons.h"
#include "module/frame/globals.h"

namespace {

// The larger extent of the text, in steps of the polygon extension's grid.
constexpr double kGridExtent = 262143.5;

// The region of one letter, which grows contour by contour.
class LetterRegion {
public:
    explicit LetterRegion(PolyBoolean& engine) : m_engine(engine) {}
    ~LetterRegion() {
        if (m_region) Clear();
    }
    LetterRegion(const LetterRegion&) = delete;
    LetterRegion& operator=(const LetterRegion&) = delete;

    void Add(const vl::Vector3<float>* points, int count) {
        m_xy.clear();
        for (int i = 0; i < count; ++i) {
            m_xy.push_back(points[i].x);
            m_xy.push_back(points[i].y);
        }
        PolyBoolean::Polygon* contour = m_engine.CreatePolygon(count, m_xy.data());
        m_region = m_region ? m_engine.Combine(std::exchange(m_region, nullptr), contour,
                                               PolyBoolean::kCombineLetter, 1)
                            : contour;
    }

    // Adds the region's triangles to the mesh and empties the region.
    void Flush(LettersPolygons& mesh) {
        m_engine.Triangulate(m_region, LettersPolygons::CollectTriangle, &mesh);
        Clear();
    }

private:
    void Clear() { m_engine.DeletePolygon(std::exchange(m_region, nullptr)); }

    PolyBoolean& m_engine;
    PolyBoolean::Polygon* m_region = nullptr;
    std::vector<double> m_xy;
};

void ReportMissingEngine(MessageSink* sink) {
    if (sink) {
        sink->Message(0, u"PolyBoolean extension not found");
    } else {
        g_pHost->ReportFailure(1);
    }
}

}  // namespace

vl::zr::legacy::GlyphTesselated* ZR_CADTEXT::CreatePolygons(const char16_t* text, LOGFONTW font, double size,
                                                            MessageSink* sink) try {
    auto mesh = vl::Ref<LettersPolygons>::Adopt(new LettersPolygons);
    if (!mesh) return nullptr;
    using vl::zr::legacy::GlyphContour;
    const auto contours = vl::Ref<GlyphContour>::Adopt(CreateOutlineContours(text, font, size, sink));
    if (!contours) return nullptr;
    const auto engine =
        vl::Ref<PolyBoolean>::Adopt(static_cast<PolyBoolean*>(g_pHost->CreateExtension(kTypePolyBoolean)));
    if (!engine) {
        ReportMissingEngine(sink);
        return nullptr;
    }
    const auto [width, height] = contours->GetSize();
    const double scale = kGridExtent / std::max(width, height);
    engine->SetScale(scale, scale);

    LetterRegion region(*engine);
    int current = contours->GetLetterIndex(0);
    const int count = contours->GetContourCount();
    for (int k = 0; k < count; ++k) {
        const int letter = contours->GetLetterIndex(k);
        if (letter != current) region.Flush(*mesh);
        current = letter;
        region.Add(contours->GetPoints(k), contours->GetPointCount(k));
    }
    region.Flush(*mesh);
    mesh->EndBuilding();
    return mesh.Detach();
} catch (...) {
    return nullptr;
}
