// SPDX-License-Identifier: MIT
#include "app/operations/animations/split_animation.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kernix/utf.h"

namespace zr {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

class Slicer {
public:
    Slicer(const Curve& curve, float from, bool isRotation)
        : m_curve(curve),
          m_from(from),
          m_isRotation(isRotation),
          m_isCubic(curve.interpolation == vl::zr::kInterpolationCubic),
          m_width(curve.Width()),
          m_stride(m_width * (m_isCubic ? 3 : 1)) {
        m_slice.interpolation = curve.interpolation;
    }

    Curve Run(float to) {
        const auto& times = m_curve.times;
        Add(m_from, ShownAt(m_from));
        const std::size_t first = IndexFrom(std::nextafter(m_from, kInfinity)), next = IndexFrom(to);
        for (std::size_t i = first; i < next; ++i) Add(times[i], KeyAt(i));
        if (next < times.size() && next > 0 && times[next - 1] < std::nextafter(to, -kInfinity))
            Add(to, IsStep() ? KeyAt(next - 1) : ShownAt(to));
        if (m_isCubic && m_slice.times.size() == 1) {
            m_slice.interpolation = vl::zr::kInterpolationLinear;
            const auto value = m_slice.values.begin() + static_cast<std::ptrdiff_t>(m_width);
            m_slice.values = std::vector<float>(value, value + static_cast<std::ptrdiff_t>(m_width));
        }
        return std::move(m_slice);
    }

private:
    using Key = std::vector<float>;  // all numbers of one key

    bool IsStep() const { return m_curve.interpolation == vl::zr::kInterpolationStep; }

    std::size_t IndexFrom(float time) const {
        const auto& times = m_curve.times;
        return static_cast<std::size_t>(std::lower_bound(times.begin(), times.end(), time) - times.begin());
    }

    Key KeyAt(std::size_t index) const {
        const auto at = m_curve.values.begin() + static_cast<std::ptrdiff_t>(index * m_stride);
        return Key(at, at + static_cast<std::ptrdiff_t>(m_stride));
    }

    // What the curve shows, as a key that goes on as the curve does.
    Key ShownAt(float time) const {
        const std::size_t next = IndexFrom(time);
        const auto& times = m_curve.times;
        if (next < times.size() && times[next] == time) return KeyAt(next);
        if (next == 0 || next == times.size()) {
            Key key = KeyAt(next == 0 ? 0 : next - 1);
            if (m_isCubic)
                std::fill_n(key.begin() + static_cast<std::ptrdiff_t>(next == 0 ? 0 : 2 * m_width), m_width,
                            0.0F);
            return key;
        }
        const Key a = KeyAt(next - 1), b = KeyAt(next);
        if (IsStep()) return a;
        const double span = double{times[next]} - times[next - 1];
        const double s = (double{time} - times[next - 1]) / span;
        if (m_isCubic) return Within(a, b, s, span);
        if (m_isRotation) {
            const vl::Quaternion q(static_cast<float>(s), {a[0], a[1], a[2], a[3]}, {b[0], b[1], b[2], b[3]},
                                   0);
            return {q.x, q.y, q.z, q.w};
        }
        Key key(m_width);
        for (std::size_t i = 0; i < m_width; ++i)
            key[i] = static_cast<float>(a[i] + (double{b[i]} - a[i]) * s);
        return key;
    }

    // Value and slope inside a cubic piece: cut there, both halves are the same curve.
    Key Within(const Key& a, const Key& b, double s, double span) const {
        Key key(m_stride);
        for (std::size_t i = 0; i < m_width; ++i) {
            const double va = a[m_width + i], vb = b[m_width + i];
            const double da = span * a[2 * m_width + i], db = span * b[i];
            const double s2 = s * s, s3 = s2 * s;
            key[m_width + i] = static_cast<float>((2 * s3 - 3 * s2 + 1) * va + (s3 - 2 * s2 + s) * da +
                                                  (3 * s2 - 2 * s3) * vb + (s3 - s2) * db);
            key[i] = key[2 * m_width + i] = static_cast<float>(
                ((6 * s2 - 6 * s) * (va - vb) + (3 * s2 - 4 * s + 1) * da + (3 * s2 - 2 * s) * db) / span);
        }
        return key;
    }

    // Of keys that come to one time the last counts.
    void Add(float time, const Key& key) {
        const float moved = time - m_from;
        if (!m_slice.times.empty() && moved <= m_slice.times.back()) {
            m_slice.times.pop_back();
            m_slice.values.resize(m_slice.values.size() - m_stride);
        }
        m_slice.times.push_back(moved);
        m_slice.values.insert(m_slice.values.end(), key.begin(), key.end());
    }

    const Curve& m_curve;
    float m_from;
    bool m_isRotation;
    bool m_isCubic;
    std::size_t m_width;   // numbers of a value
    std::size_t m_stride;  // of a key
    Curve m_slice;
};

std::u16string PartName(const kernix::AnimationModel& animation, const std::string& part) {
    return animation.m_name.empty() ? kernix::ToUtf16(part) : animation.m_name + u" " + kernix::ToUtf16(part);
}

// A cubic rotation passes through values that are no rotations; its pieces cannot be cut exactly.
Curve CuttableKeys(const kernix::TransformTrack& track, int keyType) {
    Curve curve = KeysOf(track, keyType);
    const bool isCubic = curve.interpolation == vl::zr::kInterpolationCubic;
    return keyType == vl::zr::kKeyRotation && isCubic ? BakedKeys(track, keyType) : curve;
}

}  // namespace

Curve Sliced(const Curve& curve, float from, float to, bool isRotation) {
    return Slicer(curve, from, isRotation).Run(to);
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
            const Curve curve = CuttableKeys(static_cast<kernix::TransformTrack&>(*track), keyType);
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
