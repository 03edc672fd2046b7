// SPDX-License-Identifier: MIT
#include "app/operations/text/text_file.h"
#include "app/operations/text/text_format_writers.h"

namespace zr {
namespace {

void AddPoints(TextBuilder& json, std::span<const TextGeometry::Point> points, bool isSolid) {
    const char* separator = "";
    for (const TextGeometry::Point& p : points) {
        json << separator << "[" << p.x << ", " << p.y;
        if (isSolid) json << ", " << p.z;
        json << "]";
        json.Pass();
        separator = ", ";
    }
}

void AddTriangles(TextBuilder& json, const TextGeometry& geometry) {
    json << "{\"vertices\": [";
    AddPoints(json, geometry.points, geometry.isSolid);
    json << "],\n\"triangles\": [";
    const char* separator = "\n";
    for (const LetterTriangle& t : geometry.triangles) {
        json << separator << "[" << t.i0 << ", " << t.i1 << ", " << t.i2 << "]";
        json.Pass();
        separator = ",\n";
    }
}

void AddContours(TextBuilder& json, const TextGeometry& geometry) {
    json << "{\"contours\": [";
    const char* separator = "\n";
    for (const TextGeometry::Contour& contour : geometry.contours) {
        json << separator << "{\"letter\": " << contour.letter << ", \"points\": [";
        AddPoints(json, geometry.PointsOf(contour), false);
        json << "]}";
        separator = ",\n";
    }
}

}  // namespace

void WriteJson(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files) {
    TextFile json(target, files);
    if (geometry.isMesh) {
        AddTriangles(json, geometry);
    } else {
        AddContours(json, geometry);
    }
    json << "\n]}\n";
    json.Finish();
}

}  // namespace zr
