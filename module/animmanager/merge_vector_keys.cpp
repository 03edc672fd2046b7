// SPDX-License-Identifier: MIT
#include "module/animmanager/merge_vector_keys.h"

#include <algorithm>

#include "host/controller.h"

using vl::zr::PositionKey;
using vl::zr::ScaleKey;
using vl::zr::Track;
using vl::zr::TransformController;

namespace zrt {
namespace {

// Seconds.
constexpr double MERGE_GAP = 1.0 / 30;  // a longer pause before the first merged key is held
constexpr double HOLD_KEY_LEAD = 0.0;   // of the hold key before the first merged key
constexpr double KEY_NUDGE = 0.001;     // of a first merged key that gives way to the last existing one

struct PositionKind {
    using Key = PositionKey;
    static constexpr int kType = vl::zr::kKeyPosition;
    static constexpr auto kAdd = &TransformController::AddPositionKey;
};

struct ScaleKind {
    using Key = ScaleKey;
    static constexpr int kType = vl::zr::kKeyScale;
    static constexpr auto kAdd = &TransformController::AddScaleKey;
};

template <typename Kind>
class VectorMerge {
public:
    VectorMerge(TransformController* controller, Track* destination)
        : m_controller(controller), m_destination(destination) {}

    void Run(Track* source, double offset) {
        const int sourceCount = m_controller->GetTrackKeyCount(Kind::kType, source);
        const int existingCount = m_controller->GetTrackKeyCount(Kind::kType, m_destination);
        for (int i = 0; i < sourceCount; ++i) {
            KeyType* key = KeyAt(source, i);
            const double time = static_cast<double>(key->m_fTime) + offset;
            if (i == 0 && existingCount > 0) {
                AddFirst(key, time, KeyAt(m_destination, existingCount - 1),
                         sourceCount == 1 && existingCount == 1);
            } else {
                AddCopy(key, time);
            }
        }
    }

private:
    using KeyType = typename Kind::Key;

    void AddFirst(KeyType* key, double time, KeyType* last, bool bothSingle) {
        const double lastTime = last->m_fTime;
        const vl::Vector3<float> lastValue = Value(last);
        const bool differs = Value(key) != lastValue;
        if (time - HOLD_KEY_LEAD - MERGE_GAP > lastTime && differs) {
            Add(time - HOLD_KEY_LEAD, lastValue);
            AddCopy(key, time);
        } else if (time != lastTime && !bothSingle) {
            AddCopy(key, time);
        } else if (differs) {
            AddCopy(key, time + KEY_NUDGE);
        }
    }

    void AddCopy(KeyType* key, double time) {
        KeyType* copy = Add(time, Value(key));
        std::copy(std::begin(key->m_params), std::end(key->m_params), copy->m_params);
    }

    KeyType* Add(double time, const vl::Vector3<float>& value) {
        KeyType* key = (m_controller->*Kind::kAdd)(static_cast<float>(time), m_destination);
        key->SetValue(value);
        return key;
    }

    KeyType* KeyAt(Track* track, int index) {
        return static_cast<KeyType*>(m_controller->GetKey(Kind::kType, index, track));
    }

    static vl::Vector3<float> Value(KeyType* key) {
        vl::Vector3<float> value;
        key->GetValue(&value);
        return value;
    }

    TransformController* m_controller;
    Track* m_destination;
};

}  // namespace

void MergeVectorKeys(TransformController* controller, Track* source, Track* destination, double offset,
                     int keyType) {
    if (keyType == vl::zr::kKeyPosition) {
        VectorMerge<PositionKind>(controller, destination).Run(source, offset);
    } else {
        VectorMerge<ScaleKind>(controller, destination).Run(source, offset);
    }
}

}  // namespace zrt
