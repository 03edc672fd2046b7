// SPDX-License-Identifier: MIT
#include "module/keyframe/followers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>

#include "module/keyframe/timetable.h"

namespace zrt {

namespace {

// How far the points one unit along a follower's axes may stray between two keys from where they are shown,
// relative to the extent of what is sampled, or to one unit if that is larger.
constexpr double kAimTolerance = 4e-5;

// The greatest error of an orientation in radians, whatever the extent: about a pixel.
constexpr double kGreatestAngle = 1e-3;

// The most times that an interval between two given times is halved.
constexpr int kMostHalvings = 12;

// The inner samples of an interval lie at its quarters. The middle alone would not do: there the arc meets
// what is shown when an object passes straight ahead, and strays furthest when it turns ever faster.
constexpr std::size_t kInner = 3;

// The orientation of a follower relative to the parent of its record.
struct Sample {
    float time;
    vl::Quaternion orientation;
};

// The time between two samples of one follower.
struct Interval {
    std::size_t follower;
    Sample from;
    Sample to;
    int halvings;

    float At(std::size_t inner) const { return from.time + (to.time - from.time) * Fraction(inner); }
    static float Fraction(std::size_t inner) { return static_cast<float>(inner + 1) / (kInner + 1); }
};

// The bounding box of points.
class Box {
public:
    void Add(const vl::Matrix4<double>& world) {
        for (std::size_t i = 0; i < 3; ++i) {
            m_low[i] = std::min(m_low[i], world.m[3][i]);
            m_high[i] = std::max(m_high[i], world.m[3][i]);
        }
    }
    double Diagonal() const {
        return std::hypot(m_high[0] - m_low[0], m_high[1] - m_low[1], m_high[2] - m_low[2]);
    }

private:
    static constexpr double kFar = std::numeric_limits<double>::max();
    double m_low[3] = {kFar, kFar, kFar};
    double m_high[3] = {-kFar, -kFar, -kFar};
};

// In radians; for small angles only.
float AngleBetween(vl::Quaternion a, const vl::Quaternion& b) {
    a.Invert();
    const vl::Quaternion turn = a * b;
    return 2 * std::hypot(turn.x, turn.y, turn.z);
}

double LongestAxis(const vl::Matrix4<double>& m) {
    double longest = 0;
    for (const auto& row : std::span(m.m).first(3))
        longest = std::max(longest, std::hypot(row[0], row[1], row[2]));
    return longest;
}

class Refiner {
public:
    Refiner(vl::zr::Scene* scene, std::vector<Follower>& followers)
        : m_scene(scene), m_followers(followers), m_angles(followers.size()) {
        for (const Follower& follower : followers)
            m_shown.push_back(follower.object.Shown(follower.record->pNode));
    }

    void Run() {
        Begin();
        while (!m_open.empty()) Divide();
        for (Follower& follower : m_followers) std::sort(follower.times.begin(), follower.times.end());
    }

private:
    // Samples a follower at the scene's current time, which is `time`. world: receives its shown transform.
    Sample Look(std::size_t index, float time, vl::Matrix4<double>& world) {
        Follower& follower = m_followers[index];
        vl::zr::Node* node = follower.record->pNode;
        const vl::Matrix4<double> shown = follower.object.Shown(node);
        follower.isDisplaced |= !shown.IsIdentity(0);
        follower.turns |= !shown.Equal(m_shown[index], 0);
        node->GetWorldMatrix(&world, 0);
        world.SetMul(shown, world);
        const ExportNode* parent = follower.record->pParent;
        if (parent == nullptr || parent->pNode == nullptr) return {time, vl::Quaternion(world)};
        vl::Matrix4<double> above;
        parent->pNode->GetWorldMatrix(&above, 0);
        vl::Quaternion back(above);
        back.Invert();
        return {time, vl::Quaternion(world) * back};
    }

    void Begin() {
        std::vector<std::vector<Sample>> samples(m_followers.size());
        for (std::size_t i = 0; i < m_followers.size(); ++i) {
            const std::vector<float>& times = m_followers[i].times;
            for (std::size_t k = 0; k < times.size(); ++k) m_table.Add(times[k], i, k);
            samples[i].resize(times.size());
        }
        Box box;
        std::vector<double> axes(m_followers.size(), 0);
        m_table.Run(m_scene, [&](std::size_t i, std::size_t k) {
            vl::Matrix4<double> world;
            samples[i][k] = Look(i, m_followers[i].times[k], world);
            axes[i] = std::max(axes[i], LongestAxis(world));
            box.Add(world);
            m_followers[i].object.TargetNode()->GetWorldMatrix(&world, 0);
            box.Add(world);
        });
        for (std::size_t i = 0; i < samples.size(); ++i) {
            m_angles[i] = kAimTolerance * std::max(box.Diagonal(), 1.0) / axes[i];
            if (!(m_angles[i] < kGreatestAngle)) m_angles[i] = kGreatestAngle;
            for (std::size_t k = 1; k < samples[i].size(); ++k)
                m_open.push_back({i, samples[i][k - 1], samples[i][k], 0});
        }
    }

    // Intervals whose arc is close enough to what is shown are done; the others are subdivided.
    void Divide() {
        std::vector<std::array<Sample, kInner>> inner(m_open.size());
        for (std::size_t i = 0; i < m_open.size(); ++i)
            for (std::size_t k = 0; k < kInner; ++k) m_table.Add(m_open[i].At(k), i, k);
        m_table.Run(m_scene, [&](std::size_t i, std::size_t k) {
            vl::Matrix4<double> world;
            inner[i][k] = Look(m_open[i].follower, m_open[i].At(k), world);
        });
        std::vector<Interval> shorter;
        for (std::size_t i = 0; i < m_open.size(); ++i) Divide(m_open[i], inner[i], shorter);
        m_open = std::move(shorter);
    }

    void Divide(const Interval& whole, const std::array<Sample, kInner>& inner,
                std::vector<Interval>& shorter) {
        double angle = 0;
        for (std::size_t k = 0; k < kInner; ++k) {
            const vl::Quaternion arc(Interval::Fraction(k), whole.from.orientation, whole.to.orientation, 0);
            angle = std::max<double>(angle, AngleBetween(arc, inner[k].orientation));
        }
        const double greatest = m_angles[whole.follower];
        if (!(angle > greatest)) return;
        // Halving an arc makes it four times as close.
        const bool inQuarters = angle > 4 * greatest;
        const int halvings = whole.halvings + (inQuarters ? 2 : 1);
        Sample from = whole.from;
        const auto add = [&](const Sample& to) {
            if (halvings < kMostHalvings) shorter.push_back({whole.follower, from, to, halvings});
            from = to;
        };
        for (std::size_t k = inQuarters ? 0 : 1; k < kInner; k += inQuarters ? 1 : 2) {
            if (!(from.time < inner[k].time && inner[k].time < whole.to.time)) continue;
            m_followers[whole.follower].times.push_back(inner[k].time);
            add(inner[k]);
        }
        if (from.time > whole.from.time) add(whole.to);
    }

    vl::zr::Scene* m_scene;
    std::vector<Follower>& m_followers;
    std::vector<vl::Matrix4<double>> m_shown;  // of each, at the scene's own time
    std::vector<double> m_angles;              // of each, the greatest allowed between arc and what is shown
    std::vector<Interval> m_open;
    Timetable m_table;
};

}  // namespace

void Follow(vl::zr::Scene* scene, std::vector<Follower>& followers) {
    Refiner(scene, followers).Run();
}

}  // namespace zrt
