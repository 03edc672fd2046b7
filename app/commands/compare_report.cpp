// SPDX-License-Identifier: MIT
#include "app/commands/compare_report.h"

#include <algorithm>

#include "base/text.h"

namespace zr {

using compare::Aspect;
using compare::CompareResult;
using compare::Greatest;

namespace {

constexpr std::size_t kMostLines = 20;

std::string Where(const Greatest& greatest) {
    if (greatest.amount == 0) return "";
    std::string text = Join(" at ", Printable(greatest.where));
    if (!greatest.animation.empty())
        text += Join(", animation \"", Printable(greatest.animation), "\", ", Short(greatest.time), " s");
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
    std::string_view text;  // before the amount
    std::string_view unit;
    Greatest CompareResult::*greatest;
    double compare::Tolerance::*limit;
};
constexpr Measure kMeasures[] = {
    {Aspect::kNodes, "node", "largest difference ", "", &CompareResult::node, &compare::Tolerance::length},
    {Aspect::kNodes, "axis", "of an axis ", "", &CompareResult::axis, &compare::Tolerance::angle},
    {Aspect::kPoints, "movedPoint", "largest difference ", "", &CompareResult::movedPoint,
     &compare::Tolerance::length},
    {Aspect::kViews, "view", "largest difference ", " rad", &CompareResult::view, &compare::Tolerance::angle},
    {Aspect::kValues, "value", "largest difference ", "", &CompareResult::value, &compare::Tolerance::value},
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
            text += Join("; ", Counted(result.faces, "face"), ", largest difference ",
                         Short(result.point.amount, 3), Where(result.point), "\n", Lines(result.drawn));
        const char* separator = "; ";
        for (const Measure& measure : kMeasures) {
            if (measure.aspect != aspect) continue;
            const Greatest& greatest = result.*measure.greatest;
            text += Join(separator, measure.text, Short(greatest.amount, 3), measure.unit, Where(greatest));
            separator = ", ";
        }
        if (text.back() != '\n') text += '\n';
    }
    text +=
        Join("tolerance  ", Short(result.tolerance.length, 3), ", ", Short(result.tolerance.angle, 3),
             " rad, ", Short(result.tolerance.value, 3), "; ", Counted(result.times, "time"), " compared\n");
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
