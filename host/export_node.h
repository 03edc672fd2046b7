// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/array.h"
#include "host/math.h"

namespace vl::zr {
class Node;
class TransformController;
}  // namespace vl::zr

// ExportNode::dwFlags.
enum ExportNodeFlag : std::uint32_t {
    NF_GEOMETRY = 0x1,         // carries the node's object
    NF_ADDED = 0x2,            // was inserted by a pass, or received a child that was
    NF_GROUP = 0x4,            // a transform node that groups others
    NF_SPLIT = 0x8,            // split off from its parent's node
    NF_PIVOT = 0x10,           // represents a pivot offset
    NF_STATICPIVOT = 0x20,     // turned into a pure pivot by the static pivot pass
    NF_ROOT = 0x80,            // the grouping root; set with NF_GROUP and NF_ADDED
    NF_CAMERA_TARGET = 0x100,  // the node is the target of a camera
    NF_LIGHT_TARGET = 0x200,   // the node is the target of a light
    NF_POST = 0x400,           // carries the scene matrix above a top-level record
};

// Key records, which exporters read straight from memory; zero unless stated otherwise. The five parameters
// are those of the host's key (vl::zr::Key). The layout is part of the binary interface (host/api.h).
struct ExportPositionKey {
    float fTime = 0;  // seconds
    float fParams[5] = {};
    std::uint32_t dwReserved = 0;
    vl::Vector3<float> vValue;
};

struct ExportScaleKey {
    float fTime = 0;
    float fParams[5] = {};
    std::uint32_t dwReserved = 0;
    vl::Vector3<float> vValue;
};

struct ExportRotationKey {
    float fTime = 0;
    float fParams[5] = {};
    std::uint32_t dwOrder = 0;          // axis order of vEuler; 0 when the source is not Euler angles
    vl::Vector3<float> vEuler;          // radians
    vl::Quaternion qValue{0, 0, 0, 0};  // absolute orientation
    vl::AngleAxis aaValue;              // absolute in the first key, then the step from the previous key
};

static_assert(sizeof(ExportPositionKey) == 40 && sizeof(ExportScaleKey) == 40);
static_assert(offsetof(ExportPositionKey, vValue) == 28 && offsetof(ExportScaleKey, vValue) == 28);
static_assert(sizeof(ExportRotationKey) == 72);
static_assert(offsetof(ExportRotationKey, vEuler) == 28 && offsetof(ExportRotationKey, qValue) == 40 &&
              offsetof(ExportRotationKey, aaValue) == 56);

// One record of the export hierarchy. Records and everything they point to, except objects of the scene,
// belong to the vl::tk::Serializer that made them and end with it. mLocal is relative to pParent, whatever
// lies between the two in the scene. The order of the fields is the binary interface.
struct ExportNode {
    ExportNode* pParent = nullptr;
    vl::zr::Node* pNode = nullptr;  // null: the record represents no node
    vl::Matrix4<double> mLocal;
    vl::Matrix4<double> mWorld;
    vl::Vector3<float> vPosition;  // at rest, as are the next three
    vl::Vector3<float> vScale{1, 1, 1};
    vl::Quaternion qRotation{0, 0, 0, 0};
    vl::Quaternion qStretch{0, 0, 0, 0};  // orientation of the scale axes
    vl::Array* pChildren = nullptr;       // of ExportNode*; created with the first child
    char* szName = nullptr;               // maximum name length + 1 characters; null until named
    char16_t* wszName = nullptr;          // the same, for wide names
    std::uint32_t dwFlags = 0;            // ExportNodeFlag
    vl::Vector3<float> vPivot;            // pivot that the exporter writes itself
    ExportNode* pTarget = nullptr;        // of a camera or light
    vl::zr::Node* pSourceNode = nullptr;  // node the hierarchy was built from; null on later records
    ExportNode* pSplit = nullptr;         // the record split off from this one, or the pivot it came from
    vl::zr::TransformController* pController = nullptr;
    vl::Array* pRotKeys = nullptr;    // of ExportRotationKey*; null when there is no track
    vl::Array* pPosKeys = nullptr;    // of ExportPositionKey*
    vl::Array* pScaleKeys = nullptr;  // of ExportScaleKey*
};
