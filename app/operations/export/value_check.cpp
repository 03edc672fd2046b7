// SPDX-License-Identifier: MIT
#include "app/operations/export/value_check.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "kernix/utf.h"

namespace zr {

void CheckValues(const PlayedAnimation& played, const Clips& clips, const ValueFactors& factors,
                 const ReplacedKeys& replaced, MotionReport& report) {
    constexpr std::size_t kMostPieces = 100;
    const Clip clip = clips.Of(*played.animation);
    for (vl::zr::Track* track : played.animation->Tracks()) {
        const auto* sampled = dynamic_cast<kernix::SampledTrack*>(track);
        if (sampled == nullptr) continue;
        const auto found = replaced.find(track);
        const bool isReplaced = found != replaced.end() && found->second[0];
        const Curve& before = clips.Source(*track, 0);
        const Curve& after = isReplaced ? *found->second[0] : sampled->GetCurve();
        if (&after == &before) continue;
        if (before.IsEmpty() || after.IsEmpty()) continue;
        const auto [low, high] = std::minmax_element(before.values.begin(), before.values.end());
        const double factor = factors.Of(*track);
        const double range = factor * (double{*high} - *low);
        if (!(range > 0)) continue;
        std::vector<double> a(before.Width()), b(after.Width());
        const auto look = [&](float from, float to) {
            const float time = from + (to - from) / 2;
            if (!(from < to) || time < clip.from || time > clip.to) return;
            kernix::EvaluateNumbers(before, time, a.data());
            kernix::EvaluateNumbers(after, clip.Map(time) * played.timeScale + played.timeOffset, b.data());
            for (std::size_t k = 0; k < a.size(); ++k) {
                const double deviation = std::abs(factor * a[k] - b[k]) / range;
                if (!(deviation > report.valueDeviation)) continue;
                report.valueDeviation = deviation;
                report.valueTime = double{time};
                report.value = kernix::ToUtf8(played.animation->m_name);
            }
        };
        look(clip.from, before.times.front());
        look(before.times.back(), clip.to);
        const std::size_t step = before.times.size() / kMostPieces + 1;
        for (std::size_t i = 1; i < before.times.size(); i += step)
            look(before.times[i - 1], before.times[i]);
    }
}

}  // namespace zr
