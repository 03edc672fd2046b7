// SPDX-License-Identifier: MIT
#include <utility>

#include "module/keyframe/keyframe_tool.h"

namespace {

void FlipVector(vl::Vector3<float>& v) {
    std::swap(v.y, v.z);
}

template <typename Key>
void FlipKeys(vl::Array* track) {
    for (Key* key : vl::ArrayOf<Key*>(track)) FlipVector(key->vValue);
}

}  // namespace

// Exchanges Y and Z. The orientation of turned scale axes and angle-axis steps stay as they are.
void ZR_TK::FlipAxes() {
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        record->mLocal.Flip();
        record->mWorld.Flip();
        FlipVector(record->vPivot);
        FlipRestAndKeys(record);
    }
}

void ZR_TK::FlipRestAndKeys(ExportNode* record) {
    FlipVector(record->vPosition);
    FlipVector(record->vScale);
    record->qRotation.Flip();
    FlipKeys<ExportPositionKey>(record->pPosKeys);
    FlipKeys<ExportScaleKey>(record->pScaleKeys);
    if ((m_dwAnimFlags & vl::tk::kAngleAxisKeys) != 0) return;
    for (ExportRotationKey* key : vl::ArrayOf<ExportRotationKey*>(record->pRotKeys)) key->qValue.Flip();
}
