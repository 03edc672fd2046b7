// SPDX-License-Identifier: MIT
#include "app/export/bake.h"

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

void BakeCurves(kernix::SceneModel& scene, const ExportOptions& options) {
    const bool changesKeys = options.Has(vl::tk::kMergeKeys) || options.Has(vl::tk::kResampleKeys) ||
                             options.Has(vl::tk::kReverseTime) || options.Has(vl::tk::kCameraTargetKeys) ||
                             options.Has(vl::tk::kLightTargetKeys) ||
                             (options.Has(vl::tk::kAllChoices) && HasAims(scene));
    const bool changesValues = options.Has(vl::tk::kFlipAxes) || !options.sceneMatrix.IsIdentity(0);
    if (!changesKeys && !changesValues) return;
    for (const auto& animation : scene.AllAnimations()) {
        for (vl::zr::Track* plain : animation->Tracks()) {
            auto* track = dynamic_cast<kernix::TransformTrack*>(plain);
            if (track == nullptr) continue;
            for (const int keyType : kKeyTypes) {
                const Curve curve = TakeKeys(*track, keyType);
                const bool bent = curve.interpolation == vl::zr::kInterpolationCubic ||
                                  (curve.interpolation == vl::zr::kInterpolationStep && changesKeys);
                if (bent) ReplaceKeys(*track, keyType, Straightened(*track, keyType));
            }
        }
    }
    scene.TransformsChanged();
}

}  // namespace zr
