// SPDX-License-Identifier: MIT
#include "app/operations/reduce/motion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zr::reduce {
namespace {

using compare::Affine;
using compare::KeyCurve;
using compare::kNone;
using compare::Path;

double GreatestOf(const Affine& m) {
    return std::max({Length(m.x), Length(m.y), Length(m.z)});
}

// The angle between two orientations, from the distances between their axes: for a rotation by an angle, the
// squares add up to 8 sin^2(angle / 2).
double AngleBetween(const Affine& a, const Affine& b) {
    double squares = 0;
    for (const Vec3& off : {Unit(a.x) - Unit(b.x), Unit(a.y) - Unit(b.y), Unit(a.z) - Unit(b.z)})
        squares += Dot(off, off);
    return 2 * std::asin(std::min(1.0, std::sqrt(squares / 8)));
}

}  // namespace

Motion::Motion(const compare::Evaluator& evaluator, const std::vector<Watched>& watched,
               std::vector<Track>& tracks)
    : m_evaluator(evaluator), m_watched(watched), m_tracks(tracks) {
    FindNodes();
    FindReaches();
    FindTimes();
    KeepGiven();
}

void Motion::FindNodes() {
    const std::size_t count = m_evaluator.Nodes();
    std::vector<std::vector<std::size_t>> tracksOf(count);
    for (std::size_t track = 0; track < m_tracks.size(); ++track)
        tracksOf[m_tracks[track].channel->node].push_back(track);

    const std::vector<std::size_t>& order = m_evaluator.ParentsFirst();
    std::vector<bool> isSeen(count, false);
    for (auto node = order.rbegin(); node != order.rend(); ++node) {
        if (!m_watched[*node].IsEmpty()) isSeen[*node] = true;
        const std::size_t parent = m_evaluator.Parent(*node);
        if (isSeen[*node] && parent != kNone) isSeen[parent] = true;
    }

    std::vector<std::size_t> lowest;  // by node in m_nodes: the mover at or next above it
    std::vector<std::size_t> placeOf(count, kNone);
    for (const std::size_t node : order) {
        if (!isSeen[node]) continue;
        const std::size_t parent = m_evaluator.Parent(node);
        const std::size_t above = parent == kNone ? kNone : placeOf[parent];
        if (above == kNone && tracksOf[node].empty()) continue;
        placeOf[node] = m_nodes.size();
        Node added{node, above, kNone, kNone, {}, m_evaluator.RestLocal(node)};
        if (above == kNone && parent != kNone) added.above = m_evaluator.World(parent);
        lowest.push_back(above == kNone ? kNone : lowest[above]);
        if (!tracksOf[node].empty()) {
            added.mover = m_movers.size();
            Mover& mover = m_movers.emplace_back();
            mover.tracks = std::move(tracksOf[node]);
            mover.next = std::exchange(lowest.back(), added.mover);
        }
        if (!m_watched[node].IsEmpty()) {
            added.watch = m_watches.size();
            m_watches.push_back({node, lowest.back()});
        }
        m_nodes.push_back(added);
    }
}

double Motion::GreatestScale(const Node& node) const {
    double greatest = GreatestOf(node.local);
    if (node.mover == kNone) return greatest;
    for (const std::size_t track : m_movers[node.mover].tracks) {
        if (m_tracks[track].channel->path != Path::kScale) continue;
        for (const float value : m_tracks[track].original->Values())
            greatest = std::max(greatest, std::abs(static_cast<double>(value)));
    }
    return greatest;
}

double Motion::GreatestDistance(const Node& node) const {
    double greatest = Length(node.local.origin);
    if (node.mover == kNone) return greatest;
    for (const std::size_t track : m_movers[node.mover].tracks) {
        if (m_tracks[track].channel->path != Path::kTranslation) continue;
        const auto values = m_tracks[track].original->Values();
        for (std::size_t i = 0; i + 3 <= values.size(); i += 3)
            greatest =
                std::max(greatest, static_cast<double>(std::hypot(values[i], values[i + 1], values[i + 2])));
    }
    return greatest;
}

