// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "app/operations/compare/evaluator.h"
#include "app/operations/reduce/watched_points.h"

namespace zr::reduce {

// The curve of a channel that moves a node, as it was, as the document has it, and what it becomes.
struct Track {
    const compare::Channel* channel;    // translation, rotation or scale
    const compare::KeyCurve* original;  // what errors count from
    compare::KeyCurve straight;         // the same without cubic pieces
    compare::KeyCurve reduced;
};

// How far a watched node strays at the worst time of an animation.
struct Stray {
    double length = 0;      // of a watched point, scene units
    double lengthTime = 0;  // seconds
    double angle = 0;       // of a watched direction, radians
    double angleTime = 0;
};

// The original and the reduced animation side by side. Plays only nodes between a moving node and a watched
// one.
class Motion {
public:
    // All must outlive it; reduced curves may change between measurements.
    Motion(const compare::Evaluator& evaluator, const std::vector<Watched>& watched,
           std::vector<Track>& tracks);

    // A node with tracks.
    struct Mover {
        std::vector<std::size_t> tracks;
        double reach = 0;  // from the node's origin to the farthest watched point below, in its own space
        double scale = 1;  // the greatest of its own
        double above = 1;  // the greatest scale that the nodes above apply together
        std::size_t depth = 1;   // movers on the longest way from a root through this one to a watched node
        bool direction = false;  // a watched direction hangs on it
    };
    const std::vector<Mover>& Movers() const { return m_movers; }

    // A watched node that moves, and the movers it hangs on.
    struct Watch {
        std::size_t node;
        std::vector<std::size_t> movers;
    };
    const std::vector<Watch>& Watches() const { return m_watches; }

    // Transforms that one measurement evaluates.
    std::size_t Cost() const { return 2 * m_nodes.size() * m_times.size(); }

    // How far each of Watches() strays at the worst of all keys' times and kBetween times in each interval.
    std::vector<Stray> Measure() const;
    static constexpr std::size_t kBetween = 3;

private:
    struct Node {
        std::size_t node;
        std::size_t parent;     // place in m_nodes, or kNone
        std::size_t watch;      // place in m_watches, or kNone
        std::size_t mover;      // place in m_movers, or kNone
        compare::Affine above;  // where the parent stands, when it does not move
        compare::Affine local;  // of a node without tracks
    };

    void FindNodes();
    void FindReaches();
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
    std::vector<compare::Affine> m_given;  // of all nodes at all times, where there is room for them
};

}  // namespace zr::reduce
