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

// Called for each item of an animation; true goes on.
using AnimationItemCallback = bool (*)(Word, Word, Interface* item, void* context);

// A scene with all it holds. Lists are arrays of plain pointers that stay valid for the scene's life.
// GetParam(kParamSceneMatrix, pointer to a matrix, ZR_VALUE_MATRIX) fills the scene matrix.
class KERNIX_API Scene : public Extension {
public:
    Node* m_pFirstNode = nullptr;   // start of the top-level sibling chain
    Array* m_pNodes = nullptr;      // every node, parents before their children; may be null
    Array* m_pMaterials = nullptr;  // may be null
    Material* m_pDefaultMaterial = nullptr;
    Array* m_pAnimations = nullptr;       // may be null
    InterfaceArray* m_pLayers = nullptr;  // of Layer; may be null
    Camera* m_pCurrentCamera = nullptr;   // may be null

    // Told once after each removal operation: kNotifyRemoved, 1, 2.
    virtual void Notify(int code, int a, int b) = 0;
    virtual Node* GetDefaultCameraNode() = 0;
    virtual void Refresh(int code, int mode) = 0;

    // Keeps the first of each group of materials that are equal in everything but their names, and lets
    // every use of the others refer to it. The number of materials that went.
    virtual int MergeEqualMaterials() = 0;

    virtual Array* GetObjectsOfKind(int kind) = 0;  // a new array that the caller releases
    virtual void BeginModal() = 0;
    virtual void EndModal() = 0;
    virtual ChangeRecord* CreateChangeRecord(int mode) = 0;  // the caller holds its one count
    virtual float GetCurrentTime() = 0;                      // seconds
    virtual void SetCurrentTime(float time, int mode) = 0;
    virtual double GetAnimationTime(Animation* animation) = 0;  // its end, seconds
    virtual float GetFrameRate(int mode) = 0;                   // frames a second

    // Start of an animation; null: of the range that the scene plays. That range is the active animation's
    // while one is active, else the hull of all.
    virtual float GetStartTime(Animation* animation) = 0;
    virtual float GetEndTime(Animation* animation) = 0;
    virtual int IsAnimated() = 0;
    virtual Animation* CreateAnimation(const char16_t* name) = 0;  // the scene owns it
    virtual bool DeleteAnimation(Animation* animation) = 0;        // with every controller's track for it
    virtual void RemoveMaterial(Material* material) = 0;
    virtual void RemoveViewport(Viewport* viewport, int mode) = 0;
    virtual void RemoveLayer(Layer* layer) = 0;
    virtual bool CanRemoveAnimation(Animation* animation) = 0;

    // Items are the objects that stand for the animation's tracks.
    virtual void ForEachAnimationItem(Animation* animation, AnimationItemCallback callback,
                                      void* context) = 0;

    // Every viewport. The caller holds the array's one count.
    InterfaceArray* GetAllViewports();

    const char* GetTypeName() override { return "zr_scene"; }

protected:
    virtual void CollectViewports(InterfaceArray* out) = 0;
};

}  // namespace vl::zr
