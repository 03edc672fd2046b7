// SPDX-License-Identifier: MIT
#include "kernix/scene/transform_controller_model.h"

#include <cmath>

#include "kernix/scene/node_model.h"
#include "kernix/scene/scene_model.h"

namespace kernix {
namespace {

// A scale of smaller magnitude counts as this, so that the transform keeps its inverse.
constexpr double kLeastScale = 1e-6;

double NotZero(double scale) {
    if (std::fabs(scale) >= kLeastScale) return scale;
    return scale < 0 ? -kLeastScale : kLeastScale;
}

}  // namespace

TransformControllerModel::TransformControllerModel(NodeModel& node)
    : TrackedController(node.GetScene()), m_node(node) {}

// The caller may go on to change keys, so everything that depends on them is recomputed from here on.
void TransformControllerModel::Changed() {
    m_node.GetScene().TransformsChanged();
}

vl::zr::RotationKey* TransformControllerModel::AddRotationKey(float time, vl::zr::Track* track) {
    TransformTrack* resolved = Resolve(track);
    Changed();
    return resolved != nullptr ? resolved->AddRotation(time) : nullptr;
}

vl::zr::PositionKey* TransformControllerModel::AddPositionKey(float time, vl::zr::Track* track) {
    TransformTrack* resolved = Resolve(track);
    Changed();
    return resolved != nullptr ? resolved->AddPosition(time) : nullptr;
}

vl::zr::ScaleKey* TransformControllerModel::AddScaleKey(float time, vl::zr::Track* track) {
    TransformTrack* resolved = Resolve(track);
    Changed();
    return resolved != nullptr ? resolved->AddScale(time) : nullptr;
}

int TransformControllerModel::GetTrackKeyCount(int keyType, vl::zr::Track* track) {
    const TransformTrack* resolved = Resolve(track);
    return resolved != nullptr ? resolved->Count(keyType) : 0;
}

vl::zr::Key* TransformControllerModel::GetKey(int keyType, int index, vl::zr::Track* track) {
    const TransformTrack* resolved = Resolve(track);
    return resolved != nullptr ? resolved->Get(keyType, index) : nullptr;
}

void TransformControllerModel::RemoveKey(int keyType, int index, vl::zr::Track* track) {
    if (TransformTrack* resolved = Resolve(track)) resolved->Remove(keyType, index);
    Changed();
}

void TransformControllerModel::EvaluateMatrix(float time, int, vl::Matrix4<double>* m, int) {
    const TransformTrack* track = Resolve(nullptr);
    if (track == nullptr) {
        *m = m_node.GetRestMatrix();
        return;
    }
    const TransformTrack::Sample sample = track->Evaluate(time, m_node.GetRestPose());
    *m = Compose(sample.translation, sample.rotation, sample.scale);
}

vl::Matrix4<double> TransformControllerModel::Compose(const double (&translation)[3],
                                                      const Rotation& rotation, const double (&scale)[3]) {
    vl::Matrix4<double> m;
    m.IdentityMatrix();
    rotation.ToRows(m.m);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) m.m[row][column] *= NotZero(scale[row]);
        m.m[3][row] = translation[row];
    }
    return m;
}

void TransformControllerModel::NormalizeRotationKeys(vl::zr::Track* track, int) {
    if (TransformTrack* resolved = Resolve(track)) resolved->NormalizeRotations();
}

}  // namespace kernix
