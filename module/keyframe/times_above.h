// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "host/export_node.h"

namespace zrt {

// The key times of records and their ancestors: what KeyTimes(record, true) returns, for many records of a
// tree that does not change meanwhile. Records without times of their own share their parent's.
class TimesAbove {
public:
    // Null counts as a record without keys.
    const std::vector<float>& Of(const ExportNode* record);

private:
    using Times = std::shared_ptr<const std::vector<float>>;

    std::unordered_map<const ExportNode*, Times> m_known;
    const Times m_none = std::make_shared<const std::vector<float>>();
};

}  // namespace zrt
