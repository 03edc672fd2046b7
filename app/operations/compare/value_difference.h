// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>

namespace zr::compare {

// |a - b|, divided by the greater magnitude if that is above 1.
inline double ValueDifference(double a, double b) {
    const double difference = std::abs(a - b) / std::max({1.0, std::abs(a), std::abs(b)});
    return std::isfinite(difference) ? difference
                                     : (a == b || (std::isnan(a) && std::isnan(b)) ? 0 : HUGE_VAL);
}

}  // namespace zr::compare
