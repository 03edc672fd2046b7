// SPDX-License-Identifier: MIT
#pragma once

#include "host/node.h"
#include "host/object.h"
#include "host/scene.h"

namespace zrt {

// A camera or light of a node, as the passes see it.
class AimedObject {
public:
    static AimedObject CameraOf(vl::zr::Node* node) {
        AimedObject object;
        object.m_camera = static_cast<vl::zr::Camera*>(node->GetObjectOfKind(vl::zr::kKindCamera));
        return object;
    }
    static AimedObject LightOf(vl::zr::Node* node) {
        AimedObject object;
        object.m_light = static_cast<vl::zr::Light*>(node->GetObjectOfKind(vl::zr::kKindLight));
        return object;
    }

    // False if the node has no such object; no other member may be called then.
    explicit operator bool() const { return m_camera != nullptr || m_light != nullptr; }

    bool Aims() const {
        return m_light == nullptr || m_light->m_nLightType == vl::zr::kLightSpot ||
               m_light->m_nLightType == vl::zr::kLightDirectional;
    }
    vl::zr::Node* TargetNode() const {
        return m_camera != nullptr ? m_camera->GetTargetNode() : m_light->GetTargetNode();
    }

    // At the scene's current time, in the space of the node at rest.
    vl::Vector3<float> Target() const {
        if (m_light != nullptr) return m_light->m_vTarget;
        vl::Vector3<float> target;
        m_camera->GetTargetPosition(&target);
        return target;
    }

    // A camera's position in its node's space; for a light, the vector that it aims along.
    vl::Vector3<float> Position() const {
        if (m_light != nullptr) return m_light->m_vTarget;
        vl::Vector3<float> position;
        m_camera->GetObjectPosition(&position);
        return position;
    }

    // The transform from where the object is shown, at the scene's current time, into its node's space.
    vl::Matrix4<double> Shown(vl::zr::Node* node) const {
        vl::Matrix4<double> m;
        if (m_camera != nullptr) {
            m_camera->GetObjectMatrix(node, &m);
        } else {
            m_light->GetObjectMatrix(node, &m);
        }
        m.Invert();
        return m;
    }

private:
    vl::zr::Camera* m_camera = nullptr;
    vl::zr::Light* m_light = nullptr;
};

}  // namespace zrt
