// SPDX-License-Identifier: MIT
// Objects whose transform cannot stay on the group that they share get a child of their own:
//
//   mesh, moved      ->   group, moved
//                           mesh
#include <cmath>
#include <vector>

#include "host/controller.h"
#include "module/keyframe/affine.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

namespace {

constexpr float kMoveTolerance = 1e-8f;

bool IsAnimated(vl::zr::TransformController* controller) {
    for (const int track : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale}) {
        if (controller->GetTrackKeyCount(track, nullptr) > 1) return true;
    }
    vl::Matrix4<double> start;
    controller->EvaluateMatrix(0, 0, &start, 0);
    return !start.IsIdentity(zrt::kIdentityTolerance);
}

bool IsTransformed(const ExportNode* record) {
    if (record->pController != nullptr && IsAnimated(record->pController)) return true;
    vl::AffineParts parts;
    record->mLocal.AffineDecompose(parts);
    if (std::abs(parts.t.x) > kMoveTolerance || std::abs(parts.t.y) > kMoveTolerance ||
        std::abs(parts.t.z) > kMoveTolerance) {
        return true;
    }
    if (zrt::SignedScale(parts) != vl::Vector3<float>{1, 1, 1}) return true;
    const vl::AngleAxis turn(parts.q);
    return std::abs(turn.angle) > zrt::kTurnTolerance && (turn.x != 0 || turn.y != 0 || turn.z != 0);
}

bool IsCandidate(const ExportNode* record) {
    return (record->dwFlags & NF_GEOMETRY) != 0 && (record->dwFlags & NF_ADDED) == 0;
}

void Split(ZR_TK& tool, ExportNode* record) {
    ExportNode* split = tool.NewRecord(record->pNode);
    split->dwFlags = NF_GEOMETRY;
    split->mLocal.IdentityMatrix();
    record->dwFlags = (record->dwFlags & ~std::uint32_t{NF_GEOMETRY}) | NF_GROUP | NF_ADDED;
    zrt::AppendChild(record, split);
}

// Splits the candidates of one list of siblings, in order; records that are not split go to pending, for
// their children. A sibling is open if it is untransformed and not a group: the candidates beside it then
// split. A split makes a group, so it closes a sibling.
void SplitSiblings(ZR_TK& tool, vl::Array* siblings, std::vector<ExportNode*>& pending) {
    const vl::ArrayOf<ExportNode*> records(siblings);
    struct State {
        bool isTransformed;
        bool isOpen;
    };
    std::vector<State> states;
    int openCount = 0;
    bool anyCandidate = false;
    for (const ExportNode* record : records) anyCandidate = anyCandidate || IsCandidate(record);
    if (anyCandidate) {
        for (const ExportNode* record : records) {
            const bool isTransformed = IsTransformed(record);
            const bool isOpen = !isTransformed && (record->dwFlags & NF_GROUP) == 0;
            states.push_back({isTransformed, isOpen});
            openCount += isOpen ? 1 : 0;
        }
    }
    for (int i = 0; i < records.Count(); ++i) {
        ExportNode* record = records[i];
        if (!IsCandidate(record)) {
            pending.push_back(record);
            continue;
        }
        const int own = states[i].isOpen ? 1 : 0;
        if (record->pParent != nullptr && !states[i].isTransformed && openCount == own) {
            pending.push_back(record);
            continue;
        }
        Split(tool, record);
        openCount -= own;
    }
}

}  // namespace

void ZR_TK::GeometrySplit(vl::Array* records) {
    std::vector<ExportNode*> pending;
    SplitSiblings(*this, records, pending);
    while (!pending.empty()) {
        vl::Array* children = pending.back()->pChildren;
        pending.pop_back();
        if (children != nullptr) SplitSiblings(*this, children, pending);
    }
}
