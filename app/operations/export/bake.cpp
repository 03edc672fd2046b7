// SPDX-License-Identifier: MIT
#include "app/operations/export/bake.h"

#include <utility>

#include "app/operations/export/thin_curve.h"
#include "app/scene/curves.h"

namespace zr {
namespace {

// How the options affect keys.
struct Effects {
    bool changesKeys;
    bool changesValues;
    bool mergesKeys;

    Effects(kernix::SceneModel& scene, const ExportOptions& options, Curves curves)
        : changesKeys(options.Has(vl::tk::kMergeKeys) || curves == Curves::kLinear ||
                      options.Has(vl::tk::kResampleKeys) || options.Has(vl::tk::kReverseTime) ||
                      options.Has(vl::tk::kCameraTargetKeys) || options.Has(vl::tk::kLightTargetKeys) ||
                      (options.Has(vl::tk::kAllChoices) && HasAims(scene))),
          changesValues(options.Has(vl::tk::kFlipAxes) || !options.sceneMatrix.IsIdentity(0)),
          mergesKeys(options.Has(vl::tk::kMergeKeys)) {}

    bool Bakes(vl::zr::KeyInterpolation interpolation) const {
        return interpolation == vl::zr::kInterpolationCubic ||
               (interpolation == vl::zr::kInterpolationStep && changesKeys);
    }
};

}  // namespace

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

BakedCurves::BakedCurves(kernix::SceneModel& scene, const kernix::AnimationModel& animation,
                         const ExportOptions& options, Curves curves)
    : m_scene(scene), m_animation(animation) {
    const Effects effects(scene, options, curves);
    if (!effects.changesKeys && !effects.changesValues) return;
    for (vl::zr::Track* plain : animation.Tracks()) {
        auto* track = dynamic_cast<kernix::TransformTrack*>(plain);
        if (track == nullptr) continue;
        for (const int keyType : kKeyTypes) {
            if (track->Count(keyType) == 0) continue;
            const Curve& curve = track->Packed(keyType)->Get();
            const bool isStraight = curve.interpolation == vl::zr::kInterpolationLinear;
            if (options.keepsCurves && !isStraight) continue;
            const bool bakes = effects.Bakes(curve.interpolation);
            if (!bakes && !effects.mergesKeys) continue;
            Curve baked = bakes ? BakedKeys(*track, keyType) : curve;
            if (effects.mergesKeys) baked = Thinned(baked);
            if (baked == curve) continue;
            m_originals.push_back({track, keyType, track->TakeCurve(keyType)});
            track->SetCurve(keyType, kernix::StoredCurve(std::move(baked)));
        }
    }
    scene.TransformsChanged();
}

BakedCurves::~BakedCurves() {
    for (vl::zr::Track* plain : m_animation.Tracks()) {
        if (auto* track = dynamic_cast<kernix::TransformTrack*>(plain)) track->ForgetObjects();
    }
    for (Original& original : m_originals)
        original.track->SetCurve(original.keyType, std::move(original.curve));
    m_scene.TransformsChanged();
}

}  // namespace zr
