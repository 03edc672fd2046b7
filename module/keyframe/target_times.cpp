// SPDX-License-Identifier: MIT
#include "module/keyframe/target_times.h"

#include <algorithm>

#include "host/controller.h"
#include "host/node.h"
#include "module/keyframe/record.h"

namespace zrt {

namespace {

void CollectTimes(vl::zr::Node* node, std::vector<float>& times) {
    auto* controller =
        static_cast<vl::zr::TransformController*>(node->GetController(vl::zr::kControllerTransform));
    if (controller == nullptr) return;
    for (const int track : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale}) {
        const int count = controller->GetTrackKeyCount(track, nullptr);
        for (int i = 0; i < count; ++i) times.push_back(controller->GetKey(track, i, nullptr)->m_fTime);
    }
}

}  // namespace

const std::vector<float>& TargetTimes::Of(vl::zr::Node* target) {
    const ExportNode* record = m_tool.FindNodeRecord(target);
    if (record != nullptr) return m_above.Of(record);
    const auto [known, isNew] = m_known.try_emplace(target);
    if (!isNew) return known->second;
    std::vector<float> times;
    for (vl::zr::Node* node = target; node != nullptr && record == nullptr;
         record = m_tool.FindNodeRecord(node)) {
        CollectTimes(node, times);
        node = ParentOf(node);
    }
    std::sort(times.begin(), times.end(), IsEarlier);
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return known->second = Union(times, m_above.Of(record));
}

vl::zr::Node* TargetTimes::ParentOf(vl::zr::Node* node) {
    if (m_parents.empty()) {
        for (vl::zr::Node* parent : vl::ArrayOf<vl::zr::Node*>(m_tool.m_pScene->m_pNodes)) {
            vl::zr::Node* child = parent->m_pFirstChild;
            for (; child != nullptr; child = child->m_pNextSibling) m_parents[child] = parent;
        }
    }
    const auto found = m_parents.find(node);
    return found != m_parents.end() ? found->second : nullptr;
}

}  // namespace zrt
