// SPDX-License-Identifier: MIT
#pragma once

#include <unordered_map>
#include <vector>

#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/times_above.h"

namespace zrt {

// The ascending times at which a target, or a node above it, has keys; for nodes that are not exported, those
// of their controllers. The tree of records must not change meanwhile.
class TargetTimes {
public:
    explicit TargetTimes(ZR_TK& tool) : m_tool(tool) {}

    const std::vector<float>& Of(vl::zr::Node* target);
    const std::vector<float>& OfRecord(const ExportNode* record) { return m_above.Of(record); }

private:
    vl::zr::Node* ParentOf(vl::zr::Node* node);

    ZR_TK& m_tool;
    TimesAbove m_above;
    std::unordered_map<vl::zr::Node*, vl::zr::Node*> m_parents;     // of the scene; filled on first use
    std::unordered_map<vl::zr::Node*, std::vector<float>> m_known;  // of targets that are not exported
};

}  // namespace zrt
