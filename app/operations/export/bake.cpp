// SPDX-License-Identifier: MIT
#include "app/operations/export/bake.h"

#include "app/operations/export/thin_curve.h"
#include "app/scene/curves.h"

namespace zr {
namespace {

constexpr int kKeyTypes[] = {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale};

// Whether some camera or light turns with what it aims at: the tools then give it further keys.
bool HasAims(kernix::SceneModel& scene) {
    for (vl::zr::Node* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) {
        if (auto* camera = static_cast<vl::zr::Camera*>(node->GetObjectOfKind(vl::zr::kKindCamera))) {
            if (camera->GetTargetNode() != nullptr) return true;
        } else if (auto* light = static_cast<vl::zr::Light*>(node->GetObjectOfKind(vl::zr::kKindLight))) {
            if (light->GetTargetNode() != nullptr) return true;
        }
    }
    return false;
}

}  // namespace

std::vector<TrackKeys> BakeCurves(kernix::SceneModel& scene, const kernix::AnimationModel& animation,
                                  const ExportOptions& options, Curves curves) {
    const bool mergesKeys = options.Has(vl::tk::kMergeKeys);
    const bool changesKeys =
        mergesKeys || curves == Curves::kStraight || options.Has(vl::tk::kResampleKeys) ||
        options.Has(vl::tk::kReverseTime) || options.Has(vl::tk::kCameraTargetKeys) ||
        options.Has(vl::tk::kLightTargetKeys) || (options.Has(vl::tk::kAllChoices) && HasAims(scene));
    const bool changesValues = options.Has(vl::tk::kFlipAxes) || !options.sceneMatrix.IsIdentity(0);
    std::vector<TrackKeys> before;
    if (!changesKeys && !changesValues) return before;
    for (vl::zr::Track* plain : animation.Tracks()) {
        auto* track = dynamic_cast<kernix::TransformTrack*>(plain);
        if (track == nullptr) continue;
        vl::Ref<vl::Stream> keys;
        for (const int keyType : kKeyTypes) {
            const Curve curve = TakeKeys(*track, keyType);
            const bool bent = curve.interpolation == vl::zr::kInterpolationCubic ||
                              (curve.interpolation == vl::zr::kInterpolationStep && changesKeys);
            Curve baked = bent ? Straightened(*track, keyType) : curve;
            if (mergesKeys) baked = Thinned(baked);
            if (baked == curve) continue;
            if (!keys) {
                keys = vl::Ref<vl::Stream>::Adopt(vl::Stream::CreateInMemory());
                track->Save(*keys);
            }
            ReplaceKeys(*track, keyType, baked);
        }
        if (keys) before.push_back({track, keys});
    }
    scene.TransformsChanged();
    return before;
}

void PutBack(kernix::SceneModel& scene, const std::vector<TrackKeys>& tracks) {
    for (const TrackKeys& before : tracks) {
        before.keys->Seek(0, 0);
        before.track->Load(*before.keys);
    }
    scene.TransformsChanged();
}

}  // namespace zr
