// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "kernix/scene/curve.h"
#include "kernix/scene/track.h"

namespace kernix {

// One curve of numbers.
class KERNIX_API SampledTrack final : public vl::zr::Track {
public:
    using Track::Track;

    std::optional<std::pair<float, float>> GetRange() override;
    int GetKeyCount() override { return static_cast<int>(m_curve.KeyCount()); }
    void Save(vl::Stream& stream) override;
    bool Load(vl::Stream& stream) override;
    void Retime(float scale, float offset) override;

    const StoredCurve& Packed() const { return m_curve; }
    const Curve& GetCurve() const { return m_curve.Get(); }
    void SetCurve(StoredCurve curve) { m_curve = std::move(curve); }
    StoredCurve TakeCurve() { return std::exchange(m_curve, {}); }  // leaves no key

private:
    StoredCurve m_curve;
};

}  // namespace kernix
