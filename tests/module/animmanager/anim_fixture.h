// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/animation.h"
#include "host/ref.h"
#include "kernix/array.h"
#include "kernix/host_app_base.h"
#include "kernix/scene/change_record_model.h"
#include "kernix/scene/scene_model.h"
#include "module/animmanager/anim_manager_impl.h"
#include "module/frame/globals.h"

using TestNode = kernix::NodeModel;
using TestAnimation = kernix::AnimationModel;
using KeyList = std::vector<std::pair<float, float>>;  // time, x of the value

constexpr std::uint32_t kMergeAll = ANIM_MERGE_POSITION | ANIM_MERGE_ROTATION | ANIM_MERGE_SCALE;

class AnimHost final : public kernix::HostAppBase {
public:
    const char16_t* GetModuleString(void*, int id) override { return id == 100 ? u"Merge Result" : u""; }
    vl::Interface* CreateInstance(int a, int b, int classCode) override {
        return m_hasStreams ? HostAppBase::CreateInstance(a, b, classCode) : nullptr;
    }

    bool m_hasStreams = true;
};

// A scene, the host it lives in, and an animation manager.
class AnimFixture {
public:
    AnimFixture() { g_pHost = &m_host; }
    ~AnimFixture() { g_pHost = nullptr; }
    AnimFixture(const AnimFixture&) = delete;
    AnimFixture& operator=(const AnimFixture&) = delete;

    zr_ANIM_MANAGER& Manager() { return *m_manager; }
    kernix::SceneModel& Scene() { return *m_scene; }

    TestNode* AddNode(const char* name) {
        TestNode* node = m_scene->AddNode(nullptr, name);
        node->AddTransformController();
        return node;
    }
    TestAnimation* AddAnimation(const char16_t* name) { return m_scene->AddAnimation(name); }

    static vl::zr::TransformController* Controller(TestNode* node) {
        return static_cast<vl::zr::TransformController*>(node->GetController(vl::zr::kControllerTransform));
    }
    static kernix::TransformTrack* Track(TestNode* node, TestAnimation* animation) {
        return node->AddTransformController()->AddTransformTrack(animation);
    }

    static void AddPosition(TestNode* node, TestAnimation* animation, float time,
                            const vl::Vector3<float>& v) {
        Track(node, animation)->AddPosition(time)->SetValue(v);
    }
    static void AddScale(TestNode* node, TestAnimation* animation, float time, const vl::Vector3<float>& v) {
        Track(node, animation)->AddScale(time)->SetValue(v);
    }
    static void AddVectorKeys(TestNode* node, TestAnimation* animation, int keyType, const KeyList& keys) {
        for (const auto& [time, x] : keys) {
            (keyType == vl::zr::kKeyPosition ? AddPosition : AddScale)(node, animation, time, {x, 1, 1});
        }
        Track(node, animation);
    }
    static void AddRotation(TestNode* node, TestAnimation* animation, float time, const vl::AngleAxis& step) {
        Track(node, animation)->AddRotation(time)->SetValue(step);
    }
    static void AddRotation(TestNode* node, TestAnimation* animation, float time,
                            const vl::Quaternion& value) {
        Track(node, animation)->AddRotation(time)->SetQuaternion(value);
    }
    static void AddRotation(TestNode* node, TestAnimation* animation, float time,
                            const vl::Vector3<float>& angles, int order) {
        Track(node, animation)->AddRotation(time)->SetEuler(angles, order);
    }

    vl::Ref<vl::Array> ArrayOf(const std::vector<TestAnimation*>& animations) {
        auto array = vl::Ref<vl::Array>::Adopt(kernix::CreateArray());
        for (TestAnimation* animation : animations) array->Add(vl::ToWord<vl::zr::Animation*>(animation));
        return array;
    }
    TestAnimation* Merge(const std::vector<TestAnimation*>& sources, bool removeSources = false,
                         std::uint32_t flags = kMergeAll, ChangeRecord* record = nullptr) {
        return static_cast<TestAnimation*>(
            m_manager->MergeAnimations(record, ArrayOf(sources).Get(), removeSources, flags));
    }

    static vl::zr::Key* KeyAt(TestNode* node, TestAnimation* animation, int keyType, int index) {
        return Controller(node)->GetKey(keyType, index, Controller(node)->GetTrack(animation));
    }

    // The keys of a type as "time:x time:x"; "-" if the node has no track for the animation.
    static std::string Dump(TestNode* node, TestAnimation* animation, int keyType) {
        vl::zr::Track* track = Controller(node)->GetTrack(animation);
        if (track == nullptr) return "-";
        std::string text;
        for (int i = 0; i < Controller(node)->GetTrackKeyCount(keyType, track); ++i) {
            vl::zr::Key* key = Controller(node)->GetKey(keyType, i, track);
            vl::Vector3<float> value;
            if (keyType == vl::zr::kKeyPosition) static_cast<vl::zr::PositionKey*>(key)->GetValue(&value);
            if (keyType == vl::zr::kKeyScale) static_cast<vl::zr::ScaleKey*>(key)->GetValue(&value);
            char line[64];
            std::snprintf(line, sizeof line, "%s%g:%g", i == 0 ? "" : " ", key->m_fTime, value.x);
            text += line;
        }
        return text;
    }

    void Activate(TestAnimation* animation) { m_scene->SetActiveAnimation(animation); }
    static vl::Matrix4<double> Pose(TestNode* node, float time) {
        vl::Matrix4<double> pose;
        Controller(node)->EvaluateMatrix(time, 0, &pose, 0);
        return pose;
    }

    std::vector<std::u16string> AnimationNames() {
        std::vector<std::u16string> names;
        for (auto* animation : vl::ArrayOf<vl::zr::Animation*>(m_scene->m_pAnimations)) {
            names.push_back(static_cast<TestAnimation*>(animation)->m_name);
        }
        return names;
    }

    AnimHost m_host;

private:
    vl::Ref<kernix::SceneModel> m_scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
    vl::Ref<zr_ANIM_MANAGER> m_manager = vl::Ref<zr_ANIM_MANAGER>::Adopt(new CAnimManagerImpl);
};
