// SPDX-License-Identifier: MIT
#include "kernix/scene/sampled_track.h"

#include <algorithm>

#include "kernix/scene/track_stream.h"

namespace kernix {
namespace {

constexpr std::uint32_t kSampledTrackMark = 0x31504D53;  // "SMP1"

void SaveFloats(vl::Stream& stream, const std::vector<float>& values) {
    WriteValue(stream, static_cast<std::uint64_t>(values.size()));
    stream.Write(values.data(), values.size() * sizeof(float));
}

bool LoadFloats(vl::Stream& stream, std::vector<float>& values) {
    std::uint64_t count = 0;
    if (!ReadValue(stream, count) || count > stream.GetSize() / sizeof(float)) return false;
    values.resize(count);
    return stream.Read(values.data(), count * sizeof(float)) == count * sizeof(float);
}

}  // namespace

std::optional<std::pair<float, float>> SampledTrack::GetRange() {
    if (m_times.empty()) return std::nullopt;
    return std::pair(m_times.front(), m_times.back());
}

void SampledTrack::Save(vl::Stream& stream) {
    WriteValue(stream, kSampledTrackMark);
    WriteValue(stream, m_interpolation);
    SaveFloats(stream, m_times);
    SaveFloats(stream, m_values);
}

bool SampledTrack::Load(vl::Stream& stream) {
    std::uint32_t mark = 0;
    if (ReadValue(stream, mark) && mark == kSampledTrackMark && ReadValue(stream, m_interpolation) &&
        LoadFloats(stream, m_times) && LoadFloats(stream, m_values)) {
        return true;
    }
    m_times.clear();
    m_values.clear();
    return false;
}

void SampledTrack::Retime(float scale, float offset) {
    for (float& time : m_times) time = time * scale + offset;
    const std::size_t width = m_times.empty() ? 0 : m_values.size() / m_times.size();
    const bool cubic = m_interpolation == vl::zr::kInterpolationCubic;
    if (cubic && scale != 0) {
        for (std::size_t i = 0; i < m_values.size(); ++i) {
            const std::size_t part = i % width / (width / 3);
            if (part != 1) m_values[i] /= scale;
        }
    }
    if (scale >= 0) return;
    std::reverse(m_times.begin(), m_times.end());
    std::vector<float> reversed;
    reversed.reserve(m_values.size());
    for (std::size_t key = m_times.size(); key-- > 0;) {
        const auto at = [&](std::size_t offsetInKey) {
            return m_values.begin() + static_cast<std::ptrdiff_t>(key * width + offsetInKey);
        };
        if (cubic) {
            reversed.insert(reversed.end(), at(width / 3 * 2), at(width));
            reversed.insert(reversed.end(), at(width / 3), at(width / 3 * 2));
            reversed.insert(reversed.end(), at(0), at(width / 3));
        } else {
            reversed.insert(reversed.end(), at(0), at(width));
        }
    }
    m_values = std::move(reversed);
}

}  // namespace kernix
