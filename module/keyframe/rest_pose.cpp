// SPDX-License-Identifier: MIT
#include "module/keyframe/affine.h"
#include "module/keyframe/keyframe_tool.h"

void ZR_TK::DecomposeRest(ExportNode* record, const vl::AffineParts* parts) {
    vl::AffineParts own;
    if (parts == nullptr) {
        record->mLocal.AffineDecompose(own);
        parts = &own;
    }
    record->vPosition = parts->t;
    record->vScale = zrt::SignedScale(*parts);
    record->qRotation = parts->q;
    record->qStretch = parts->u;
}
