// SPDX-License-Identifier: MIT
#include "kernix/scene/sampled_track.h"

#include "kernix/scene/track_stream.h"

namespace kernix {
namespace {

constexpr std::uint32_t kSampledTrackMark = 0x31504D53;  // "SMP1"

}  // namespace

std::optional<std::pair<float, float>> SampledTrack::GetRange() {
    const Curve& curve = m_curve.Get();
    if (curve.IsEmpty()) return std::nullopt;
    return std::pair(curve.times.front(), curve.times.back());
}

void SampledTrack::Save(vl::Stream& stream) {
    WriteValue(stream, kSampledTrackMark);
    SaveCurve(stream, m_curve.Get());
}

bool SampledTrack::Load(vl::Stream& stream) {
    std::uint32_t mark = 0;
    Curve curve;
    const bool isTrack = ReadValue(stream, mark) && mark == kSampledTrackMark && LoadCurve(stream, curve);
    m_curve = isTrack ? StoredCurve(std::move(curve)) : StoredCurve();
    return isTrack;
}

void SampledTrack::Retime(float scale, float offset) {
    if (m_curve.KeyCount() != 0) m_curve.Edit().Retime(scale, offset);
}

}  // namespace kernix
