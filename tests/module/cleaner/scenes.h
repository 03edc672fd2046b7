// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/change_record.h"
#include "host/ref.h"
#include "kernix/scene/scene_model.h"

// Scenes for the cleaner's tests, and what happened to them.
namespace cleaner_test {

// Every recording with the number of elements of its kind at that moment: a late, early or missing removal
// shows in the numbers that follow.
class CallLog final : public ChangeRecord {
public:
    explicit CallLog(vl::zr::Scene& scene) : m_scene(scene) {}

    void Begin() override {}
    void End(const char16_t*) override {}
    void RecordLayerRemoval(vl::zr::Layer* layer, int mode) override;
    void RecordNodeRemoval(vl::zr::Node* node, int mode) override;
    void RecordMaterialRemoval(vl::zr::Material* material, int mode) override;
    void RecordAnimationCreation(vl::zr::Scene*, vl::zr::Animation*, int) override {}
    void RecordAnimationRemoval(vl::zr::Scene* scene, vl::zr::Animation* animation, int mode) override;
    void RecordAnimationItemRemoval(vl::Interface*, int) override {}
    void RecordViewportRemoval(vl::zr::Scene* scene, vl::zr::Viewport* viewport, int mode) override;
    void RecordTrackCreation(vl::Interface*, vl::Interface*) override {}

    std::vector<std::string> m_lines;
    std::function<void()> m_onLine;

private:
    void Add(std::string line);

    vl::zr::Scene& m_scene;
};

// Nodes, materials, layers, viewports and animations that are left, by name.
std::vector<std::string> Content(kernix::SceneModel& scene);

// A mesh of one triangle at x, whose face has the material.
vl::Ref<vl::zr::Object3D> MakeMesh(kernix::MaterialModel* material, float x);

// A scene of some sixty nodes in a random tree, many of them empty, targets, notes or meshes that repeat each
// other, with layers, viewports, materials and animations of which some are used. Equal seeds give equal
// scenes.
vl::Ref<kernix::SceneModel> RandomScene(unsigned seed);

// Runs the operation on the random scene with a log. Returns what it logged, returned and left, and how often
// it notified the scene.
std::vector<std::string> Trace(unsigned seed,
                               const std::function<int(vl::zr::Scene*, ChangeRecord*)>& operation);

}  // namespace cleaner_test
