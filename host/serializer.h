// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/array.h"
#include "host/export_node.h"
#include "host/extension.h"
#include "host/math.h"
#include "host/string.h"
#include "host/window_types.h"

class SettingsStore;

inline constexpr char kTypeKeyframeTool[] = "TKSAVE";

namespace vl::zr {
class Scene;
}

namespace vl::tk {

// May change the name of a node or material. object: the vl::zr::Node or vl::zr::Material; name: to be
// changed in place; it is then cut to the maximum length. Must not throw.
using RenameCallback = void (*)(Interface* object, String* name, void* context);

// Prepares a scene for an exporter: fill the fields marked "in", call Process once, then read the records and
// keys. One object serves one export, on the thread that works on the scene.
//
// The records, their names and keys, the material names and the arrays that the fields hold belong to this
// object and end with its last Release; the objects of the scene that they point to are the scene's. What the
// key getters and GetKeyTimes return is the caller's and stays valid.
//
// A step that runs out of memory drops every record, leaves the fields marked "out" null and returns 0; the
// object can then only be released. Other operations fail as stated with each. The order of functions and
// fields is the binary interface (host/api.h).
class Serializer : public Extension {
public:
    std::uint32_t m_dwExportFlags = 0;  // in: node selection and steps (ExportFlag)
    std::uint32_t m_dwNameFlags = 0;    // in: naming (NameFlag)
    std::uint32_t m_dwAnimFlags = 0;    // in: keys and time (AnimFlag)
    int m_nPivotMode = 0;               // in: pivot form that the exporter writes itself, 1 or 2; else none
    std::uint32_t m_dwStatus = 0;       // out: 0x1, keys were extracted
    zr::Scene* m_pScene = nullptr;      // in: not owned
    Array* m_pRoots = nullptr;          // out: top-level ExportNode*; owns the tree
    Array* m_pAllNodes = nullptr;       // out: every ExportNode*, parents first, then later additions
    Array* m_pMaterialNames = nullptr;  // out: of MaterialName*, one for each material
    int m_nMaxNameLength = 32;          // in: characters of a node name, 4 to 512
    int m_nMaxMaterialNameLength = 0;   // in: characters of a material name; naming runs above 2, at most 511
    void* m_pRenameContext = nullptr;   // in
    RenameCallback m_pfnRename = nullptr;  // in
    bool m_bAnimated = false;              // out
    float m_fRescale = 1.0f;               // in: time factor, or the requested length in seconds
    float m_fTimeScale = 1.0f;             // out: time of the scene * scale + offset = exported time
    float m_fTimeOffset = 0.0f;            // out
    float m_fStartTime = 0.0f;             // out: seconds, mapped
    float m_fEndTime = 0.0f;               // out: seconds, mapped
    Array* m_pNameTable = nullptr;         // out: records ordered by name
    Matrix4<double> m_mScene;              // out: the scene matrix

    // The whole preparation: 1 done, 0 nothing to export. The number is 0.
    virtual int Process(int unused) = 0;

    // Its steps, for callers that insert their own between them; each returns 0 when it did nothing.
    virtual int BuildHierarchy() = 0;
    virtual int ExtractKeys() = 0;
    virtual int AssignNames() = 0;

    // Shows the records in a tree view: the given control, or a window of its own for null. 0 before the
    // hierarchy has been built. On the interface thread.
    virtual int FillTreeView(HWND tree, int unused) = 0;

    // 1 when the scene is animated and any record has several keys in a track, else 0.
    virtual int HasAnimation() = 0;

    // track: vl::zr::KeyType. -1 for a null record.
    virtual int GetKeyCount(ExportNode* record, int track) = 0;
    virtual int TimeToFrame(float time) = 0;  // the nearest frame at GetFrameRate

    // A copy of the key, or the value at rest with time 0 when there is no such key. They return 1.
    virtual int GetRotationKey(ExportNode* record, int index, ExportRotationKey* out) = 0;
    virtual int GetScaleKey(ExportNode* record, int index, ExportScaleKey* out) = 0;
    virtual int GetPositionKey(ExportNode* record, int index, ExportPositionKey* out) = 0;

