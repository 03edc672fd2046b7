// SPDX-License-Identifier: MIT
#pragma once

#include "host/controller.h"
#include "kernix/scene/track_list.h"
#include "kernix/scene/transform_track.h"

namespace kernix {

class NodeModel;

// Moves a node. Ends with it.
class KERNIX_API TransformControllerModel final : public vl::zr::TransformController {
public:
    explicit TransformControllerModel(NodeModel& node);

    vl::zr::Track* AddTrack(vl::zr::Animation* animation) override;
    vl::zr::Track* GetTrack(vl::zr::Animation* animation) override { return m_tracks.Find(animation); }
    void SaveTrack(vl::Stream* stream, vl::zr::Track* track, int mode) override;
    void LoadTrack(vl::Stream* stream, int mode, vl::zr::Track* track) override;
    bool IsAnimated(int) override { return m_tracks.HasKeys(); }
    vl::Interface* GetTrackObject(vl::zr::Track* track, int) override { return Resolve(track); }
    void RetimeTrack(float scale, float offset, vl::zr::Track* track) override;

    void GetOffset(vl::Vector3<float>* offset) override { *offset = m_offset; }
    vl::zr::RotationKey* AddRotationKey(float time, vl::zr::Track* track) override;
    vl::zr::PositionKey* AddPositionKey(float time, vl::zr::Track* track) override;
    vl::zr::ScaleKey* AddScaleKey(float time, vl::zr::Track* track) override;
    int GetTrackKeyCount(int keyType, vl::zr::Track* track) override;
    vl::zr::Key* GetKey(int keyType, int index, vl::zr::Track* track) override;
    void RemoveKey(int keyType, int index, vl::zr::Track* track) override;
    void EvaluateMatrix(float time, int mode, vl::Matrix4<double>* m, int flags) override;
    void NormalizeRotationKeys(vl::zr::Track* track, int mode) override;

    // The track itself, or the active animation's for null; null when there is none.
    TransformTrack* Resolve(vl::zr::Track* track) const;
    TransformTrack* AddTransformTrack(AnimationModel* animation);
    TrackList& Tracks() { return m_tracks; }

    vl::Vector3<float> m_offset;

private:
    void Changed();

    NodeModel& m_node;
    TrackList m_tracks;
};

}  // namespace kernix
