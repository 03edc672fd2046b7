// SPDX-License-Identifier: MIT
#pragma once

#include "host/extension.h"

class ChangeRecord;

namespace vl::zr {
class Scene;
}

inline constexpr char kTypeCleaner[] = "CLEANER-607E03E1-F120-4d3c-8872-DCC4D6D0D905";

// Removes unused and duplicate content from a scene. QueryInfo describes the method "Clean_Scene": its number
// for Invoke and its parameters, among them a bool for each operation that says whether it runs; a missing
// one counts as true. Invoke returns kSuccess, kWrongClass for another method and kCannotOpen when memory
// runs out before the first operation.
//
// Each operation accepts a null scene, context and record and returns the number of objects it removed. It
// stops at the next element once the context's break is set, or where memory runs out; objects removed until
// then are counted and stay removed. All run on the thread that works on the scene. The order of functions
// and fields is the binary interface (host/api.h).
class zr_CLEANER : public vl::Extension {
public:
    const char* GetTypeName() override { return kTypeCleaner; }
    vl::ResultEnum QueryInfo(vl::xml::Element* element, unsigned flags) override = 0;
    vl::ResultEnum Invoke(int method, vl::Params* params, vl::Context* context) override = 0;

    // The version of this interface.
    virtual int GetRevision() { return 1; }

    // Lets the user choose the operations in a modal dialog and runs them on a thread of its own; the host
    // keeps its other windows disabled meanwhile. On the interface thread. Always returns false.
    virtual bool RunDialog(vl::zr::Scene* scene) = 0;
    virtual int RemoveUnusedAnimations(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) = 0;
    virtual int RemoveUnusedMaterials(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) = 0;
    virtual int RemoveEmptyNodes(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) = 0;
    virtual int RemoveUnusedLayers(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) = 0;
    virtual int RemoveMetadata(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) = 0;
    virtual int RemoveModelViews(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) = 0;
    virtual int RemoveNotesAndEtc(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) = 0;
    virtual int RemoveMeshDupes(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) = 0;

private:
    void DeleteThis() override { delete this; }
};
