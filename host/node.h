// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/array.h"
#include "host/math.h"
#include "host/reference_source.h"

namespace vl {
class VarMap;
}

namespace vl::zr {

class Controller;
class Object3D;

// A node of the scene. The scene owns it; pointers stay valid for the scene's life, also after Delete.
// The order of functions and fields is the binary interface (host/api.h).
class Node : public ReferenceSource {
public:
    Node* m_pFirstChild = nullptr;
    Node* m_pNextSibling = nullptr;
    std::uint32_t m_dwFlags = 0;                       // NodeFlag
    Object3D* m_pOwner = nullptr;                      // object the node belongs to, such as a Selector
    Object3D* m_pObject = nullptr;                     // attached object
    const Matrix4<double>* m_pObjectOffset = nullptr;  // the object's transform before the node's
    Array* m_pControllers = nullptr;                   // of Controller*; null when there is none

    // Null when the node has none and create is false. Without a count for the caller.
    virtual VarMap* GetMetadata(bool create) = 0;

    // The name; never cut inside a character.
    virtual void GetName(char* buffer, int size) = 0;
    virtual void GetNameW(char16_t* buffer, int size) = 0;

    // A description of the node for the user: at most size characters, and a terminator.
    virtual void GetDescription(char* buffer, int size) = 0;

    // kControllerTransform: the transform controller. Null without one, and for other kinds.
    virtual Controller* GetController(int kind) = 0;

    // The transform relative to the parent; relative to the world, with the scene matrix as the last step.
    // isStatic 1: at rest; 0: at the scene's current time. A scale of zero reads as one millionth, so that
    // the transforms keep their inverse.
    virtual void GetLocalMatrix(Matrix4<double>* m, int isStatic) = 0;
    virtual void GetWorldMatrix(Matrix4<double>* m, int isStatic) = 0;

    // Removes the node and all its descendants from the scene. Does nothing when that was done before.
    virtual void Delete(int mode) = 0;

    // The attached object when it is of the kind, else null.
    virtual Object3D* GetObjectOfKind(int kind) = 0;

    const char* GetTypeName() override { return "zr_node"; }
};

}  // namespace vl::zr
