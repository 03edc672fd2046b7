// SPDX-License-Identifier: MIT
#pragma once

#include "host/extension.h"

class ChangeRecord;

namespace vl::zr {
class Scene;
}

inline constexpr char kTypeCleaner[] = "CLEANER-607E03E1-F120-4d3c-8872-DCC4D6D0D905";

// Takes unused and repeated content out of a scene. Method 1 of Invoke, "Clean_Scene", runs the chosen
// operations; QueryInfo describes its parameters. Each operation accepts a null context and record and
// answers how many objects went.
class zr_CLEANER : public vl::Extension {
public:
    const char* GetTypeName() override { return kTypeCleaner; }
    vl::ResultEnum QueryInfo(vl::xml::Element* element, unsigned flags) override = 0;
    vl::ResultEnum Invoke(int method, vl::Params* params, vl::Context* context) override = 0;

    virtual int GetRevision() { return 1; }
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
