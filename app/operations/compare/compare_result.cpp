// SPDX-License-Identifier: MIT
#include "app/operations/compare/compare_result.h"

#include <algorithm>

namespace zr::compare {

void Greatest::Note(double other, const std::function<std::string()>& place, std::string_view newAnimation,
                    double newTime) {
    if (!(other > amount)) return;
    amount = other;
    where = place();
    animation = newAnimation;
    time = newTime;
}

bool CompareResult::IsSame() const {
    return std::all_of(same.begin(), same.end(), [](bool each) { return each; });
}

}  // namespace zr::compare
