// SPDX-License-Identifier: MIT
#include "app/commands/compare_report.h"

#include <algorithm>
#include <cstdio>

#include "base/text.h"

namespace zr {

using compare::Aspect;
using compare::CompareResult;
using compare::Greatest;

namespace {

constexpr std::size_t kMostLines = 20;

template <typename... Numbers>
std::string Format(const char* format, Numbers... numbers) {
    char text[160];
    std::snprintf(text, sizeof text, format, numbers...);
    return text;
}

std::string Where(const Greatest& greatest) {
    if (greatest.amount == 0) return "";
    std::string text = Join(" at ", Printable(greatest.where));
    if (!greatest.animation.empty())
        text +=
            Join(", animation \"", Printable(greatest.animation), "\", ", Format("%.6g s", greatest.time));
    return text;
}

std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (std::size_t i = 0; i < std::min(lines.size(), kMostLines); ++i)
        text += Join("  ", Printable(lines[i]), "\n");
    if (lines.size() > kMostLines) text += Join("  and ", lines.size() - kMostLines, " more\n");
    return text;
}

struct Measure {
    Aspect aspect;
    std::string_view name;  // in JSON
    const char* text;
    Greatest CompareResult::*greatest;
    double compare::Tolerance::*limit;
};
constexpr Measure kMeasures[] = {
    {Aspect::kNodes, "node", "largest difference %.3g", &CompareResult::node, &compare::Tolerance::length},
    {Aspect::kNodes, "axis", "of an axis %.3g", &CompareResult::axis, &compare::Tolerance::angle},
    {Aspect::kPoints, "movedPoint", "largest difference %.3g", &CompareResult::movedPoint,
     &compare::Tolerance::length},
    {Aspect::kViews, "view", "largest difference %.3g rad", &CompareResult::view, &compare::Tolerance::angle},
    {Aspect::kValues, "value", "largest difference %.3g", &CompareResult::value, &compare::Tolerance::value},
};

JsonObject JsonOf(const Greatest& greatest) {
    JsonObject object;
    object.Set("amount", greatest.amount);
    if (greatest.amount == 0) return object;
    object.Set("where", greatest.where);
    if (!greatest.animation.empty()) object.Set("animation", greatest.animation).Set("time", greatest.time);
    return object;
}

}  // namespace

std::string CompareReportText(const CompareResult& result) {
    std::string text;
    for (std::size_t i = 0; i < compare::kAspects; ++i) {
        if (!result.compared[i]) continue;
        std::string name(compare::kAspectNames[i]);
        name.resize(11, ' ');
        text += Join(name, result.same[i] ? "same" : "different");
        const auto aspect = static_cast<Aspect>(i);
        if (aspect == Aspect::kStructure) text += Join("\n", Lines(result.structure));
        if (aspect == Aspect::kDrawn)
            text +=
                Join("; ", result.faces, " faces, ", Format("largest difference %.3g", result.point.amount),
                     Where(result.point), "\n", Lines(result.drawn));
        const char* separator = "; ";
        for (const Measure& measure : kMeasures) {
            if (measure.aspect != aspect) continue;
            const Greatest& greatest = result.*measure.greatest;
            text += Join(separator, Format(measure.text, greatest.amount), Where(greatest));
            separator = ", ";
        }
        if (text.back() != '\n') text += '\n';
    }
    text += Format("tolerance  %.3g, %.3g rad, %.3g; %zu times compared\n", result.tolerance.length,
                   result.tolerance.angle, result.tolerance.value, result.times);
    if (!result.unread.empty()) text += Join("not read   ", result.unread.size(), "\n", Lines(result.unread));
    return text;
}

JsonObject CompareReportJson(const CompareResult& result) {
    JsonObject aspects, tolerance, largest;
    for (std::size_t i = 0; i < compare::kAspects; ++i)
        if (result.compared[i]) aspects.Set(compare::kAspectNames[i], result.same[i]);
    tolerance.Set("length", result.tolerance.length)
        .Set("angle", result.tolerance.angle)
        .Set("value", result.tolerance.value);
    largest.Set("point", JsonOf(result.point));
    for (const Measure& measure : kMeasures) largest.Set(measure.name, JsonOf(result.*measure.greatest));
    JsonObject json;
    json.Set("same", result.IsSame()).Set("aspects", aspects).Set("tolerance", tolerance);
    json.Set("size", result.size).Set("faces", result.faces).Set("times", result.times);
    json.Set("structure", result.structure).Set("drawn", result.drawn).Set("largest", largest);
    return json.Set("unread", result.unread);
}

}  // namespace zr
