// SPDX-License-Identifier: MIT
#include "module/keyframe/times_above.h"

#include <algorithm>

#include "module/keyframe/record.h"

namespace zrt {

const std::vector<float>& TimesAbove::Of(const ExportNode* record) {
    std::vector<const ExportNode*> unknown;
    for (; record != nullptr && !m_known.contains(record); record = record->pParent)
        unknown.push_back(record);
    Times above = record != nullptr ? m_known[record] : m_none;
    while (!unknown.empty()) {
        const std::vector<float> own = KeyTimes(unknown.back(), false);
        if (!std::includes(above->begin(), above->end(), own.begin(), own.end(), IsEarlier))
            above = std::make_shared<const std::vector<float>>(Union(own, *above));
        m_known[unknown.back()] = above;
        unknown.pop_back();
    }
    return *above;
}

}  // namespace zrt
