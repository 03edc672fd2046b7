// SPDX-License-Identifier: MIT
#pragma once

#include "host/interface.h"

namespace vl::zr {
class Animation;
class Layer;
class Material;
class Node;
class Scene;
class Viewport;
}  // namespace vl::zr

// Collects one set of changes: Begin, the recordings, End with a caption. A removal is recorded before the
// object is removed, a creation after it is created. The record holds a count on each object recorded. A
// recording that runs out of memory throws std::bad_alloc; the change must then not be made. The order of
// functions and fields is the binary interface (host/api.h).
class ChangeRecord : public vl::Interface {
public:
    virtual void Begin() = 0;                       // drops what an earlier set recorded
    virtual void End(const char16_t* caption) = 0;  // caption: shown to the user; copied
    virtual void RecordLayerRemoval(vl::zr::Layer* layer, int mode) = 0;
    virtual void RecordNodeRemoval(vl::zr::Node* node, int mode) = 0;
    virtual void RecordMaterialRemoval(vl::zr::Material* material, int mode) = 0;
    virtual void RecordAnimationCreation(vl::zr::Scene* scene, vl::zr::Animation* animation, int mode) = 0;
    virtual void RecordAnimationRemoval(vl::zr::Scene* scene, vl::zr::Animation* animation, int mode) = 0;
    virtual void RecordAnimationItemRemoval(vl::Interface* item, int mode) = 0;
    virtual void RecordViewportRemoval(vl::zr::Scene* scene, vl::zr::Viewport* viewport, int mode) = 0;
    virtual void RecordTrackCreation(vl::Interface* object, vl::Interface* trackObject) = 0;

    const char* GetTypeName() override { return "zr_change_record"; }
};
