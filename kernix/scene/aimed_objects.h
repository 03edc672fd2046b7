// SPDX-License-Identifier: MIT
#pragma once

#include "host/object.h"

namespace kernix {

class NodeModel;

// The transform that moves an object, which looks along -Z with Y up, to the position and turns it so that it
// looks at the target. A target at the position turns nothing.
KERNIX_API vl::Matrix4<double> LookAt(const vl::Vector3<float>& position, const vl::Vector3<double>& target);

// What a light or camera aims at. The object looks along -Z with Y up; one that aims at a node is turned
// about its position so that it looks at that node, at every time.
class Aim {
public:
    NodeModel* m_target = nullptr;
    vl::Vector3<float> m_position;  // of the object, in its node's space

    // Where the object aims at the scene's current time, in the space of its node at rest. Without a target
    // forward units ahead of the object.
    vl::Vector3<float> TargetInRestSpace(NodeModel& node, float forward) const;

    // Maps points of the node's space to the space in which the object is shown.
    void GetObjectMatrix(NodeModel& node, vl::Matrix4<double>& m) const;
};

class KERNIX_API LightModel final : public vl::zr::Light {
public:
    explicit LightModel(int lightType) { m_nLightType = lightType; }
    ~LightModel() override;

    bool IsKindOf(int kind) override { return kind == vl::zr::kKindLight; }
    int GetType() override { return vl::zr::kTypeLight; }
    vl::Interface* QueryComponent(int, int) override { return nullptr; }
    vl::zr::Node* GetTargetNode() override;
    void GetObjectMatrix(vl::zr::Node* node, vl::Matrix4<double>* m) override;

    // The light must be attached to its node. Null aims at nothing.
    void SetTarget(NodeModel* target);
    void UpdateTargetPosition();  // m_vTarget for the scene's current time

private:
    Aim m_aim;
};

class KERNIX_API CameraModel final : public vl::zr::Camera {
public:
    ~CameraModel() override;

    bool IsKindOf(int kind) override { return kind == vl::zr::kKindCamera; }
    int GetType() override { return vl::zr::kTypeCamera; }
    vl::Interface* QueryComponent(int, int) override { return nullptr; }
    void GetObjectPosition(vl::Vector3<float>* position) override { *position = m_aim.m_position; }
    void GetTargetPosition(vl::Vector3<float>* position) override;
    void GetObjectMatrix(vl::zr::Node* node, vl::Matrix4<double>* m) override;
    vl::zr::Node* GetTargetNode() override;

    void SetTarget(NodeModel* target);
    void SetObjectPosition(const vl::Vector3<float>& position) { m_aim.m_position = position; }

private:
    Aim m_aim;
};

}  // namespace kernix
