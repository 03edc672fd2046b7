// SPDX-License-Identifier: MIT
#include "module/keyframe/followers.h"

#include <algorithm>

#include "module/keyframe/timetable.h"

namespace zrt {

namespace {

// Radians by which the orientation between two keys may differ from the one that is shown.
constexpr float kAimTolerance = 0.001f;

// Where the arc between two keys is compared with what is shown. Not the middle, where the two meet when an
// object passes straight ahead.
constexpr float kProbe = 0.3f;

// How often the time between two keys is halved at most.
constexpr int kMaxHalvings = 6;

// The orientation in the world in which a follower is shown.
struct Sample {
    float time;
    vl::Quaternion world;
};

// The time between two samples of one follower.
struct Interval {
    std::size_t follower;
    Sample from;
    Sample to;
    int halvings;

    float At(float fraction) const { return from.time + (to.time - from.time) * fraction; }
};

vl::Quaternion InWorld(const Follower& follower, const vl::Matrix4<double>& shown) {
    vl::Matrix4<double> world;
    follower.node->GetWorldMatrix(&world, 0);
    world.SetMul(shown, world);
    return vl::Quaternion(world);
}

float AngleBetween(vl::Quaternion a, const vl::Quaternion& b) {
    a.Invert();
    return vl::AngleAxis(a * b).angle;
}

class Refiner {
public:
    Refiner(vl::zr::Scene* scene, std::vector<Follower>& followers) : m_scene(scene), m_followers(followers) {
        for (const Follower& follower : followers) m_shown.push_back(follower.object.Shown(follower.node));
    }

    void Run() {
        Begin();
        while (!m_open.empty()) {
            DropClose();
            Halve();
        }
        for (Follower& follower : m_followers) std::sort(follower.times.begin(), follower.times.end());
    }

private:
    // Of the follower, as it is shown at the scene's time, which is the given one.
    Sample Look(std::size_t index, float time) {
        Follower& follower = m_followers[index];
        const vl::Matrix4<double> shown = follower.object.Shown(follower.node);
        follower.isDisplaced |= !shown.IsIdentity(0);
        follower.turns |= !shown.Equal(m_shown[index], 0);
        return {time, InWorld(follower, shown)};
    }

    void Begin() {
        std::vector<std::vector<Sample>> samples(m_followers.size());
        for (std::size_t i = 0; i < m_followers.size(); ++i) {
            const std::vector<float>& times = m_followers[i].times;
            for (std::size_t k = 0; k < times.size(); ++k) m_table.Add(times[k], i, k);
            samples[i].resize(times.size());
        }
        m_table.Run(m_scene,
                    [&](std::size_t i, std::size_t k) { samples[i][k] = Look(i, m_followers[i].times[k]); });
        for (std::size_t i = 0; i < samples.size(); ++i) {
            for (std::size_t k = 1; k < samples[i].size(); ++k)
                m_open.push_back({i, samples[i][k - 1], samples[i][k], 0});
        }
    }

    // The intervals in which the arc is close to what is shown are done.
    void DropClose() {
        std::vector<bool> isClose(m_open.size());
        for (std::size_t i = 0; i < m_open.size(); ++i) m_table.Add(m_open[i].At(kProbe), i);
        m_table.Run(m_scene, [&](std::size_t i, std::size_t) {
            const Interval& interval = m_open[i];
            const vl::Quaternion arc(kProbe, interval.from.world, interval.to.world, 0);
            const Follower& follower = m_followers[interval.follower];
            const vl::Quaternion shown = InWorld(follower, follower.object.Shown(follower.node));
            isClose[i] = !(AngleBetween(shown, arc) > kAimTolerance);
        });
        std::size_t at = 0;
        std::erase_if(m_open, [&](const Interval&) { return isClose[at++]; });
    }

    void Halve() {
        std::vector<Sample> middles(m_open.size());
        for (std::size_t i = 0; i < m_open.size(); ++i) m_table.Add(m_open[i].At(0.5f), i);
        m_table.Run(m_scene, [&](std::size_t i, std::size_t) {
            middles[i] = Look(m_open[i].follower, m_open[i].At(0.5f));
        });
        std::vector<Interval> halves;
        for (std::size_t i = 0; i < m_open.size(); ++i) {
            const Interval& whole = m_open[i];
            m_followers[whole.follower].times.push_back(middles[i].time);
            if (whole.halvings + 1 == kMaxHalvings) continue;
            halves.push_back({whole.follower, whole.from, middles[i], whole.halvings + 1});
            halves.push_back({whole.follower, middles[i], whole.to, whole.halvings + 1});
        }
        m_open = std::move(halves);
    }

    vl::zr::Scene* m_scene;
    std::vector<Follower>& m_followers;
    std::vector<vl::Matrix4<double>> m_shown;  // of each, at the scene's own time
    std::vector<Interval> m_open;
    Timetable m_table;
};

}  // namespace

void Follow(vl::zr::Scene* scene, std::vector<Follower>& followers) {
    Refiner(scene, followers).Run();
}

}  // namespace zrt
