// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "app/scene/curves.h"
#include "host/math.h"

namespace zr {

// An affine transform: three axes, then the translation.
struct Affine {
    double rows[4][3];

    static Affine From(const vl::Matrix4<double>& m);
    vl::Matrix4<double> ToMatrix() const;
    bool IsIdentity() const;
    Affine Then(const Affine& next) const;  // first this, then next
    void Exchange();                        // Y and Z, on both sides
};

// The greatest distance that the origin and the points one unit along the axes move from one to the other.
double DistanceBetween(const Affine& a, const Affine& b);

// Where the nodes of a tree stand, each computed when it is asked for and once for a time. Flat, so that
// threads share the tree and each has the transforms of its own time.
class PoseTree {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    // How a node moves; without a curve of a kind it has that of rest.
    struct Motion {
        const Curve* curves[3] = {};  // as kKeyTypes lists them
        kernix::Pose rest;
        vl::Vector3<float> pivot;  // from which everything on the node hangs

        void SetCurve(std::size_t kind, const Curve& curve) {
            curves[kind] = curve.IsEmpty() ? nullptr : &curve;
        }
    };

    // Parents come before their children; the top ones have kNone.
    std::uint32_t Add(std::uint32_t parent, const Affine& local);
    std::size_t Count() const { return m_nodes.size(); }

    void Move(std::uint32_t node, const Motion& motion);
    void StopAll();

    // The transforms of one time after another.
    class Walk {
    public:
        explicit Walk(const PoseTree& tree) : m_tree(tree), m_known(tree.Count()) {}
        void Go(float time);
        // Held until the next call.
        const Affine& World(std::uint32_t node);

    private:
        struct Known {
            std::uint32_t visit = 0;
            std::uint32_t world;
        };

        const PoseTree& m_tree;
        float m_time = 0;
        std::uint32_t m_visit = 0;
        std::vector<Known> m_known;    // by node
        std::vector<Affine> m_worlds;  // of the nodes that were asked for at this time, and of those above
        std::vector<std::uint32_t> m_open;
    };

private:
    struct Node {
        std::uint32_t parent;
        std::uint32_t local;   // kNone: stands where its parent does
        std::uint32_t motion;  // kNone: stands still
    };

    // Of a node that moves or stands elsewhere than its parent.
    Affine LocalAt(const Node& node, float time) const;

    std::vector<Node> m_nodes;
    std::vector<Affine> m_locals;
    std::vector<Motion> m_motions;
    std::vector<std::uint32_t> m_moving;
};

}  // namespace zr
