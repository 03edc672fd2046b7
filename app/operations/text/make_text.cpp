// SPDX-License-Identifier: MIT
#include "app/operations/text/make_text.h"

#include <cmath>
#include <set>
#include <stdexcept>

#include "app/operations/text/text_source.h"
#include "base/memory_watch.h"
#include "base/text.h"
#include "host/cad_text.h"

namespace zr {
namespace {

using vl::zr::legacy::CadText;
using vl::zr::legacy::GlyphContour;
using vl::zr::legacy::GlyphTesselated;

constexpr char kFailure[] = "the text could not be converted to geometry";

// Unless memory is short, only a letter that is too intricate has no mesh: names that letter.
[[noreturn]] void FailToFill(Host& host, const TextRequest& request) {
    RequireMemory();
    const std::set<char16_t> characters(request.text.begin(), request.text.end());
    if (characters.size() == 1)
        throw std::runtime_error(Join("the outline of ", CharacterName(*characters.begin()),
                                      " crosses itself too often to be filled"));
    TextRequest one = request;
    for (const char16_t c : characters) {
        one.text = c;
        MakeText(host, one);
    }
    throw std::runtime_error(kFailure);
}

void CopyContours(GlyphContour& contours, TextGeometry& geometry) {
    for (int k = 0; k < contours.GetContourCount(); ++k) {
        const int count = contours.GetPointCount(k);
        if (count == 0) continue;
        geometry.contours.push_back({static_cast<std::uint32_t>(geometry.points.size()),
                                     static_cast<std::uint32_t>(count), contours.GetLetterIndex(k)});
        geometry.points.insert(geometry.points.end(), contours.GetPoints(k), contours.GetPoints(k) + count);
    }
}

void CopyMesh(GlyphTesselated& mesh, TextGeometry& geometry) {
    geometry.points.assign(mesh.GetVertices(), mesh.GetVertices() + mesh.GetVertexCount());
    geometry.triangles.assign(mesh.GetTriangles(), mesh.GetTriangles() + mesh.GetTriangleCount());
}

}  // namespace

TextGeometry MakeText(Host& host, const TextRequest& request) {
    const auto cadText = host.Create<CadText>("CADTEXT");
    const char16_t* text = request.text.c_str();
    const LOGFONTW font = RecordOf(request.font);
    TextGeometry geometry;
    geometry.isMesh = request.style == TextStyle::kMesh;
    geometry.isClosed = request.style == TextStyle::kOutline;
    // About a hundredth of the height of a line.
    if (request.style != TextStyle::kStroke)
        geometry.penWidth = std::abs(request.font.height) * request.size / 144;
    if (geometry.isMesh) {
        const auto mesh =
            vl::Ref<GlyphTesselated>::Adopt(cadText->CreatePolygons(text, font, request.size, nullptr));
        if (!mesh) FailToFill(host, request);
        CopyMesh(*mesh, geometry);
        return geometry;
    }
    const auto contours = vl::Ref<GlyphContour>::Adopt(
        geometry.isClosed ? cadText->CreateOutlineContours(text, font, request.size, nullptr)
                          : cadText->CreateStrokeContours(text, font, request.size, nullptr));
    if (!contours) throw std::runtime_error(kFailure);
    CopyContours(*contours, geometry);
    return geometry;
}

}  // namespace zr
