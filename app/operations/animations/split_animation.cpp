// SPDX-License-Identifier: MIT
#include "app/operations/animations/split_animation.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "app/scene/curve_cut.h"
#include "kernix/utf.h"

namespace zr {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::u16string PartName(const kernix::AnimationModel& animation, const std::string& part) {
    return animation.m_name.empty() ? kernix::ToUtf16(part) : animation.m_name + u" " + kernix::ToUtf16(part);
}

}  // namespace

Curve Sliced(const Curve& curve, float from, float to, bool isRotation) {
    const auto& times = curve.times;
    const auto next =
        static_cast<std::size_t>(std::lower_bound(times.begin(), times.end(), to) - times.begin());
    const bool goesOn = next < times.size();
    const Curve part = Cut(curve, from, !goesOn ? kInfinity : next == 0 ? from : to, isRotation);
    const std::size_t stride = part.Stride();
    const bool isHeld = next > 0 && times[next - 1] >= std::nextafter(to, -kInfinity);
    Curve slice{part.interpolation, {}, {}};
    for (std::size_t i = 0; i < part.times.size(); ++i) {
        const bool isEnd = goesOn && i > 0 && i + 1 == part.times.size();
        if (isEnd && isHeld) break;
        const float moved = part.times[i] - from;
        // Of keys that rounding moves to the same time, the last one counts.
        if (!slice.times.empty() && moved <= slice.times.back()) {
            slice.times.pop_back();
            slice.values.resize(slice.values.size() - stride);
        }
        const bool isStep = curve.interpolation == vl::zr::kInterpolationStep;
        const float* key = isEnd && isStep ? curve.Value(next - 1) : part.values.data() + i * stride;
        slice.times.push_back(moved);
        slice.values.insert(slice.values.end(), key, key + stride);
    }
    return slice;
}

Animations CutAnimation(LoadedScene& loaded, kernix::AnimationModel& animation,
                        const std::vector<float>& cuts) {
    kernix::SceneModel& scene = loaded.Scene();
    std::vector<float> bounds{scene.GetStartTime(&animation)};
    bounds.insert(bounds.end(), cuts.begin(), cuts.end());
    bounds.push_back(kInfinity);
    Animations parts;
    for (std::size_t i = 1; i < bounds.size(); ++i)
        parts.push_back(scene.AddAnimation(PartName(animation, std::to_string(i))));
    ForEachController(loaded, [&](vl::zr::Controller& controller, const std::string&) {
        vl::zr::Track* track = controller.GetTrack(&animation);
        if (track == nullptr || track->GetKeyCount() == 0) return;
        const auto slice = [&](const Curve& curve, bool isRotation, const auto& put) {
            for (std::size_t i = 0; i < parts.size(); ++i)
                put(Sliced(curve, bounds[i], bounds[i + 1], isRotation), parts[i]);
        };
        if (!controller.IsTypeOf(vl::zr::kTypeTransformController)) {
            auto& sampled = static_cast<kernix::SampledControllerModel&>(controller);
            return slice(static_cast<kernix::SampledTrack&>(*track).GetCurve(), false,
                         [&](Curve curve, kernix::AnimationModel* part) {
                             sampled.AddSampledTrack(part)->SetCurve(kernix::StoredCurve(std::move(curve)));
                         });
        }
        for (const int keyType : kKeyTypes) {
            const Curve curve = KeysOf(static_cast<kernix::TransformTrack&>(*track), keyType);
            if (curve.times.empty()) continue;
            slice(curve, keyType == vl::zr::kKeyRotation,
                  [&](const Curve& piece, kernix::AnimationModel* part) {
                      auto& transform = static_cast<kernix::TransformControllerModel&>(controller);
                      PutKeys(*transform.AddTransformTrack(part), keyType, piece);
                  });
        }
    });
    return parts;
}

Animations SeparateAnimation(LoadedScene& loaded, kernix::AnimationModel& animation) {
    kernix::SceneModel& scene = loaded.Scene();
    Animations parts;
    const auto separate = [&](vl::Array* controllers, const std::string& name) {
        kernix::AnimationModel* part = nullptr;
        for (vl::zr::Controller* controller : vl::ArrayOf<vl::zr::Controller*>(controllers)) {
            vl::zr::Track* track = controller->GetTrack(&animation);
            if (track == nullptr || track->GetKeyCount() == 0) continue;
            if (part == nullptr) parts.push_back(part = scene.AddAnimation(PartName(animation, name)));
            CopyTrack(*controller, track, *controller, part);
        }
    };
    for (vl::zr::Node* each : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) {
        const auto& node = static_cast<kernix::NodeModel&>(*each);
        separate(node.m_pControllers, node.GetNameText().empty()
                                          ? "node " + std::to_string(loaded.IndexOf(&node).value_or(0))
                                          : node.GetNameText());
    }
    int index = 0;
    for (vl::zr::Material* material : vl::ArrayOf<vl::zr::Material*>(scene.m_pMaterials))
        separate(material->m_pControllers, "material " + std::to_string(index++));
    return parts;
}

}  // namespace zr
