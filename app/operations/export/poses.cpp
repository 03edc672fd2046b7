// SPDX-License-Identifier: MIT
#include "app/operations/export/poses.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kernix/scene/transform_controller_model.h"

namespace zr {

Affine Affine::From(const vl::Matrix4<double>& m) {
    Affine affine;
    for (int row = 0; row < 4; ++row) std::copy_n(m.m[row], 3, affine.rows[row]);
    return affine;
}

vl::Matrix4<double> Affine::ToMatrix() const {
    vl::Matrix4<double> m;
    for (int row = 0; row < 4; ++row) std::copy_n(rows[row], 3, m.m[row]);
    m.m[3][3] = 1;
    return m;
}

bool Affine::IsIdentity() const {
    for (int row = 0; row < 4; ++row)
        for (int i = 0; i < 3; ++i)
            if (rows[row][i] != (row == i ? 1 : 0)) return false;
    return true;
}

Affine Affine::Then(const Affine& next) const {
    Affine product;
    for (int row = 0; row < 4; ++row) {
        const double* a = rows[row];
        for (int i = 0; i < 3; ++i) {
            product.rows[row][i] = a[0] * next.rows[0][i] + a[1] * next.rows[1][i] + a[2] * next.rows[2][i] +
                                   (row == 3 ? next.rows[3][i] : 0.0);
        }
    }
    return product;
}

void Affine::Exchange() {
    for (auto& row : rows) std::swap(row[1], row[2]);
    std::swap(rows[1], rows[2]);
}

double DistanceBetween(const Affine& a, const Affine& b) {
    double offset[3];
    for (int i = 0; i < 3; ++i) offset[i] = a.rows[3][i] - b.rows[3][i];
    double greatest = offset[0] * offset[0] + offset[1] * offset[1] + offset[2] * offset[2];
    for (int axis = 0; axis < 3; ++axis) {
        double sum = 0;
        for (int i = 0; i < 3; ++i) {
            const double difference = offset[i] + a.rows[axis][i] - b.rows[axis][i];
            sum += difference * difference;
        }
        greatest = std::max(greatest, sum);
    }
    return std::sqrt(greatest);
}

std::uint32_t PoseTree::Add(std::uint32_t parent, const Affine& local) {
    const bool isApart = parent == kNone || !local.IsIdentity();
    m_nodes.push_back({parent, isApart ? static_cast<std::uint32_t>(m_locals.size()) : kNone, kNone});
    if (isApart) m_locals.push_back(local);
    return static_cast<std::uint32_t>(m_nodes.size() - 1);
}

void PoseTree::Move(std::uint32_t node, const Motion& motion) {
    m_nodes[node].motion = static_cast<std::uint32_t>(m_motions.size());
    m_motions.push_back(motion);
    m_moving.push_back(node);
}

void PoseTree::StopAll() {
    for (const std::uint32_t node : m_moving) m_nodes[node].motion = kNone;
    m_moving.clear();
    m_motions.clear();
}

Affine PoseTree::LocalAt(const Node& node, float time) const {
    if (node.motion == kNone) return m_locals[node.local];
    const Motion& motion = m_motions[node.motion];
    const auto vector = [&](std::size_t kind, const vl::Vector3<float>& rest, double(&out)[3]) {
        if (motion.curves[kind] != nullptr) return kernix::EvaluateNumbers(*motion.curves[kind], time, out);
        out[0] = rest.x, out[1] = rest.y, out[2] = rest.z;
    };
    double translation[3];
    double scale[3];
    vector(0, motion.rest.translation, translation);
    vector(2, motion.rest.scale, scale);
    const kernix::Rotation rotation = motion.curves[1] != nullptr
                                          ? kernix::EvaluateRotation(*motion.curves[1], time)
                                          : kernix::Rotation::From(motion.rest.rotation);
    Affine local = Affine::From(kernix::TransformControllerModel::Compose(translation, rotation, scale));
    const float pivot[3] = {motion.pivot.x, motion.pivot.y, motion.pivot.z};
    for (int row = 0; row < 3; ++row)
        for (int i = 0; i < 3; ++i) local.rows[3][i] -= double{pivot[row]} * local.rows[row][i];
    return local;
}

void PoseTree::Walk::Go(float time) {
    m_time = time;
    ++m_visit;
    m_worlds.clear();
}

const Affine& PoseTree::Walk::World(std::uint32_t node) {
    for (std::uint32_t at = node; at != kNone && m_known[at].visit != m_visit; at = m_tree.m_nodes[at].parent)
        m_open.push_back(at);
    for (; !m_open.empty(); m_open.pop_back()) {
        const Node& open = m_tree.m_nodes[m_open.back()];
        Known& known = m_known[m_open.back()];
        known.visit = m_visit;
        if (open.local == kNone && open.motion == kNone) {
            known.world = m_known[open.parent].world;
            continue;
        }
        const Affine local = m_tree.LocalAt(open, m_time);
        known.world = static_cast<std::uint32_t>(m_worlds.size());
        m_worlds.push_back(open.parent != kNone ? local.Then(m_worlds[m_known[open.parent].world]) : local);
    }
    return m_worlds[m_known[node].world];
}

}  // namespace zr
