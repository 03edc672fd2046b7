// SPDX-License-Identifier: MIT
// Folds the scene matrix into the keys of the top-level records, or puts it above them if keys cannot express
// it.
#include <algorithm>
#include <cmath>

#include "host/controller.h"
#include "module/keyframe/affine.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

namespace {

// The controlled transform at a time, with the scene matrix as the last step.
vl::AffineParts PartsAt(vl::zr::TransformController* controller, float time,
                        const vl::Matrix4<double>& scene) {
    vl::Matrix4<double> m;
    controller->EvaluateMatrix(time, 0, &m, 0);
    m.Transform(scene);
    vl::AffineParts parts;
    m.AffineDecompose(parts);
    return parts;
}

// Whether the scene matrix leaves the scale axes unturned at every key.
bool CanFold(vl::zr::TransformController* controller, const vl::Matrix4<double>& scene) {
    for (const int track : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale}) {
        const int count = controller->GetTrackKeyCount(track, nullptr);
        for (int i = 0; i < count; ++i) {
            const float time = controller->GetKey(track, i, nullptr)->m_fTime;
            if (vl::AngleAxis(PartsAt(controller, time, scene).u).angle > zrt::kTurnTolerance) return false;
        }
    }
    return true;
}

double Dot(const vl::Quaternion& a, const vl::Quaternion& b) {
    return double{a.x} * b.x + double{a.y} * b.y + double{a.z} * b.z + double{a.w} * b.w;
}

// Orientations taken from matrices have lost their sign, which alone decides the direction between two that
// are half a turn apart.
class DirectionKeeper {
public:
    explicit DirectionKeeper(const vl::Matrix4<double>& scene) {
        vl::Matrix4<double> m = scene;
        vl::AffineParts parts;
        m.AffineDecompose(parts);
        m_turn = parts.q;
    }

    // The folded orientation of the next key, which was `source`, with the sign that keeps the direction.
    vl::Quaternion Next(const vl::Quaternion& source, vl::Quaternion folded) {
        constexpr double kNearHalfTurn = 1e-6;
        const double step = Dot(m_source, source);
        const bool isHalfTurn = !m_isFirst && std::abs(step) < kNearHalfTurn;
        bool isNegated = Dot(folded, source * m_turn) < 0;
        const bool wanted = m_isNegated != (step < 0);
        if (isHalfTurn && isNegated != wanted) {
            folded = vl::Quaternion(-folded.x, -folded.y, -folded.z, -folded.w);
            isNegated = wanted;
        }
        m_source = source;
        m_isNegated = isNegated;
        m_isFirst = false;
        return folded;
    }

private:
    vl::Quaternion m_turn;
    vl::Quaternion m_source;
    bool m_isNegated = false;  // the folded orientation has the other sign
    bool m_isFirst = true;
};

void Fold(ExportNode* record, const vl::Matrix4<double>& scene) {
    vl::zr::TransformController* controller = record->pController;
    for (auto* key : vl::ArrayOf<ExportScaleKey*>(record->pScaleKeys)) {
        key->vValue = zrt::SignedScale(PartsAt(controller, key->fTime, scene));
    }
    for (auto* key : vl::ArrayOf<ExportPositionKey*>(record->pPosKeys)) {
        key->vValue = PartsAt(controller, key->fTime, scene).t;
    }
    DirectionKeeper directions(scene);
    for (auto* key : vl::ArrayOf<ExportRotationKey*>(record->pRotKeys)) {
        key->qValue = directions.Next(key->qValue, PartsAt(controller, key->fTime, scene).q);
    }
}

}  // namespace

bool ZR_TK::CanFoldSceneMatrix() {
    if (m_mScene.IsIdentity(zrt::kIdentityTolerance)) return true;
    const vl::ArrayOf<ExportNode*> roots(m_pRoots);
    return std::all_of(roots.begin(), roots.end(), [this](const ExportNode* record) {
        return record->pController == nullptr || CanFold(record->pController, m_mScene);
    });
}

void ZR_TK::FoldSceneMatrix() {
    if (m_mScene.IsIdentity(zrt::kIdentityTolerance)) return;
    vl::ArrayOf<ExportNode*> roots(m_pRoots);
    for (int i = 0; i < roots.Count(); ++i) {
        ExportNode* record = roots[i];
        if (record->pController == nullptr) continue;
        if (CanFold(record->pController, m_mScene)) {
            Fold(record, m_mScene);
            continue;
        }
        ExportNode* post = NewRecord(record->pNode);
        post->dwFlags = NF_POST | NF_GROUP | NF_ADDED;
        post->mWorld = m_mScene;
        post->mLocal = m_mScene;
        zrt::AppendChild(post, record);
        roots.SetAt(i, post);
        m_pAllNodes->Add(vl::ToWord(post));
    }
}
