// SPDX-License-Identifier: MIT
#include "app/commands/text_measures.h"

#include <algorithm>
#include <string_view>

#include "app/operations/text/length_unit.h"
#include "base/text.h"

namespace zr {
namespace {

JsonObject PointJson(const TextGeometry::Point& p) {
    return JsonObject().Set("x", p.x).Set("y", p.y).Set("z", p.z);
}

std::string Length(double length, LengthUnit unit) {
    const std::string_view name = InfoOf(unit).name;
    return name.empty() ? Short(length) : Join(Short(length), " ", name);
}

}  // namespace

JsonObject MetricsJson(const TextDrawing& drawing) {
    const TextMetrics& metrics = drawing.metrics;
    const TextBox box = BoxOf(drawing.geometry.points);
    JsonObject json, bounds;
    if (drawing.geometry.unit != LengthUnit::kNone) json.Set("units", InfoOf(drawing.geometry.unit).name);
    bounds.Set("min", PointJson(box.low)).Set("max", PointJson(box.high));
    json.Set("bounds", bounds).Set("capHeight", metrics.capHeight).Set("lineDistance", metrics.lineDistance);
    JsonArray lines;
    for (const TextMetrics::Line& line : metrics.lines) {
        JsonArray characters;
        for (const TextMetrics::Character& c : line.characters) {
            characters.Append(JsonObject()
                                  .Set("letter", c.position)
                                  .Set("code", static_cast<int>(c.code))
                                  .Set("x", c.x)
                                  .Set("advance", c.advance));
        }
        lines.Append(JsonObject()
                         .Set("x", line.x)
                         .Set("baseline", line.baseline)
                         .Set("advance", line.advance)
                         .Set("characters", characters));
    }
    return json.Set("lines", lines);
}

std::vector<std::pair<std::string, std::string>> MeasuresOf(const TextDrawing& drawing) {
    const TextGeometry& geometry = drawing.geometry;
    const TextBox box = BoxOf(geometry.points);
    const auto length = [&](double value) { return Length(value, geometry.unit); };
    std::vector<std::pair<std::string, std::string>> measures{
        {"width", length(double{box.high.x} - box.low.x)},
        {"height", length(double{box.high.y} - box.low.y)}};
    if (geometry.isSolid) measures.emplace_back("depth", length(double{box.high.z} - box.low.z));
    if (!drawing.metrics.lines.empty()) {
        double widest = 0;
        for (const TextMetrics::Line& line : drawing.metrics.lines) widest = std::max(widest, line.advance);
        measures.emplace_back("cap height", length(drawing.metrics.capHeight));
        measures.emplace_back("line spacing", length(drawing.metrics.lineDistance));
        measures.emplace_back("lines", std::to_string(drawing.metrics.lines.size()));
        measures.emplace_back("longest line", length(widest));
    }
    measures.emplace_back("points", std::to_string(geometry.points.size()));
    if (geometry.isMesh)
        measures.emplace_back("triangles", std::to_string(geometry.triangles.size()));
    else
        measures.emplace_back("contours", std::to_string(geometry.contours.size()));
    return measures;
}

}  // namespace zr
