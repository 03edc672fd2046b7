// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "kernix/scene/curve.h"

namespace kernix {

// The keys of one type of a track: packed in a curve, and as objects once one is requested. From then on the
// objects are the keys, until they are forgotten or the column gets another curve.
template <typename K>
class KeyColumn {
public:
    using Objects = std::vector<std::unique_ptr<K>>;

    bool IsOpen() const { return m_objects != nullptr; }
    std::size_t Count() const { return IsOpen() ? m_objects->size() : m_curve.KeyCount(); }

    // Of a column that is not open.
    const StoredCurve& Packed() const { return m_curve; }
    StoredCurve& Packed() { return m_curve; }

    void Set(StoredCurve curve) {
        m_objects.reset();
        m_curve = std::move(curve);
    }
    StoredCurve Take() {
        m_objects.reset();
        return std::exchange(m_curve, {});
    }

    // make(curve, index) makes the object of a key.
    template <typename Make>
    Objects& Open(Make make) {
        if (!IsOpen()) {
            m_objects = std::make_unique<Objects>();
            const Curve& curve = m_curve.Get();
            m_objects->reserve(curve.times.size());
            for (std::size_t i = 0; i < curve.times.size(); ++i) m_objects->push_back(make(curve, i));
            m_curve.Unload();
        }
        return *m_objects;
    }
    // For adding and removing keys: the packed curve is lost.
    template <typename Make>
    Objects& OpenToChange(Make make) {
        Objects& objects = Open(make);
        m_curve = {};
        return objects;
    }
    void ForgetObjects() {
        if (m_curve.KeyCount() != 0) m_objects.reset();
    }

private:
    StoredCurve m_curve;
    std::unique_ptr<Objects> m_objects;
};

}  // namespace kernix
