// SPDX-License-Identifier: MIT
#include "app/operations/compare/material_pairs.h"

#include <map>

namespace zr::compare {

MaterialPairs PairMaterials(const MaterialClasses& classes, const std::vector<Uses>& usesA,
                            const std::vector<Uses>& usesB) {
    MaterialPairs pairs;
    pairs.ofA.assign(classes.ofA.size(), kNone);
    pairs.ofB.assign(classes.ofB.size(), kNone);
    const auto stage = [&](auto key) {
        std::map<std::pair<std::size_t, Uses>, std::vector<std::size_t>> free;
        for (std::size_t j = pairs.ofB.size(); j-- > 0;)
            if (pairs.ofB[j] == kNone) free[{classes.ofB[j], key(usesB[j])}].push_back(j);
        for (std::size_t i = 0; i < pairs.ofA.size(); ++i) {
            if (pairs.ofA[i] != kNone) continue;
            const auto found = free.find({classes.ofA[i], key(usesA[i])});
            if (found == free.end() || found->second.empty()) continue;
            pairs.ofA[i] = found->second.back();
            pairs.ofB[pairs.ofA[i]] = i;
            found->second.pop_back();
        }
    };
    stage([](const Uses& uses) { return uses; });
    stage([](Uses uses) {
        for (auto& [node, primitive] : uses) primitive = 0;
        return uses;
    });
    stage([](const Uses&) { return Uses(); });
    return pairs;
}

}  // namespace zr::compare
