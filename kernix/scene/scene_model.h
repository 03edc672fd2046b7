// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/interface_array.h"
#include "host/ref.h"
#include "host/scene.h"
#include "kernix/scene/aimed_objects.h"
#include "kernix/scene/animation_model.h"
#include "kernix/scene/material_model.h"
#include "kernix/scene/mesh_model.h"
#include "kernix/scene/node_model.h"
#include "kernix/scene/removal_counts.h"
#include "kernix/scene/viewport_model.h"

namespace kernix {

// The scene in memory. Parents are added before their children. The scene owns everything in it; removed
// objects leave the lists but stay alive as long as the scene. A deleted node leaves the layers at the next
// notification. One thread at a time.
class KERNIX_API SceneModel : public vl::zr::Scene {
public:
    SceneModel();
    ~SceneModel() override;

    // Building. Throws std::bad_alloc when memory runs out.
    NodeModel* AddNode(NodeModel* parent, std::string name);  // as the last child; null: top level
    MaterialModel* AddMaterial(std::optional<std::string> name, std::string content);
    AnimationModel* AddAnimation(std::u16string name);
    LayerModel* AddLayer(std::string name);
    ViewportModel* AddViewport(int kind, const std::string& name);
    void SetActiveAnimation(AnimationModel* animation);  // null: none; the first added one is active
    AnimationModel* GetActiveAnimation() const { return m_activeAnimation; }
    void SetSceneMatrix(const vl::Matrix4<double>& m);
    const vl::Matrix4<double>& GetSceneMatrix() const { return m_sceneMatrix; }
    void SetFrameRate(float framesPerSecond) { m_frameRate = framesPerSecond; }
    // Whether m_vTarget of lights follows the scene's time, as by default. Each change of the time then
    // updates every light that aims at a node.
    void FollowLightTargets(bool follow);
    void SetDefaultCameraNode(NodeModel* node) { m_defaultCameraNode = node; }

    // Ties the selector attached to node to the node's children, which exist already. selected may be null.
    void SetSelector(NodeModel* node, vl::zr::Node* selected);

    // Called when a node is asked to delete itself; false keeps the node.
    std::function<bool(NodeModel&)> m_mayDelete;
    // Called by Notify and Refresh.
    std::function<void(int code, int a, int b)> m_onNotify;
    std::function<void()> m_onRefresh;
    bool IsModal() const { return m_modalDepth > 0; }
    // Whether a change record was ever created, as is done before the scene is changed.
    bool HasChangeRecord() const { return m_hasChangeRecord; }

    const std::vector<vl::Ref<NodeModel>>& AllNodes() const { return m_ownNodes; }  // deleted ones too
    const std::vector<vl::Ref<MaterialModel>>& AllMaterials() const { return m_ownMaterials; }
    const std::vector<vl::Ref<AnimationModel>>& AllAnimations() const { return m_ownAnimations; }
    const std::vector<vl::Ref<ViewportModel>>& Viewports() const { return m_viewports; }

    // The material that MergeEqualMaterials put in its place; itself if it was not merged.
    MaterialModel* MergedInto(MaterialModel* material) const;

    // vl::zr::Scene.
    vl::Word GetParam(int position, vl::Word value, zr_VALUETYPE type) const override;
    void Notify(int code, int a, int b) override;
    vl::zr::Node* GetDefaultCameraNode() override { return m_defaultCameraNode; }
    void Refresh(int code, int mode) override;
    int MergeEqualMaterials() override;
    vl::Array* GetObjectsOfKind(int kind) override;
    void BeginModal() override { ++m_modalDepth; }
    void EndModal() override { --m_modalDepth; }
    ChangeRecord* CreateChangeRecord(int mode) override;
    float GetCurrentTime() override { return m_currentTime; }
    void SetCurrentTime(float time, int mode) override;
    double GetAnimationTime(vl::zr::Animation* animation) override;
    float GetFrameRate(int) override { return m_frameRate; }
    float GetStartTime(vl::zr::Animation* animation) override;
    float GetEndTime(vl::zr::Animation* animation) override;
    int IsAnimated() override;
    vl::zr::Animation* CreateAnimation(const char16_t* name) override;
    bool DeleteAnimation(vl::zr::Animation* animation) override;
    void RemoveMaterial(vl::zr::Material* material) override;
    void RemoveViewport(vl::zr::Viewport* viewport, int mode) override;
    void RemoveLayer(vl::zr::Layer* layer) override;
    bool CanRemoveAnimation(vl::zr::Animation* animation) override;
    void ForEachAnimationItem(vl::zr::Animation* animation, vl::zr::AnimationItemCallback callback,
                              void* context) override;

    // For the objects of the scene.
    std::uint64_t GetRestState() const { return m_restState; }
    std::uint64_t GetTimeState() const { return m_timeState; }
    void TransformsChanged();
    void WatchLight(LightModel* light, bool watch);
    void RemoveNode(NodeModel& node);

protected:
    void CollectViewports(vl::InterfaceArray* out) override;

private:
    void UpdateLightTargets();
    int FindEqualMaterials(std::vector<MaterialModel*>& into) const;
    void Unlink(NodeModel& node);
    void TakeFromList(NodeModel& node);
    std::pair<float, float> GetRange(const vl::zr::Animation* animation) const;

    std::vector<vl::Ref<NodeModel>> m_ownNodes;
    std::vector<vl::Ref<MaterialModel>> m_ownMaterials;
    std::vector<vl::Ref<AnimationModel>> m_ownAnimations;
    std::vector<vl::Ref<ViewportModel>> m_viewports;
    std::vector<vl::Ref<ViewportModel>> m_removedViewports;
    std::vector<vl::Ref<LayerModel>> m_ownLayers;
    std::vector<MaterialModel*> m_mergedInto;  // by material id
    std::vector<LightModel*> m_watchedLights;
    vl::Ref<vl::Array> m_nodeWords;
    RemovalCounts m_removedNodes;
    vl::Ref<vl::Array> m_materialWords;
    vl::Ref<vl::Array> m_animationWords;
    vl::Ref<vl::InterfaceArray> m_layers;
    NodeModel* m_lastNode = nullptr;  // of the top-level chain
    NodeModel* m_defaultCameraNode = nullptr;
    AnimationModel* m_activeAnimation = nullptr;
    vl::Matrix4<double> m_sceneMatrix;
    float m_frameRate = 30;
    float m_currentTime = 0;
    int m_modalDepth = 0;
    bool m_layersHoldDeleted = false;
    bool m_hasChangeRecord = false;
    bool m_followsLightTargets = true;
    std::uint64_t m_restState = 1;
    std::uint64_t m_timeState = 1;
};

}  // namespace kernix
