// SPDX-License-Identifier: MIT
#include "app/operations/text/length_unit.h"
#include "app/operations/text/text_file.h"
#include "app/operations/text/text_format_writers.h"
#include "app/operations/text/text_writers.h"

namespace zr {
namespace {

void AddPoints(TextFile& json, std::span<const TextGeometry::Point> points, bool isSolid) {
    const char* separator = "";
    for (const TextGeometry::Point& p : points) {
        json << separator << "[" << p.x << ", " << p.y;
        if (isSolid) json << ", " << p.z;
        json << "]";
        json.Pass();
        separator = ", ";
    }
}

void AddMesh(TextFile& json, const TextGeometry& geometry) {
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

void AddContours(TextFile& json, const TextGeometry& geometry) {
    json << "{\"contours\": [";
    const char* separator = "\n";
    for (const TextGeometry::Contour& contour : geometry.contours) {
        json << separator << "{\"letter\": " << contour.letter << ", \"points\": [";
        AddPoints(json, geometry.PointsOf(contour), false);
        json << "]}";
        separator = ",\n";
    }
}

void AddLine(NumberText& json, const TextMetrics::Line& line) {
    json << "{\"x\": " << line.x << ", \"baseline\": " << line.baseline << ", \"advance\": " << line.advance
         << ", \"characters\": [";
    const char* separator = "\n";
    for (const TextMetrics::Character& c : line.characters) {
        json << separator << "{\"letter\": " << c.position << ", \"code\": " << static_cast<int>(c.code)
             << ", \"x\": " << c.x << ", \"advance\": " << c.advance << "}";
        separator = ",\n";
    }
    json << "]}";
}

}  // namespace

void WriteJson(const TextGeometry& geometry, const std::filesystem::path& target) {
    TextFile json(target);
    if (geometry.isMesh) {
        AddMesh(json, geometry);
    } else {
        AddContours(json, geometry);
    }
    json << "\n]}\n";
    json.Commit();
}

std::string MetricsJson(const TextDrawing& drawing) {
    const TextMetrics& metrics = drawing.metrics;
    const TextBox box = BoxOf(drawing.geometry.points);
    NumberText json;
    json << "{\"schema\": 1,\n";
    if (drawing.geometry.unit != LengthUnit::kNone)
        json << "\"units\": \"" << InfoOf(drawing.geometry.unit).name << "\",\n";
    json << "\"bounds\": {\"min\": [" << box.low.x << ", " << box.low.y << ", " << box.low.z
         << "], \"max\": [" << box.high.x << ", " << box.high.y << ", " << box.high.z << "]},\n"
         << "\"capHeight\": " << metrics.capHeight << ", \"lineDistance\": " << metrics.lineDistance
         << ",\n\"lines\": [";
    const char* separator = "\n";
    for (const TextMetrics::Line& line : metrics.lines) {
        json << separator;
        AddLine(json, line);
        separator = ",\n";
    }
    json << "]}\n";
    return json.Text();
}

}  // namespace zr