    // Adds a record without a node below parent (null: outside the tree), which this object owns. A null name
    // counts as empty. Null, with the records unchanged, before the hierarchy has been built and when memory
    // runs out.
    virtual ExportNode* AddNode(ExportNode* parent, const char* name) = 0;
    virtual float GetStartTime() = 0;  // of the exported range, mapped
    virtual float GetEndTime() = 0;
    virtual float GetCurrentTime() = 0;  // the scene's, mapped

    // The times of a record's keys, and of its ancestors' if requested: ascending, without duplicates, and
    // with 0.0 unless there are none. A new array of floats, which is the caller's to release; null when
    // memory runs out.
    virtual Array* GetKeyTimes(ExportNode* record, int withAncestors) = 0;

    // Inserts a time in order, unless the list has it already. When memory runs out the list is unchanged.
    virtual void AddKeyTime(Array* times, float time) = 0;

    // Sets the options that the user's settings request; never clears one.
    virtual void LoadSettings(SettingsStore* store, const char* section) = 0;
    virtual float MapTime(float time) = 0;  // from the scene's time to the exported one
    virtual float GetFrameRate() = 0;       // frames a second; 1 when the scene's is below 0.01

    // After Process, with another animation of the scene active: gives the records the keys of that one,
    // merged, resampled, flipped and mapped as by Process, and the moved records their mLocal and rest
    // values; names, structure and mWorld stay. 0, with nothing changed, when the records themselves depend
    // on the animation (placed cameras and lights, a scene matrix above a record) or the module has no such
    // operation: a new object must then process it. 0, with every record dropped, when memory runs out.
    virtual int ProcessKeys() { return 0; }

    const char* GetTypeName() override { return "tksave"; }
    bool IsTypeOf(const char* name) override {
        return EqualNoCase(name, "tksave") || Extension::IsTypeOf(name);
    }
    ResultEnum CopyFrom(Interface* source, unsigned flags) override {
        return dynamic_cast<Serializer*>(source) != nullptr ? CloneFrom(source, flags) : kWrongClass;
    }
};

// Serializer::m_dwExportFlags.
enum ExportFlag : std::uint32_t {
    kExportLights = 0x2,
    kExportCameras = 0x4,
    kKeepAllNodes = 0x8,         // a node with no other reason becomes a group
    kExportSystemCamera = 0x10,  // with kExportCameras
    kExportBones = 0x20,         // bones and skeleton nodes become groups
    kSkeletonOnly = 0x40,        // skeleton nodes are exported without their object
    kExportNotes = 0x80,
    kGroupingRoot = 0x100,   // above several top-level records
    kGeometrySplit = 0x200,  // turns on kGroupSplit
    kGroupSplit = 0x400,
    kNoStaticPivot = 0x800,  // static pivots are not split off
    kStaticPivot = 0x1000,   // static pivot pass of a scene that is not animated
    kIgnoreAnimation = 0x2000,
    kNoSecondary = 0x4000,  // meshes of lines alone are not exported
    kDecomposeRest = 0x10000,
    kLightTargetRecords = 0x40000,
    kLightTargetKeys = 0x80000,
    kCameraTargetRecords = 0x100000,
    kCameraTargetKeys = 0x200000,
    kMergeKeys = 0x400000,
    kFlipAxes = 0x800000,
    kAllRenderables = 0x1000000,  // meshes without faces and lines too
    kAllChoices = 0x2000000,      // every child of a selector; orientation of cameras and lights by matrix
    kOffsetControllers = 0x4000000,
    kAssignNames = 0x10000000,
    kExtractKeys = 0x20000000,
};

// Serializer::m_dwNameFlags.
enum NameFlag : std::uint32_t {
    kNamesExactCase = 0x1,
    kNamesUnique = 0x2,
    kNamesWide = 0x4,
    kNamesLeadingDigit = 0x8,
    kNamesKeepCharacters = 0x10,
};

// Serializer::m_dwAnimFlags.
enum AnimFlag : std::uint32_t {
    kResampleKeys = 0x4,
    kAngleAxisKeys = 0x8,
    kGroupKeysOnly = 0x20,
    kAtLeastOneKey = 0x40,
    kRescaleTime = 0x80,
    kSetLength = 0x100,
    kReverseTime = 0x200,
};

}  // namespace vl::tk
