// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/interface.h"
#include "host/kinds.h"
#include "host/math.h"

namespace vl::zr {

class Material;
class Node;

// What a node shows. Attached to one node; the scene owns it.
// The order of functions and fields is the binary interface (host/api.h).
class Object3D : public Interface {
public:
    Node* m_pNode = nullptr;  // the node it is attached to

    virtual bool IsKindOf(int kind) = 0;  // ObjectKind
    virtual int GetType() = 0;            // ObjectType

    // A component with a count for the caller, or null. kind: kComponentMesh.
    virtual Interface* QueryComponent(int kind, int mode) = 0;

    const char* GetTypeName() override { return "zr_object"; }
};

// Component kComponentMesh: the size of a mesh.
class MeshComponent : public Interface {
public:
    std::uint32_t m_nVertices = 0;
    std::uint32_t m_nFaces = 0;
    std::uint32_t m_nSecondary = 0;  // index lists beside the faces: lines

    bool HoldsData() const { return m_nVertices != 0; }

    const char* GetTypeName() override { return "zr_mesh_component"; }
};

class Renderable : public Object3D {
public:
    // How often the object uses the material. mode is 1.
    virtual int CountMaterialUses(Material* material, int mode) = 0;
};

// A renderable made of faces; IsTypeOf("zr_mesh"). The fields are read directly and stay valid until the
// mesh changes.
class Mesh : public Renderable {
public:
    // Equal for two meshes exactly when everything drawn other than positions, faces and lists is equal.
    std::uint32_t m_nFormat = 0;

    const float* m_pPositions = nullptr;  // x, y, z of m_nVertices vertices
    std::uint32_t m_nVertices = 0;
    std::uint32_t m_nFaces = 0;
    const std::uint16_t* m_pFaceCounts = nullptr;  // indices of each face; null: m_nFaceSize for all
    std::uint16_t m_nFaceSize = 3;
    const std::uint32_t* m_pFaceAttributes = nullptr;  // of each face: its material; may be null
    const std::uint32_t* const* m_ppFaces = nullptr;   // the vertex indices of each face; may be null
    std::uint32_t m_nSecondary = 0;
    const std::uint16_t* m_pSecondaryCounts =
        nullptr;  // indices of each list; null: m_nSecondarySize for all
    std::uint16_t m_nSecondarySize = 2;
    const std::uint32_t* const* m_ppSecondary = nullptr;  // the vertex indices of each list; may be null

    const char* GetTypeName() override { return "zr_mesh"; }
};

class Light : public Object3D {
public:
    int m_nLightType = kLightPoint;

    // Where the light aims at the scene's current time, in the space of its node at rest; (0, 0, 0) when
    // it aims at nothing.
    Vector3<float> m_vTarget;

    virtual Node* GetTargetNode() = 0;  // the node it aims at, or null

    // Maps points of the node's space to the space in which the light is shown: the inverse, then the node's
    // transform, places the light where the host shows it at the scene's current time.
    virtual void GetObjectMatrix(Node* node, Matrix4<double>* m) = 0;

    const char* GetTypeName() override { return "zr_light"; }
};

class Camera : public Object3D {
public:
    virtual void GetObjectPosition(Vector3<float>* position) = 0;  // in the node's space

    // Where the camera aims at the scene's current time, in the space of its node at rest.
    virtual void GetTargetPosition(Vector3<float>* position) = 0;
    virtual void GetObjectMatrix(Node* node, Matrix4<double>* m) = 0;  // as Light::GetObjectMatrix
    virtual Node* GetTargetNode() = 0;                                 // the node it aims at, or null

    const char* GetTypeName() override { return "zr_camera"; }
};

// An object that shows one of its node's children.
class Selector : public Object3D {
public:
    Node* m_pSelectedChild = nullptr;  // null: the first child
    Node* m_pFirstChild = nullptr;

    const char* GetTypeName() override { return "zr_selector"; }
};

}  // namespace vl::zr
