// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "app/operations/compare/evaluator.h"
#include "app/operations/reduce/watched_points.h"

namespace zr::reduce {

// The curve of a channel that moves a node: the original, a linear form of it, and the result.
struct Track {
    const compare::Channel* channel;    // translation, rotation or scale
    const compare::KeyCurve* original;  // errors are measured against it
    compare::KeyCurve straight;         // the same without cubic pieces
    compare::KeyCurve reduced;
};

// The greatest deviation of a watched node over an animation.
struct Stray {
    double length = 0;      // of a watched point, in scene units
    double lengthTime = 0;  // seconds
    double angle = 0;       // of a watched direction, in radians
    double angleTime = 0;
};

// Plays the original and the reduced animation side by side, evaluating only nodes between an animated node
// and a watched one.
class Motion {
public:
    // All arguments must outlive it; Track::reduced may change between measurements.
    Motion(const compare::Evaluator& evaluator, const std::vector<Watched>& watched,
           std::vector<Track>& tracks);

    // A node with tracks.
    struct Mover {
        std::vector<std::size_t> tracks;
        std::size_t next = compare::kNone;  // the next mover above it, whose index is lower
        double reach = 0;  // from the node's origin to the farthest watched point below it, in its own space
        double scale = 1;  // the greatest of the node
        double above = 1;  // the greatest combined scale of its ancestors
        std::size_t depth = 1;   // movers on the longest path from a root through this one to a watched node
        bool direction = false;  // a watched direction depends on it
    };
    const std::vector<Mover>& Movers() const { return m_movers; }

    // A watched node that moves, and the lowest of the movers it depends on.
    struct Watch {
        std::size_t node;
        std::size_t mover;
    };
    const std::vector<Watch>& Watches() const { return m_watches; }

    // The number of transforms that one measurement evaluates.
    std::size_t Cost() const { return 2 * m_nodes.size() * m_times.size(); }

    // The greatest deviation of each of Watches(), over the times of all keys and kBetween times between
    // neighbouring keys.
    std::vector<Stray> Measure() const;
    static constexpr std::size_t kBetween = 3;

private:
    struct Node {
        std::size_t node;
        std::size_t parent;     // index in m_nodes, or kNone
        std::size_t watch;      // index in m_watches, or kNone
        std::size_t mover;      // index in m_movers, or kNone
        compare::Affine above;  // the parent's world transform, if it does not move
        compare::Affine local;  // for a node without tracks
    };

    void FindNodes();
    void FindReaches();
    void FindDepths();
    void FindTimes();
    void PlayGiven(double time, std::vector<compare::Affine>& worlds) const;
    void KeepGiven();
    double GreatestScale(const Node& node) const;
    double GreatestDistance(const Node& node) const;
    compare::Affine Local(const Node& node, double time, bool reduced) const;

    const compare::Evaluator& m_evaluator;
    const std::vector<Watched>& m_watched;
    const std::vector<Track>& m_tracks;
    std::vector<Node> m_nodes;  // parents first
    std::vector<Mover> m_movers;
    std::vector<Watch> m_watches;
    std::vector<double> m_times;
    std::vector<compare::Affine> m_given;  // original transforms of all nodes at all times; empty: too many
};

}  // namespace zr::reduce
