// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "host/kinds.h"
#include "kernix/scene/track.h"

namespace kernix {

// Key times in ascending order and, for each, an equal number of values. A cubic track holds three times
// as many: incoming slopes, values, outgoing slopes, key by key.
class KERNIX_API SampledTrack final : public vl::zr::Track {
public:
    using Track::Track;

    std::optional<std::pair<float, float>> GetRange() override;
    int GetKeyCount() override { return static_cast<int>(m_times.size()); }
    void Save(vl::Stream& stream) override;
    bool Load(vl::Stream& stream) override;
    void Retime(float scale, float offset) override;

    vl::zr::KeyInterpolation m_interpolation = vl::zr::kInterpolationLinear;
    std::vector<float> m_times;
    std::vector<float> m_values;
};

}  // namespace kernix
