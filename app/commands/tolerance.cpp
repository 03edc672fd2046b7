// SPDX-License-Identifier: MIT
#include "app/commands/tolerance.h"

#include <charconv>
#include <cmath>
#include <numbers>
#include <span>
#include <string_view>

#include "app/commands/session.h"

namespace zr {
namespace {

struct Unit {
    std::string_view name;
    double factor;
};
constexpr Unit kLengthUnits[] = {{"", 1}, {"m", 1}, {"cm", 0.01}, {"mm", 0.001}};
constexpr Unit kAngleUnits[] = {{"", 1}, {"rad", 1}, {"deg", std::numbers::pi / 180}};
constexpr Unit kValueUnits[] = {{"", 1}};

double ReadPart(std::string_view part, std::span<const Unit> units) {
    double number = 0;
    const auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), number);
    const std::string_view unit = part.substr(static_cast<std::size_t>(end - part.data()));
    for (const Unit& known : units)
        if (error == std::errc() && unit == known.name && std::isfinite(number) && number >= 0)
            return number * known.factor;
    throw UsageError("--tolerance: \"" + std::string(part) +
                     "\" is not a number of at least 0 with a suitable unit");
}

}  // namespace

void ReadTolerance(const std::string& text, compare::Tolerance& tolerance) {
    const std::span<const Unit> units[] = {kLengthUnits, kAngleUnits, kValueUnits};
    double* const parts[] = {&tolerance.length, &tolerance.angle, &tolerance.value};
    std::string_view rest = text;
    for (std::size_t i = 0; !rest.empty(); ++i) {
        if (i == 3) throw UsageError("--tolerance takes a length, an angle and a value");
        const std::string_view part = rest.substr(0, rest.find(','));
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        *parts[i] = ReadPart(part, units[i]);
    }
}

}  // namespace zr
