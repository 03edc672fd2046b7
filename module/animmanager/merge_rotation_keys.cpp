// SPDX-License-Identifier: MIT
#include "module/animmanager/merge_rotation_keys.h"

#include <algorithm>

#include "host/controller.h"

using vl::zr::RotationKey;
using vl::zr::Track;
using vl::zr::TransformController;

namespace zrt {
namespace {

RotationKey* KeyAt(TransformController* controller, Track* track, int index) {
    return static_cast<RotationKey*>(controller->GetKey(vl::zr::kKeyRotation, index, track));
}

}  // namespace

void RotationMerge::RememberExistingKeys() {
    if (m_controller->GetTrackKeyCount(vl::zr::kKeyRotation, m_destination) == 0) return;
    m_controller->NormalizeRotationKeys(m_destination, 0);
    const int count = m_controller->GetTrackKeyCount(vl::zr::kKeyRotation, m_destination);
    for (int i = 0; i < count; ++i) {
        RotationKey* key = KeyAt(m_controller, m_destination, i);
        Remember(key, i, key->m_fTime);
    }
}

void RotationMerge::MergeRotationKeys(Track* source, double offset) {
    if (!m_started) RememberExistingKeys();
    m_started = true;
    const int count = m_controller->GetTrackKeyCount(vl::zr::kKeyRotation, source);
    for (int i = 0; i < count; ++i) {
        RotationKey* key = KeyAt(m_controller, source, i);
        const auto time = static_cast<float>(static_cast<double>(key->m_fTime) + offset);
        RotationKey* merged = m_controller->AddRotationKey(time, m_destination);
        vl::AngleAxis value;
        key->GetValue(&value);
        merged->SetValue(value);
        std::copy(std::begin(key->m_params), std::end(key->m_params), merged->m_params);
        Remember(key, i, time);
    }
}

void RotationMerge::Remember(RotationKey* key, int indexInTrack, float time) {
    const int index = static_cast<int>(m_keys.size());
    if (key->GetRotationType() != vl::zr::kRotationAngleAxis) {
        vl::Quaternion orientation;
        key->GetQuaternion(&orientation);
        m_orientation.SetRotate(orientation);
        m_keys.push_back({time, orientation, kNoStep, index});
        return;
    }
    vl::AngleAxis value;
    key->GetValue(&value);
    if (indexInTrack == 0) m_orientation.IdentityMatrix();
    m_orientation.Rotate(value);
    m_keys.push_back({time, vl::Quaternion(m_orientation), indexInTrack == 0 ? kNoStep : index - 1, index});
}

void RotationMerge::Finish() {
    // The order of the track: a key follows those of the same time.
    std::stable_sort(m_keys.begin(), m_keys.end(),
                     [](const MergedKey& a, const MergedKey& b) { return a.time < b.time; });
    vl::Matrix4<double> shown;
    shown.IdentityMatrix();
    int previous = kNoStep;
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        const MergedKey& merged = m_keys[i];
        RotationKey* key = KeyAt(m_controller, m_destination, static_cast<int>(i));
        vl::AngleAxis value;
        if (merged.stepFrom == previous) {
            // A step may be more than half a turn, which orientations cannot express.
            key->GetValue(&value);
        } else {
            // The step leads from what the track shows so far to the key's own orientation. Taken the other
            // way round it would be the inverse step and turn the node away from its pose.
            vl::Matrix4<double> orientation;
            orientation.SetRotate(merged.orientation);
            vl::Matrix4<double> step;
            step.SetM2(orientation, shown);
            value = vl::AngleAxis(step);
            key->SetValue(value);
        }
        shown.Rotate(value);
        previous = merged.index;
    }
}

}  // namespace zrt
