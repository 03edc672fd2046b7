// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "host/anim_manager.h"
#include "host/animation.h"
#include "host/cad_text.h"
#include "host/change_record.h"
#include "host/cleaner.h"
#include "host/controller.h"
#include "host/hdr_helper.h"
#include "host/host_app.h"
#include "host/interface_array.h"
#include "host/material.h"
#include "host/material_name.h"
#include "host/message_sink.h"
#include "host/module_entry.h"
#include "host/node.h"
#include "host/object.h"
#include "host/params.h"
#include "host/poly_boolean.h"
#include "host/scene.h"
#include "host/serializer.h"
#include "host/settings_store.h"
#include "host/stream.h"
#include "host/view_object.h"
#include "host/viewport.h"
#include "platform/windows.h"

// Modules and hosts that were compiled long ago rely on these slots and offsets.
namespace {

// The slot of a virtual function in its class's table. In a pointer to the function the supported compilers
// (host/api.h) store one more than the function's distance in bytes from the table's start.
template <typename Function>
long SlotOf(Function function) {
    std::ptrdiff_t word = 0;
    static_assert(sizeof function >= sizeof word);
    std::memcpy(&word, &function, sizeof word);
    return (word - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

// The functions occupy consecutive slots, beginning with `first`.
template <typename... Functions>
void ExpectSlots(long first, Functions... functions) {
    long slot = first;
    const auto expectNext = [&slot](long actual) { EXPECT_EQ(actual, slot++); };
    (expectNext(SlotOf(functions)), ...);
}

template <typename Class, typename Field>
std::ptrdiff_t OffsetOf(Field Class::*field) {
    std::ptrdiff_t offset = 0;
    static_assert(sizeof field == sizeof offset);
    std::memcpy(&offset, &field, sizeof offset);
    return offset;
}

// "40 48 56"
template <typename... Fields>
std::string Offsets(Fields... fields) {
    std::string text;
    ((text += (text.empty() ? "" : " ") + std::to_string(OffsetOf(fields))), ...);
    return text;
}

using namespace vl::zr;
using vl::Array;
using vl::Extension;
using vl::Guid;
using vl::Interface;
using vl::Unknown;

// A class's own functions begin where its base's end. The destructor takes two slots.
constexpr long kInterfaceEnd = 11;
constexpr long kExtensionEnd = 25;

TEST(Slots, OfCountedObjectsAndExtensions) {
    using ById = vl::ResultEnum (Unknown::*)(const Guid&, Unknown*&);
    using ByName = vl::ResultEnum (Unknown::*)(const char*, Unknown*&);
    ExpectSlots(0, &Unknown::AddRef, &Unknown::Release, ById{&Unknown::QueryInterface},
                ByName{&Unknown::QueryInterface});
    // The destructor has 4 and 5, DeleteThis 6.
    ExpectSlots(7, &Interface::GetRefCount, &Interface::GetTypeName, &Interface::IsTypeOf,
                &Interface::CopyFrom);
    ExpectSlots(kInterfaceEnd, &Extension::GetInterfaceVersion, &Extension::GetParamType,
                &Extension::QueryInfo, &Extension::Invoke, &Extension::InvokeCommand, &Extension::SetParam,
                &Extension::GetParam, &Extension::SetParamVar, &Extension::GetParamVar,
                &Extension::DeleteParam, &Extension::GetMetadata, &Extension::SetMetadata,
                &Extension::GetParams, &Extension::SetParams);
}

TEST(Slots, OfTheFourExtensions) {
    using legacy::CadText;
    using legacy::GlyphContour;
    using legacy::GlyphTesselated;
    using vl::tk::Serializer;
    ExpectSlots(kExtensionEnd, &zr_ANIM_MANAGER::GetRevision, &zr_ANIM_MANAGER::IsAnimationUsed,
                &zr_ANIM_MANAGER::RemoveAnimation, &zr_ANIM_MANAGER::RemoveAnimations,
                &zr_ANIM_MANAGER::MergeAnimations, &zr_ANIM_MANAGER::Reserved);
    ExpectSlots(kExtensionEnd, &zr_CLEANER::GetRevision, &zr_CLEANER::RunDialog,
                &zr_CLEANER::RemoveUnusedAnimations, &zr_CLEANER::RemoveUnusedMaterials,
                &zr_CLEANER::RemoveEmptyNodes, &zr_CLEANER::RemoveUnusedLayers, &zr_CLEANER::RemoveMetadata,
                &zr_CLEANER::RemoveModelViews, &zr_CLEANER::RemoveNotesAndEtc, &zr_CLEANER::RemoveMeshDupes);
    ExpectSlots(kExtensionEnd, &CadText::CreateStrokeContours, &CadText::CreateOutlineContours,
                &CadText::CreatePolygons);
    ExpectSlots(kExtensionEnd, &Serializer::Process, &Serializer::BuildHierarchy, &Serializer::ExtractKeys,
                &Serializer::AssignNames, &Serializer::FillTreeView, &Serializer::HasAnimation,
                &Serializer::GetKeyCount, &Serializer::TimeToFrame, &Serializer::GetRotationKey,
                &Serializer::GetScaleKey, &Serializer::GetPositionKey, &Serializer::AddNode,
                &Serializer::GetStartTime, &Serializer::GetEndTime, &Serializer::GetCurrentTime,
                &Serializer::GetKeyTimes, &Serializer::AddKeyTime, &Serializer::LoadSettings,
                &Serializer::MapTime, &Serializer::GetFrameRate, &Serializer::ProcessKeys);
    ExpectSlots(kInterfaceEnd, &GlyphContour::GetContourCount, &GlyphContour::GetPointCount,
                &GlyphContour::GetLetterIndex, &GlyphContour::GetPoints, &GlyphContour::Transform,
                &GlyphContour::GetSize);
    ExpectSlots(kInterfaceEnd, &GlyphTesselated::GetVertexCount, &GlyphTesselated::GetTriangleCount,
                &GlyphTesselated::GetVertices, &GlyphTesselated::GetTriangles, &GlyphTesselated::Transform,
                &GlyphTesselated::GetSize);
}

TEST(Slots, OfTheHostAndItsServices) {
    ExpectSlots(0, &HostApp::LoadModuleStrings, &HostApp::GetModuleString, &HostApp::RegisterExtensionType,
                &HostApp::CreateSortedArray, &HostApp::CreateArray, &HostApp::CreateInstance,
                &HostApp::CreateExtension, &HostApp::ReportError, &HostApp::ReportFailure,
                &HostApp::GetMainWindow, &HostApp::GetSettingInt, &HostApp::ShowHelpTopic,
                &HostApp::LocalizeDialog, &HostApp::LogLine, &HostApp::CreateContext);
    ExpectSlots(0, &Array::AddRef, &Array::Release, &Array::GetAt, &Array::RemoveAt, &Array::InsertAt,
                &Array::SetAt, &Array::RemoveAll, &Array::IndexOf, &Array::Add, &Array::Swap,
                &Array::IsValidIndex, &Array::FindSorted);
    ExpectSlots(kInterfaceEnd, &vl::InterfaceArray::GetAt, &vl::InterfaceArray::GetCount,
                &vl::InterfaceArray::Add, &vl::InterfaceArray::Remove);
    ExpectSlots(kInterfaceEnd, &vl::Params::GetParam, &vl::Params::Add, &vl::Params::SetParam,
                &vl::Params::DeleteParam, &vl::Params::Clone);
    ExpectSlots(kInterfaceEnd, &vl::Stream::Seek, &vl::Stream::Read, &vl::Stream::Write,
                &vl::Stream::GetSize);
    ExpectSlots(kInterfaceEnd, &vl::VarMap::Clear, &vl::VarMap::Set, &vl::VarMap::Find, &vl::VarMap::GetCount,
                &vl::VarMap::Clone);
    ExpectSlots(kInterfaceEnd, &vl::Context::SetBreak);
    ExpectSlots(kInterfaceEnd, &ChangeRecord::Begin, &ChangeRecord::End, &ChangeRecord::RecordLayerRemoval,
                &ChangeRecord::RecordNodeRemoval, &ChangeRecord::RecordMaterialRemoval,
                &ChangeRecord::RecordAnimationCreation, &ChangeRecord::RecordAnimationRemoval,
                &ChangeRecord::RecordAnimationItemRemoval, &ChangeRecord::RecordViewportRemoval,
                &ChangeRecord::RecordTrackCreation);
    ExpectSlots(kExtensionEnd, &zr_HDR_HELPER::RemoveEnvironment);
    ExpectSlots(kExtensionEnd, &PolyBoolean::CreatePolygon, &PolyBoolean::Combine, &PolyBoolean::Triangulate,
                &PolyBoolean::SetScale, &PolyBoolean::DeletePolygon);
    ExpectSlots(0, &MessageSink::Message);
    ExpectSlots(0, &SettingsStore::GetInt, &SettingsStore::GetFloat);
    ExpectSlots(0, &ViewObject::ClearBackdrop);
}

TEST(Slots, OfTheScene) {
    struct OpenScene : Scene {
        using Scene::CollectViewports;
    };
    ExpectSlots(kExtensionEnd, &Scene::Notify, &Scene::GetDefaultCameraNode, &Scene::Refresh,
                &Scene::MergeEqualMaterials, &Scene::GetObjectsOfKind, &Scene::BeginModal, &Scene::EndModal,
                &Scene::CreateChangeRecord, &Scene::GetCurrentTime, &Scene::SetCurrentTime,
                &Scene::GetAnimationTime, &Scene::GetFrameRate, &Scene::GetStartTime, &Scene::GetEndTime,
                &Scene::IsAnimated, &Scene::CreateAnimation, &Scene::DeleteAnimation, &Scene::RemoveMaterial,
                &Scene::RemoveViewport, &Scene::RemoveLayer, &Scene::CanRemoveAnimation,
                &Scene::ForEachAnimationItem, &OpenScene::CollectViewports);
    ExpectSlots(kInterfaceEnd, &Node::GetMetadata, &Node::GetName, &Node::GetNameW, &Node::GetDescription,
                &Node::GetController, &Node::GetLocalMatrix, &Node::GetWorldMatrix, &Node::Delete,
                &Node::GetObjectOfKind);
    ExpectSlots(kInterfaceEnd, &Object3D::IsKindOf, &Object3D::GetType, &Object3D::QueryComponent);
    ExpectSlots(kInterfaceEnd + 3, &Renderable::CountMaterialUses);
    ExpectSlots(kInterfaceEnd + 3, &Light::GetTargetNode, &Light::GetObjectMatrix);
    ExpectSlots(kInterfaceEnd + 3, &Camera::GetObjectPosition, &Camera::GetTargetPosition,
                &Camera::GetObjectMatrix, &Camera::GetTargetNode);
    ExpectSlots(kInterfaceEnd, &Controller::AddTrack, &Controller::GetTrack, &Controller::SaveTrack,
                &Controller::LoadTrack, &Controller::IsAnimated, &Controller::GetTrackObject,
                &Controller::RetimeTrack);
    ExpectSlots(kInterfaceEnd + 7, &TransformController::GetOffset, &TransformController::AddRotationKey,
                &TransformController::AddPositionKey, &TransformController::AddScaleKey,
                &TransformController::GetTrackKeyCount, &TransformController::GetKey,
                &TransformController::RemoveKey, &TransformController::EvaluateMatrix,
                &TransformController::NormalizeRotationKeys);
    ExpectSlots(2, &PositionKey::SetValue, &PositionKey::GetValue);
    ExpectSlots(2, &ScaleKey::SetValue, &ScaleKey::GetValue);
    ExpectSlots(2, &RotationKey::SetValue, &RotationKey::GetValue, &RotationKey::GetQuaternion,
                &RotationKey::GetEuler, &RotationKey::GetRotationType);
    ExpectSlots(kInterfaceEnd, &Animation::GetNameW);
    ExpectSlots(kInterfaceEnd, &Material::GetName, &Material::GetNameW);
    ExpectSlots(kInterfaceEnd, &Viewport::RemoveAnimationReference);
}

#if UINTPTR_MAX > 0xFFFFFFFF

TEST(Fields, OfTheSerializerAndItsRecords) {
    using S = vl::tk::Serializer;
    EXPECT_EQ(Offsets(&S::m_dwExportFlags, &S::m_dwNameFlags, &S::m_dwAnimFlags, &S::m_nPivotMode,
                      &S::m_dwStatus, &S::m_pScene, &S::m_pRoots, &S::m_pAllNodes, &S::m_pMaterialNames,
                      &S::m_nMaxNameLength, &S::m_nMaxMaterialNameLength, &S::m_pRenameContext,
                      &S::m_pfnRename, &S::m_bAnimated, &S::m_fRescale, &S::m_fTimeScale, &S::m_fTimeOffset,
                      &S::m_fStartTime, &S::m_fEndTime, &S::m_pNameTable, &S::m_mScene),
              "40 44 48 52 56 64 72 80 88 96 100 104 112 120 124 128 132 136 140 144 152");
    using N = ExportNode;
    EXPECT_EQ(
        Offsets(&N::pParent, &N::pNode, &N::mLocal, &N::mWorld, &N::vPosition, &N::vScale, &N::qRotation,
                &N::qStretch, &N::pChildren, &N::szName, &N::wszName, &N::dwFlags, &N::vPivot, &N::pTarget,
                &N::pSourceNode, &N::pSplit, &N::pController, &N::pRotKeys, &N::pPosKeys, &N::pScaleKeys),
        "0 8 16 144 272 284 296 312 328 336 344 352 356 368 376 384 392 400 408 416");
    EXPECT_EQ(Offsets(&MaterialName::pMaterial, &MaterialName::nIndex, &MaterialName::szName,
                      &MaterialName::wszName),
              "0 8 16 24");
}

TEST(Fields, OfTheScene) {
    EXPECT_EQ(
        Offsets(&Scene::m_pFirstNode, &Scene::m_pNodes, &Scene::m_pMaterials, &Scene::m_pDefaultMaterial,
                &Scene::m_pAnimations, &Scene::m_pLayers, &Scene::m_pCurrentCamera),
        "40 48 56 64 72 80 88");
    EXPECT_EQ(Offsets(&Node::m_pFirstChild, &Node::m_pNextSibling, &Node::m_dwFlags, &Node::m_pOwner,
                      &Node::m_pObject, &Node::m_pObjectOffset, &Node::m_pControllers),
              "48 56 64 72 80 88 96");
    EXPECT_EQ(Offsets(&Object3D::m_pNode, &Light::m_nLightType, &Light::m_vTarget,
                      &Selector::m_pSelectedChild, &Selector::m_pFirstChild),
              "24 32 36 32 40");
    EXPECT_EQ(Offsets(&Mesh::m_nFormat, &Mesh::m_pPositions, &Mesh::m_nVertices, &Mesh::m_nFaces,
                      &Mesh::m_pFaceCounts, &Mesh::m_nFaceSize, &Mesh::m_pFaceAttributes, &Mesh::m_ppFaces,
                      &Mesh::m_nSecondary, &Mesh::m_pSecondaryCounts, &Mesh::m_nSecondarySize,
                      &Mesh::m_ppSecondary),
              "32 40 48 52 56 64 72 80 88 96 104 112");
    EXPECT_EQ(
        Offsets(&MeshComponent::m_nVertices, &MeshComponent::m_nFaces, &MeshComponent::m_nSecondary,
                &Controller::m_pTracks, &Controller::m_dwFlags, &Material::m_pControllers,
                &Material::m_pUserData, &Animation::m_scene, &Layer::m_pMembers, &vl::Context::m_bBreak),
        "20 24 28 24 32 24 32 24 24 20");
    EXPECT_EQ(Offsets(&Viewport::m_nKind, &Viewport::m_pLayer, &Viewport::m_strName,
                      &Viewport::m_pAnimationReferences),
              "20 24 32 64");
    EXPECT_EQ(Offsets(&Key::m_fTime, &Key::m_params, &Array::m_nCount), "8 12 8");
}

#endif

TEST(Fields, OfTheFontDescription) {
    LOGFONTW font{};
    const auto* start = reinterpret_cast<const char*>(&font);
    EXPECT_EQ(reinterpret_cast<const char*>(&font.lfWeight) - start, 16);
    EXPECT_EQ(reinterpret_cast<const char*>(&font.lfItalic) - start, 20);
    EXPECT_EQ(reinterpret_cast<const char*>(&font.lfPitchAndFamily) - start, 27);
    EXPECT_EQ(reinterpret_cast<const char*>(&font.lfFaceName) - start, 28);
    EXPECT_EQ(sizeof font, 92u);
}

}  // namespace
