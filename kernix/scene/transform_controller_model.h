// SPDX-License-Identifier: MIT
#pragma once

#include "kernix/scene/tracked_controller.h"
#include "kernix/scene/transform_track.h"

namespace kernix {

class NodeModel;

// Moves a node, which owns it.
class KERNIX_API TransformControllerModel final
    : public TrackedController<vl::zr::TransformController, TransformTrack> {
public:
    explicit TransformControllerModel(NodeModel& node);

    void GetOffset(vl::Vector3<float>* offset) override { *offset = m_offset; }
    vl::zr::RotationKey* AddRotationKey(float time, vl::zr::Track* track) override;
    vl::zr::PositionKey* AddPositionKey(float time, vl::zr::Track* track) override;
    vl::zr::ScaleKey* AddScaleKey(float time, vl::zr::Track* track) override;
    int GetTrackKeyCount(int keyType, vl::zr::Track* track) override;
    vl::zr::Key* GetKey(int keyType, int index, vl::zr::Track* track) override;
    void RemoveKey(int keyType, int index, vl::zr::Track* track) override;
    void EvaluateMatrix(float time, int mode, vl::Matrix4<double>* m, int flags) override;
    void NormalizeRotationKeys(vl::zr::Track* track, int mode) override;

    // First the scale (at least one millionth in magnitude), then the rotation, then the translation.
    static vl::Matrix4<double> Compose(const double (&translation)[3], const Rotation& rotation,
                                       const double (&scale)[3]);

    TransformTrack* AddTransformTrack(AnimationModel* animation) { return TrackFor(animation); }

    vl::Vector3<float> m_offset;

private:
    void Changed() override;

    NodeModel& m_node;
};

}  // namespace kernix
