// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "app/scene/curves.h"
#include "host/math.h"

namespace zr {

// An affine transform; the rows are the images of the three axes, then the translation.
struct Affine {
    double rows[4][3];

    static Affine From(const vl::Matrix4<double>& m);
    vl::Matrix4<double> ToMatrix() const;
    bool IsIdentity() const;
    Affine Then(const Affine& next) const;  // first this, then next
    void Exchange();                        // swaps Y and Z on both sides
};

// The greatest distance between the images, under both transforms, of the origin and of the points one unit
// along each axis.
double DistanceBetween(const Affine& a, const Affine& b);

// The world transforms of a tree of nodes, computed on demand, once per time. Threads share the tree, and
// each walks it at its own times.
class PoseTree {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    // How a node moves. A missing curve means the value at rest.
    struct Motion {
        const Curve* curves[3] = {};  // in the order of kKeyTypes
        kernix::Pose rest;
        vl::Vector3<float> pivot;  // subtracted in the space of the node

        void SetCurve(std::size_t kind, const Curve& curve) {
            curves[kind] = curve.IsEmpty() ? nullptr : &curve;
        }
    };

    // Adds a node after its parent (kNone: a root) and returns its number. local: its transform while it has
    // no motion.
    std::uint32_t Add(std::uint32_t parent, const Affine& local);
    std::size_t Count() const { return m_nodes.size(); }

    // The motion's curves must outlive the tree.
    void Move(std::uint32_t node, const Motion& motion);
    // Removes all motions.
    void StopAll();

    // Evaluates the tree at one time after another. The tree must outlive it and not grow.
    class Walk {
    public:
        explicit Walk(const PoseTree& tree) : m_tree(tree), m_known(tree.Count()) {}
        void Go(float time);
        // Valid until the next call.
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
        std::vector<Affine> m_worlds;  // at the current time, of the nodes asked for and their ancestors
        std::vector<std::uint32_t> m_open;
    };

private:
    struct Node {
        std::uint32_t parent;
        std::uint32_t local;   // kNone: identity
        std::uint32_t motion;  // kNone: does not move
    };

    // For a node with a motion or a transform of its own.
    Affine LocalAt(const Node& node, float time) const;

    std::vector<Node> m_nodes;
    std::vector<Affine> m_locals;
    std::vector<Motion> m_motions;
    std::vector<std::uint32_t> m_moving;
};

}  // namespace zr