void Motion::FindReaches() {
    std::vector<double> reach(m_nodes.size(), 0), above(m_nodes.size(), 1);
    std::vector<bool> direction(m_nodes.size(), false);
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        const Node& node = m_nodes[i];
        above[i] = node.parent == kNone ? GreatestOf(node.above)
                                        : above[node.parent] * GreatestScale(m_nodes[node.parent]);
    }
    for (std::size_t i = m_nodes.size(); i-- > 0;) {
        const Node& node = m_nodes[i];
        const Watched& watched = m_watched[node.node];
        for (const Vec3& point : watched.points) reach[i] = std::max(reach[i], Length(point));
        if (watched.direction) direction[i] = true;
        if (node.mover != kNone) {
            Mover& mover = m_movers[node.mover];
            mover.reach = reach[i];
            mover.scale = GreatestScale(node);
            mover.above = above[i];
            mover.direction = direction[i];
        }
        if (node.parent == kNone) continue;
        reach[node.parent] =
            std::max(reach[node.parent], GreatestDistance(node) + GreatestScale(node) * reach[i]);
        if (direction[i]) direction[node.parent] = true;
    }
    FindDepths();
}

void Motion::FindDepths() {
    std::vector<std::size_t> line;  // movers from the root to each
    for (const Mover& mover : m_movers) line.push_back(mover.next == kNone ? 1 : line[mover.next] + 1);
    for (const Watch& watch : m_watches) m_movers[watch.mover].depth = line[watch.mover];
    for (std::size_t i = m_movers.size(); i-- > 0;)
        if (const std::size_t next = m_movers[i].next; next != kNone)
            m_movers[next].depth = std::max(m_movers[next].depth, m_movers[i].depth);
}

void Motion::FindTimes() {
    std::vector<double> keys;
    for (const Mover& mover : m_movers) {
        for (const std::size_t track : mover.tracks) {
            for (const KeyCurve* curve : {&m_tracks[track].straight, &m_tracks[track].channel->curve})
                keys.insert(keys.end(), curve->Times().begin(), curve->Times().end());
        }
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        m_times.push_back(keys[i]);
        for (std::size_t part = 1; i + 1 < keys.size() && part <= kBetween; ++part)
            m_times.push_back(keys[i] + (keys[i + 1] - keys[i]) * static_cast<double>(part) / (kBetween + 1));
    }
}

Affine Motion::Local(const Node& node, double time, bool reduced) const {
    if (node.mover == kNone) return node.local;
    compare::Trs parts = m_evaluator.RestParts(node.node);
    for (const std::size_t place : m_movers[node.mover].tracks) {
        const Track& track = m_tracks[place];
        const KeyCurve& curve = reduced ? track.reduced : *track.original;
        switch (track.channel->path) {
            case Path::kTranslation:
                curve.At(time, false, parts.translation);
                break;
            case Path::kRotation:
                curve.At(time, true, parts.rotation);
                break;
            default:
                curve.At(time, false, parts.scale);
        }
    }
    return parts.Matrix();
}

void Motion::PlayGiven(double time, std::vector<Affine>& worlds) const {
    for (std::size_t i = 0; i < m_nodes.size(); ++i) {
        const Node& node = m_nodes[i];
        worlds[i] = (node.parent == kNone ? node.above : worlds[node.parent]) * Local(node, time, false);
    }
}

void Motion::KeepGiven() {
    constexpr std::size_t kGreatest = 1'000'000;  // 96 MB
    if (m_nodes.size() * m_times.size() > kGreatest) return;
    std::vector<Affine> worlds(m_nodes.size());
    for (const double time : m_times) {
        PlayGiven(time, worlds);
        m_given.insert(m_given.end(), worlds.begin(), worlds.end());
    }
}

std::vector<Stray> Motion::Measure() const {
    std::vector<Stray> strays(m_watches.size());
    std::vector<Affine> played(m_nodes.size()), reduced(m_nodes.size());
    for (std::size_t at = 0; at < m_times.size(); ++at) {
        const double time = m_times[at];
        if (m_given.empty()) PlayGiven(time, played);
        const Affine* given = m_given.empty() ? played.data() : &m_given[at * m_nodes.size()];
        for (std::size_t i = 0; i < m_nodes.size(); ++i) {
            const Node& node = m_nodes[i];
            reduced[i] = (node.parent == kNone ? node.above : reduced[node.parent]) * Local(node, time, true);
            if (node.watch == kNone) continue;
            Stray& stray = strays[node.watch];
            const Watched& watched = m_watched[node.node];
            for (const Vec3& point : watched.points) {
                const double length = Length(given[i].Point(point) - reduced[i].Point(point));
                if (length > stray.length) {
                    stray.length = length;
                    stray.lengthTime = time;
                }
            }
            if (!watched.direction) continue;
            const double angle = AngleBetween(given[i], reduced[i]);
            if (angle > stray.angle) {
                stray.angle = angle;
                stray.angleTime = time;
            }
        }
    }
    return strays;
}

}  // namespace zr::reduce
