// SPDX-License-Identifier: MIT
#include "kernix/scene/aimed_objects.h"

#include <cmath>

#include "kernix/scene/node_model.h"
#include "kernix/scene/scene_model.h"

namespace kernix {
namespace {

using M = vl::Matrix4<double>;
using V3 = vl::Vector3<double>;

double Length(const V3& v) {
    return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}
V3 Cross(const V3& a, const V3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// The target's position at the current time, in the space of the node at rest (1) or at the current time (0).
V3 TargetIn(NodeModel& node, NodeModel& target, int isStatic) {
    M world;
    M space;
    target.GetWorldMatrix(&world, 0);
    node.GetWorldMatrix(&space, isStatic);
    space.Invert();
    return space.PointTransform(V3{world.m[3][0], world.m[3][1], world.m[3][2]});
}

NodeModel* NodeOf(vl::zr::Object3D& object) {
    return static_cast<NodeModel*>(object.m_pNode);
}

void ChangeTarget(vl::zr::Object3D& object, NodeModel*& current, NodeModel* target) {
    if (current != nullptr) current->Unsubscribe(&object);
    current = target;
    if (current != nullptr) current->Subscribe(&object);
}

}  // namespace

vl::Vector3<float> Aim::TargetInRestSpace(NodeModel& node, float forward) const {
    if (m_target == nullptr) return {m_position.x, m_position.y, m_position.z - forward};
    const V3 target = TargetIn(node, *m_target, 1);
    return {static_cast<float>(target.x), static_cast<float>(target.y), static_cast<float>(target.z)};
}

M LookAt(const vl::Vector3<float>& position, const V3& target) {
    M m;
    m.IdentityMatrix();
    const V3 back{position.x - target.x, position.y - target.y, position.z - target.z};
    const double distance = Length(back);
    if (distance > 0) {
        const V3 z{back.x / distance, back.y / distance, back.z / distance};
        // Looking straight down, the node's -Z is up; looking straight up, its Z is.
        V3 x = Cross(V3{0, 1, 0}, z);
        if (Length(x) < 1e-9) x = Cross(V3{0, 0, z.y > 0 ? -1.0 : 1.0}, z);
        const double length = Length(x);
        x = {x.x / length, x.y / length, x.z / length};
        const V3 y = Cross(z, x);
        const V3 rows[3] = {x, y, z};
        for (int i = 0; i < 3; ++i) {
            m.m[i][0] = rows[i].x;
            m.m[i][1] = rows[i].y;
            m.m[i][2] = rows[i].z;
        }
    }
    m.Offset(position);
    return m;
}

void Aim::GetObjectMatrix(NodeModel& node, M& m) const {
    if (m_target != nullptr) {
        m = LookAt(m_position, TargetIn(node, *m_target, 0));
    } else {
        m.SetTranslate({m_position.x, m_position.y, m_position.z});
    }
    m.Invert();
}

LightModel::~LightModel() {
    ChangeTarget(*this, m_aim.m_target, nullptr);
}

vl::zr::Node* LightModel::GetTargetNode() {
    return m_aim.m_target;
}

void LightModel::GetObjectMatrix(vl::zr::Node* node, M* m) {
    m_aim.GetObjectMatrix(static_cast<NodeModel&>(*node), *m);
}

void LightModel::SetTarget(NodeModel* target) {
    const bool aimed = m_aim.m_target != nullptr;
    ChangeTarget(*this, m_aim.m_target, target);
    if (aimed != (target != nullptr)) NodeOf(*this)->GetScene().WatchLight(this, !aimed);
    UpdateTargetPosition();
}

void LightModel::UpdateTargetPosition() {
    m_vTarget = m_aim.TargetInRestSpace(*NodeOf(*this), 0);
}

CameraModel::~CameraModel() {
    ChangeTarget(*this, m_aim.m_target, nullptr);
}

void CameraModel::GetTargetPosition(vl::Vector3<float>* position) {
    *position = m_aim.TargetInRestSpace(*NodeOf(*this), 1);
}

void CameraModel::GetObjectMatrix(vl::zr::Node* node, M* m) {
    m_aim.GetObjectMatrix(static_cast<NodeModel&>(*node), *m);
}

vl::zr::Node* CameraModel::GetTargetNode() {
    return m_aim.m_target;
}

void CameraModel::SetTarget(NodeModel* target) {
    ChangeTarget(*this, m_aim.m_target, target);
}

}  // namespace kernix
