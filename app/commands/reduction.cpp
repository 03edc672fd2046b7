// SPDX-License-Identifier: MIT
#include "app/commands/reduction.h"

#include <numbers>

#include "app/commands/tolerance.h"
#include "base/text.h"

namespace zr {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

}  // namespace

ReduceTolerance ReadReduceTolerance(const std::string& text) {
    compare::Tolerance tolerance{0, 0.05 * kDegree, 0};
    ReadTolerance(text, tolerance);
    return {tolerance.length, tolerance.angle, tolerance.value};
}

std::string Describe(const ReduceReport& report) {
    std::string where;
    if (!report.node.empty()) {
        where = Join(" (node \"", Printable(report.node), "\", animation \"", Printable(report.animation),
                     "\", ", Short(report.time, 3), " s)");
    }
    return Join(Counted(report.keysBefore, "key"), " became ", report.keysAfter,
                "; nothing strays by more than ", Short(report.length, 3), where, " or ",
                Short(report.angle / kDegree, 3), " deg", report.isBound ? " (bounds)" : "");
}

JsonObject JsonOf(const ReduceReport& report) {
    JsonObject json;
    json.Set("keysBefore", report.keysBefore).Set("keysAfter", report.keysAfter);
    json.Set("length", report.length).Set("angle", report.angle).Set("isBound", report.isBound);
    if (!report.node.empty()) {
        json.Set("node", report.node).Set("animation", report.animation).Set("time", report.time);
    }
    return json;
}

}  // namespace zr
