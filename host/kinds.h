// SPDX-License-Identifier: MIT
#pragma once

// Number codes of the host's objects. The numbers are part of the binary interface (host/api.h).
namespace vl::zr {

// Object3D::IsKindOf.
enum ObjectKind : int {
    kKindLight = 3,
    kKindCamera = 4,
    kKindDummy = 5,
    kKindBone = 6,
    kKindNote = 7,
    kKindSelector = 9,     // shows one of its node's children (Selector)
    kKindRenderable = 11,  // uses materials
};

// Object3D::QueryComponent.
inline constexpr int kComponentMesh = 17;
// A vl::InterfaceArray of every material that a renderable uses, each once. It is optional: callers that get
// null use CountMaterialUses instead. Objects may return one array that they share.
inline constexpr int kComponentMaterials = 0x104;

// Object3D::GetType.
enum ObjectType : int {
    kTypeObject = 1,
    kTypeLight = 3,
    kTypeCamera = 4,
    kTypeDummy = 5,
    kTypeBone = 6,
    kTypeNote = 7,  // note, callout or annotation
    kTypeModifier = 14,
};

enum KeyType : int { kKeyPosition = 1, kKeyRotation = 2, kKeyScale = 3 };

enum RotationKeyType : int { kRotationAngleAxis = 0, kRotationQuaternion = 1, kRotationEuler = 2 };

// Node::GetController.
inline constexpr int kControllerTransform = 99;
inline constexpr char kTypeTransformController[] = "zr_controltm";

// Scene::GetParam with ZR_VALUE_MATRIX: the change of unit and up axis that an export asks for.
inline constexpr int kParamSceneMatrix = 2004;

// Scene::GetObjectsOfKind.
inline constexpr int kSceneMaterials = 0x103;

// HostApp::CreateInstance.
inline constexpr int kClassTransferStream = 0x303;

// Scene::Notify after a removal.
inline constexpr int kNotifyRemoved = 1035;

// Node::m_dwFlags.
enum NodeFlag : unsigned {
    kNodeSystem = 0x4,       // belongs to the host, such as its view camera
    kNodeSkeleton = 0x1000,  // moves a skin and carries an object of its own
};

// Controller::m_dwFlags.
inline constexpr unsigned kControllerPivotGroup = 0x10;  // the offset moves the node's children as well

// Viewport::m_nKind.
enum ViewportKind : int {
    kViewportModelView = 1,
    kViewportView = 2,  // plays the animations it refers to
    kViewportPortfolio = 6,
};

// Light::m_nLightType. Spot and directional lights aim at a target.
enum LightType : int { kLightSpot = 1, kLightPoint = 2, kLightDirectional = 3 };

// Key::m_params[0]: how the sampler that the key came from passes from this key to the next one.
enum KeyInterpolation : int { kInterpolationLinear = 0, kInterpolationStep = 1, kInterpolationCubic = 2 };

}  // namespace vl::zr
