// SPDX-License-Identifier: MIT
#include "app/operations/export/sampled_keys.h"

#include <utility>

#include "app/scene/world_lengths.h"

namespace zr {

namespace {

// Played backwards, a step curve that ends before the animation must hold its last value from the start. This
// takes another key, since reversal moves each value to the preceding key.
//
//   backwards, 0 to 4: 5@0, 6@1, 7@2   ->   7@0, 6@2, 5@3, 5@4
void Retime(Curve& curve, const PlayedAnimation& played) {
    const bool isHeld = played.timeScale < 0 && curve.interpolation == vl::zr::kInterpolationStep;
    const std::vector<float> last(curve.values.end() - static_cast<std::ptrdiff_t>(curve.Width()),
                                  curve.values.end());
    curve.Retime(played.timeScale, played.timeOffset);
    if (!isHeld || curve.times.front() <= played.start) return;
    curve.times.insert(curve.times.begin(), played.start);
    curve.values.insert(curve.values.begin(), last.begin(), last.end());
}

}  // namespace

ValueFactors::ValueFactors(const LoadedScene& loaded, const ExportOptions& options) {
    const double scale = options.Scale();
    if (scale == 1) return;
    for (const LoadedChannel& channel : loaded.Parts().channels) {
        if (channel.keyType != 0) continue;
        auto& controller = static_cast<kernix::SampledControllerModel&>(*channel.controller);
        const double factor = LengthFactor(loaded.Document(), controller.GetTarget(), scale);
        if (factor != 1) m_factors[&controller.Tracks()] = factor;
    }
}

double ValueFactors::Of(const vl::zr::Track& track) const {
    const auto found = m_factors.find(track.GetList());
    return found != m_factors.end() ? found->second : 1;
}

void CollectSampledKeys(const PlayedAnimation& played, const ValueFactors& factors, ReplacedKeys& replaced) {
    for (vl::zr::Track* track : played.animation->Tracks()) {
        const auto* sampled = dynamic_cast<kernix::SampledTrack*>(track);
        if (sampled == nullptr) continue;
        const double factor = factors.Of(*track);
        if (factor == 1 && !played.MapsTime()) continue;
        Curve curve = sampled->GetCurve();
        if (factor != 1)
            for (float& value : curve.values) value = static_cast<float>(value * factor);
        if (played.MapsTime() && !curve.IsEmpty()) Retime(curve, played);
        replaced[track][0] = std::move(curve);
    }
}

}  // namespace zr
