// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"
#include "host/extension.h"
#include "host/kinds.h"

class ChangeRecord;

namespace vl {
class InterfaceArray;
}

namespace vl::zr {

class Animation;
class Camera;
class Layer;
class Material;
class Node;
class Viewport;

// Called for each item of an animation; true continues. The words are not used.
using AnimationItemCallback = bool (*)(Word, Word, Interface* item, void* context);

// A scene and everything in it. Lists are arrays of plain pointers that stay valid for the scene's life, also
// after the object has been removed. One thread at a time. GetParam(kParamSceneMatrix, pointer to a matrix,
// ZR_VALUE_MATRIX) fills in the scene matrix. The order of functions and fields is the binary interface
// (host/api.h).
class KERNIX_API Scene : public Extension {
public:
    Node* m_pFirstNode = nullptr;   // start of the top-level sibling chain; null in an empty scene
    Array* m_pNodes = nullptr;      // of Node*: every node, parents before their children; may be null
    Array* m_pMaterials = nullptr;  // of Material*; may be null
    Material* m_pDefaultMaterial = nullptr;  // in the list; never removed
    Array* m_pAnimations = nullptr;          // of Animation*; may be null
    InterfaceArray* m_pLayers = nullptr;     // of Layer; may be null
    Camera* m_pCurrentCamera = nullptr;      // may be null

    // Called once after each removal operation: kNotifyRemoved, 1, 2.
    virtual void Notify(int code, int a, int b) = 0;
    virtual Node* GetDefaultCameraNode() = 0;  // or null

    // Redraws the scene. Called once after the cleaner's dialog: 10, 0.
    virtual void Refresh(int code, int mode) = 0;

    // Keeps the first of each group of materials that are equal in everything but their names, and makes
    // every use of the others refer to it. Returns the number of materials removed.
    virtual int MergeEqualMaterials() = 0;

    // kind: kSceneMaterials or an ObjectKind. A new array, which is the caller's to release.
    virtual Array* GetObjectsOfKind(int kind) = 0;

    // Called before and after a modal dialog of a module.
    virtual void BeginModal() = 0;
    virtual void EndModal() = 0;

    // A new record, not begun. mode is 1. Null when memory runs out.
    virtual ChangeRecord* CreateChangeRecord(int mode) = 0;

    // The time at which nodes, cameras and lights are evaluated unless asked for at rest. mode is 1.
    virtual float GetCurrentTime() = 0;
    virtual void SetCurrentTime(float time, int mode) = 0;
    virtual double GetAnimationTime(Animation* animation) = 0;  // its end
    virtual float GetFrameRate(int mode) = 0;                   // frames a second

    // Start and end of an animation; null: of the range that the scene plays. That range is the active
    // animation's while one is active, else it spans all of them.
    virtual float GetStartTime(Animation* animation) = 0;
    virtual float GetEndTime(Animation* animation) = 0;
    virtual int IsAnimated() = 0;  // 1 when any animation has a key, else 0

    // A new, empty animation that the scene owns. Null when memory runs out.
    virtual Animation* CreateAnimation(const char16_t* name) = 0;

    // Removes the animation, with every controller's track for it. False when it is not one of the scene's.
    virtual bool DeleteAnimation(Animation* animation) = 0;

    // Remove the object from the scene; they do nothing when it is not in it. RemoveViewport: mode is 1.
    virtual void RemoveMaterial(Material* material) = 0;
    virtual void RemoveViewport(Viewport* viewport, int mode) = 0;
    virtual void RemoveLayer(Layer* layer) = 0;

    virtual bool CanRemoveAnimation(Animation* animation) = 0;

    // Items are the objects that represent the animation's tracks. context is handed to the callback.
    virtual void ForEachAnimationItem(Animation* animation, AnimationItemCallback callback,
                                      void* context) = 0;

    // Every viewport: a new array of Viewport, which is the caller's to release.
    InterfaceArray* GetAllViewports();

    const char* GetTypeName() override { return "zr_scene"; }

protected:
    virtual void CollectViewports(InterfaceArray* out) = 0;  // adds every viewport
};

}  // namespace vl::zr
