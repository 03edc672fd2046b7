// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>

#include "host/cleaner.h"
#include "platform/windows.h"

// The scene cleaner. The operations keep nothing between calls and never throw: one that runs out of memory
// ends as at a break and counts what was removed until then. They are defined by subject in files of this
// folder; the dialog and its worker thread are separate classes (dialog.h, worker.h).
class CCleanerImpl : public zr_CLEANER {
public:
    // Switches by option id; an id that was never set is off.
    class CI2BMap : private std::map<long, bool> {
    public:
        virtual ~CI2BMap() = default;
        void Set(long id, bool on) { (*this)[id] = on; }
        void Clear() { clear(); }
        bool IsOn(long id) const {
            const auto found = find(id);
            return found != end() && found->second;
        }
    };

    CCleanerImpl() = default;

    vl::ResultEnum QueryInfo(vl::xml::Element* element, unsigned flags) override;
    vl::ResultEnum Invoke(int method, vl::Params* params, vl::Context* context) override;

    bool RunDialog(vl::zr::Scene* scene) override;
    int RemoveUnusedAnimations(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveUnusedMaterials(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveEmptyNodes(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveUnusedLayers(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveMetadata(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveModelViews(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveNotesAndEtc(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;
    int RemoveMeshDupes(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) override;

    // Uses a window: call on the interface thread only.
    virtual int RemoveEnvMapsAndBackplates(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record);

    // Runs the operations that the parameters select. A missing parameter has its default: no scene, every
    // option on. False when memory ran out before the first operation.
    virtual bool CleanScene(vl::Params* params, vl::Context* context);

    // The scene's own operation with the signature of the others; context and record are not used.
    int MergeEqualMaterials(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record);

protected:
    DWORD m_dwCallLimit = 15000;  // milliseconds that a call handed to the interface thread may wait

private:
    void DeleteThis() override { delete this; }

    std::u16string m_strLog;  // of the dialog, continued by the next one
};

// A new cleaner with a count of 1, owned by the caller; null if there is no memory.
CCleanerImpl* CreateCleaner();
