// SPDX-License-Identifier: MIT
// What cameras and lights aim at, and where they are shown, through the tool.
#include <gtest/gtest.h>

#include <vector>

#include "kernix/scene/scene_model.h"
#include "module/keyframe/keyframe_tool.h"
#include "tests/module/test_host.h"

namespace {

using kernix::NodeModel;
using kernix::SceneModel;
using vl::Ref;
using namespace vl::tk;
using M = vl::Matrix4<double>;
using V3f = vl::Vector3<float>;

std::vector<float> Times(vl::Array* positions) {
    std::vector<float> times;
    for (const auto* key : vl::ArrayOf<ExportPositionKey*>(positions)) times.push_back(key->fTime);
    return times;
}

// A scene with one object that aims at a target.
template <typename Object>
class Aiming {
public:
    explicit Aiming(Object* object, bool hasTarget = true) {
        m_scene->SetSceneMatrix(m_matrix);
        m_animation = m_scene->AddAnimation(u"move");
        m_node = m_scene->AddNode(nullptr, "object");
        m_node->SetObject(Ref<vl::zr::Object3D>::Adopt(object));
        m_target = m_scene->AddNode(nullptr, "target");
        m_target->SetRestPose({{0, 0, -5}, {}, {1, 1, 1}});
        if (hasTarget) object->SetTarget(m_target);
        m_tool->m_pScene = m_scene.Get();
    }

    void Move(NodeModel* node, const std::vector<std::pair<float, V3f>>& keys) {
        auto* track = node->AddTransformController()->AddTransformTrack(m_animation);
        for (const auto& [time, value] : keys) track->AddPosition(time)->m_value = value;
    }

    // Turns the object's node by 0.3, then by another 2.5 radians, with position keys as well.
    void Turn(bool asSteps) {
        auto* track = m_node->AddTransformController()->AddTransformTrack(m_animation);
        const vl::AngleAxis first(0, 1, 0, 0.3f), second(0, 1, 0, 2.5f);
        kernix::RotationKeyModel* keys[2] = {track->AddRotation(0), track->AddRotation(2)};
        if (asSteps) {
            keys[0]->SetValue(first);
            keys[1]->SetValue(second);
        } else {
            keys[0]->SetQuaternion(vl::Quaternion(first));
            keys[1]->SetQuaternion(vl::Quaternion(first) * vl::Quaternion(second));
        }
        track->AddPosition(0)->m_value = {1, 0, 0};
        track->AddPosition(2)->m_value = {0, 1, 0};
    }

    // Exports with the flags and returns the record of the object.
    ExportNode* Export(std::uint32_t flags) {
        m_tool->m_dwExportFlags = flags | kExportCameras | kExportLights | kExtractKeys;
        EXPECT_EQ(m_tool->Process(0), 1);
        return m_tool->FindNodeRecord(m_node);
    }

    static M Identity() {
        M m;
        m.IdentityMatrix();
        return m;
    }

    M m_matrix = Identity();
    Ref<SceneModel> m_scene = Ref<SceneModel>::Adopt(new SceneModel);
    Ref<ZR_TK> m_tool = Ref<ZR_TK>::Adopt(new ZR_TK);
    kernix::AnimationModel* m_animation;
    NodeModel* m_node;
    NodeModel* m_target;
};

using AimingCamera = Aiming<kernix::CameraModel>;
using AimingLight = Aiming<kernix::LightModel>;

class TargetPassTest : public HostTest {};

// The transform of the exported object at a time, by the usual interpolation of its keys.
M Exported(ZR_TK& tool, ExportNode* record, float time) {
    const auto find = [time](const auto& at, int count) {
        int next = 0;
        while (next < count && at(next) <= time) ++next;
        return next;
    };
    ExportPositionKey p[2];
    ExportRotationKey r[2];
    const int positions = tool.GetKeyCount(record, 1);
    const int rotations = tool.GetKeyCount(record, 2);
    const int pNext =
        find([&](int i) { return tool.GetPositionKey(record, i, &p[0]), p[0].fTime; }, positions);
    const int rNext =
        find([&](int i) { return tool.GetRotationKey(record, i, &r[0]), r[0].fTime; }, rotations);
    const auto fraction = [time](float a, float b) { return b > a ? (time - a) / (b - a) : 0.0f; };
    tool.GetPositionKey(record, std::max(pNext - 1, 0), &p[0]);
    tool.GetPositionKey(record, std::max(std::min(pNext, positions - 1), 0), &p[1]);
    tool.GetRotationKey(record, std::max(rNext - 1, 0), &r[0]);
    tool.GetRotationKey(record, std::max(std::min(rNext, rotations - 1), 0), &r[1]);
    const float s = fraction(p[0].fTime, p[1].fTime);
    M m;
    m.SetRotate(vl::Quaternion(fraction(r[0].fTime, r[1].fTime), r[0].qValue, r[1].qValue, 0));
    m.Offset(V3f{p[0].vValue.x + (p[1].vValue.x - p[0].vValue.x) * s,
                 p[0].vValue.y + (p[1].vValue.y - p[0].vValue.y) * s,
                 p[0].vValue.z + (p[1].vValue.z - p[0].vValue.z) * s});
    return m;
}

template <typename Object>
M Shown(Aiming<Object>& aiming, float time) {
    aiming.m_scene->SetCurrentTime(time, 1);
    M shown;
    static_cast<Object*>(aiming.m_node->m_pObject)->GetObjectMatrix(aiming.m_node, &shown);
    shown.Invert();
    M world;
    aiming.m_node->GetWorldMatrix(&world, 0);
    shown.Transform(world);
    return shown;
}

template <typename Object>
void ExpectShown(Aiming<Object>& aiming, ExportNode* record, float end) {
    for (int i = 0; i <= 100; ++i) {
        const float time = end * static_cast<float>(i) / 100;
        M exported = Exported(*aiming.m_tool.Get(), record, time);
        for (ExportNode* above = record->pParent; above != nullptr; above = above->pParent)
            exported.Transform(Exported(*aiming.m_tool.Get(), above, time));
        const M shown = Shown(aiming, time);
        EXPECT_TRUE(exported.Equal(shown, 5e-4))
            << "at " << time << ": looks along (" << -exported.m[2][0] << ", " << -exported.m[2][1] << ", "
            << -exported.m[2][2] << "), shown (" << -shown.m[2][0] << ", " << -shown.m[2][1] << ", "
            << -shown.m[2][2] << ")";
    }
}

TEST_F(TargetPassTest, ExportedTargetIsMarkedAndLinked) {
    AimingCamera camera(new kernix::CameraModel);
    camera.Move(camera.m_node, {{0, {0, 0, 0}}, {1, {1, 0, 0}}});
    const ExportNode* record = camera.Export(kCameraTargetRecords | kCameraTargetKeys);
    const ExportNode* target = camera.m_tool->FindNodeRecord(camera.m_target);
    ASSERT_NE(target, nullptr);
    EXPECT_EQ(record->pTarget, target);
    EXPECT_EQ(target->dwFlags & (NF_CAMERA_TARGET | NF_LIGHT_TARGET), NF_CAMERA_TARGET);
    EXPECT_EQ(Times(record->pPosKeys), (std::vector<float>{0, 1}));
    EXPECT_EQ(camera.m_tool->m_pRoots->m_nCount, 2);
}

TEST_F(TargetPassTest, TargetMotionGoesIntoTheKeys) {
    AimingLight light(new kernix::LightModel(vl::zr::kLightSpot));
    light.Move(light.m_node, {{5, {5, 0, 0}}, {15, {15, 0, 0}}});
    light.Move(light.m_target, {{10, {0, 0, 0}}, {20, {0, 0, 9}}});
    const ExportNode* record = light.Export(kLightTargetKeys | kKeepAllNodes);
    EXPECT_EQ(Times(record->pPosKeys), (std::vector<float>{0, 5, 10, 15, 20}));
    std::vector<float> xs;
    for (const auto* key : vl::ArrayOf<ExportPositionKey*>(record->pPosKeys)) xs.push_back(key->vValue.x);
    EXPECT_EQ(xs, (std::vector<float>{5, 5, 10, 15, 15}));
    EXPECT_EQ(record->pTarget, nullptr);
}

// The target has no node: its record is sampled from the scene, whose time does not change.
TEST_F(TargetPassTest, RecordIsMadeForAnAimWithoutNode) {
    for (const bool severalKeys : {true, false}) {
        AimingCamera camera(new kernix::CameraModel, false);
        camera.m_node->SetRestPose({{1, 2, 3}, {}, {1, 1, 1}});
        if (severalKeys) camera.Move(camera.m_node, {{2, {1, 2, 3}}, {4, {7, 2, 3}}});
        camera.m_scene->SetCurrentTime(3.5f, 1);
        const ExportNode* record = camera.Export(kCameraTargetRecords);
        EXPECT_EQ(camera.m_scene->GetCurrentTime(), 3.5f);
        const ExportNode* target = record->pTarget;
        ASSERT_NE(target, nullptr);
        EXPECT_EQ(target->dwFlags, static_cast<std::uint32_t>(NF_ADDED | NF_CAMERA_TARGET));
        EXPECT_EQ(vl::ArrayOf<ExportNode*>(camera.m_tool->m_pRoots)[1], target);
        EXPECT_EQ(target->vPosition, (V3f{1, 2, 2}));
        EXPECT_EQ(target->mLocal.m[3][2], 2);
        EXPECT_EQ(Times(target->pPosKeys), severalKeys ? (std::vector<float>{2, 4}) : std::vector<float>());
        for (const auto* key : vl::ArrayOf<ExportPositionKey*>(target->pPosKeys))
            EXPECT_EQ(key->vValue, (V3f{1, 2, 2})) << key->fTime;
    }
}

TEST_F(TargetPassTest, PointLightsAimAtNothing) {
    AimingLight light(new kernix::LightModel(vl::zr::kLightPoint), false);
    EXPECT_EQ(light.Export(kLightTargetRecords)->pTarget, nullptr);
    EXPECT_EQ(light.m_tool->m_pRoots->m_nCount, 1);
}

// A target that passes straight ahead, up close: the aim turns by 120 degrees, mostly in the middle.
TEST_F(TargetPassTest, StandingCameraFollowsItsTarget) {
    for (const std::uint32_t targets : {kCameraTargetRecords, kCameraTargetKeys}) {
        AimingCamera camera(new kernix::CameraModel);
        camera.m_node->SetRestPose({{0, 0, 1}, vl::Quaternion(vl::AngleAxis(0, 1, 0, 0.4f)), {1, 1, 1}});
        camera.Move(camera.m_target, {{0, {-3, 0, -1}}, {2, {3, 1, -1}}});
        ExpectShown(camera, camera.Export(targets | kAllChoices | kMergeKeys), 2);
    }
}

TEST_F(TargetPassTest, MovingLightFollowsAMovingTarget) {
    AimingLight light(new kernix::LightModel(vl::zr::kLightDirectional));
    light.Move(light.m_node, {{0, {4, 0, 0}}, {1, {4, 5, 0}}, {3, {-4, 5, 0}}});
    light.Move(light.m_target, {{0.5f, {0, 0, -2}}, {2, {0, 1, -6}}});
    ExpectShown(light, light.Export(kLightTargetKeys | kKeepAllNodes | kAllChoices), 3);
}

// The keys hold the orientation relative to the parent, which itself turns between two keys.
TEST_F(TargetPassTest, CameraBelowATurningNodeFollowsItsTarget) {
    AimingCamera camera(new kernix::CameraModel);
    NodeModel* parent = camera.m_node;
    camera.Turn(false);
    camera.Move(camera.m_target, {{0, {-3, 0, -4}}, {2, {3, 1, -1}}});
    auto* object = new kernix::CameraModel;
    camera.m_node = camera.m_scene->AddNode(parent, "child");
    camera.m_node->SetRestPose({{0.5f, 0, 1}, {}, {1, 1, 1}});
    camera.m_node->SetObject(Ref<vl::zr::Object3D>::Adopt(object));
    object->SetTarget(camera.m_target);
    parent->SetObject({});
    ExportNode* record = camera.Export(kCameraTargetRecords | kAllChoices | kKeepAllNodes);
    ExpectShown(camera, record, 2);
    EXPECT_LT(record->pRotKeys->m_nCount, 150);
}

// Its controller and those above it show when it moves.
TEST_F(TargetPassTest, CameraFollowsATargetThatIsNotExported) {
    AimingCamera camera(new kernix::CameraModel);
    NodeModel* mover = camera.m_scene->AddNode(nullptr, "mover");
    NodeModel* target = camera.m_scene->AddNode(mover, "target below");
    static_cast<kernix::CameraModel*>(camera.m_node->m_pObject)->SetTarget(target);
    camera.m_node->SetRestPose({{0, 0, 4}, {}, {1, 1, 1}});
    camera.Move(mover, {{0, {-3, 0, -1}}, {2, {3, 1, -1}}});
    camera.Move(target, {{0.5f, {0, 0, 0}}, {1.5f, {0, 2, 0}}});
    ExportNode* record = camera.Export(kAllChoices);
    EXPECT_EQ(camera.m_tool->FindNodeRecord(mover), nullptr);
    ExpectShown(camera, record, 2);
}

TEST_F(TargetPassTest, ATurningCameraIsNotAGroup) {
    AimingCamera camera(new kernix::CameraModel);
    camera.Move(camera.m_target, {{0, {-3, 0, -1}}, {2, {3, 1, -1}}});
    camera.m_tool->m_dwAnimFlags = kGroupKeysOnly;
    ExportNode* record = camera.Export(kAllChoices | kKeepAllNodes);
    EXPECT_EQ(record->pRotKeys, nullptr);
    EXPECT_NE(camera.m_tool->FindNodeRecord(camera.m_target)->pPosKeys, nullptr);
}

// An object position in the node and no target: the same displacement at every time, no additional keys.
TEST_F(TargetPassTest, DisplacedCameraKeepsItsKeys) {
    for (const std::uint32_t form : {std::uint32_t{kAllChoices}, std::uint32_t{0}}) {
        auto* object = new kernix::CameraModel;
        object->SetObjectPosition({0, 2, 0});
        AimingCamera camera(object, false);
        camera.m_node->SetRestPose({{0, 0, 1}, vl::Quaternion(vl::AngleAxis(1, 0, 0, 0.5f)), {1, 1, 1}});
        if (form != 0) camera.Move(camera.m_node, {{0, {1, 0, 0}}, {4, {5, 0, 0}}});
        ExportNode* record = camera.Export(form);
        EXPECT_EQ(camera.m_tool->GetKeyCount(record, 1), form != 0 ? 2 : 0);
        ExpectShown(camera, record, 4);
    }
}

// Angle-axis keys lead to the orientations of the quaternions, which are those shown, whatever form the
// host's keys have.
void ExpectStepsLeadTo(ExportNode* record) {
    vl::Quaternion shown;
    for (const auto* key : vl::ArrayOf<ExportRotationKey*>(record->pRotKeys)) {
        shown = shown * vl::Quaternion(key->aaValue);
        vl::Quaternion back = key->qValue;
        back.Invert();
        EXPECT_LT(vl::AngleAxis(shown * back).angle, 1e-5f) << "at " << key->fTime;
    }
}

TEST_F(TargetPassTest, StepsLeadToWhatIsShown) {
    enum { kNoKeys, kQuaternions, kSteps };
    for (const int form : {kNoKeys, kQuaternions, kSteps}) {
        for (const bool hasTarget : {true, false}) {
            for (const bool isZUp : {true, false}) {
                SCOPED_TRACE(testing::Message() << form << " target " << hasTarget << " Z up " << isZUp);
                auto* object = new kernix::CameraModel;
                object->SetObjectPosition({0, 2, 0});
                AimingCamera camera(object, hasTarget);
                M scene = AimingCamera::Identity();
                if (isZUp) scene.RotateX(1.5707963267948966);
                camera.m_scene->SetSceneMatrix(scene);
                camera.Move(camera.m_target, {{0, {-3, 0, -4}}, {2, {3, 1, -4}}});
                if (form != kNoKeys) camera.Turn(form == kSteps);
                camera.m_tool->m_dwAnimFlags |= kAngleAxisKeys;
                ExportNode* record = camera.Export(kCameraTargetRecords | kAllChoices);
                EXPECT_EQ(record->pRotKeys != nullptr, hasTarget || form != kNoKeys);
                ExpectStepsLeadTo(record);
                if (record->pRotKeys != nullptr) ExpectShown(camera, record, 2);
            }
        }
    }
}

// The scene matrix is folded into the keys of the record above.
TEST_F(TargetPassTest, StepsBelowAnotherNodeLeadToWhatIsShown) {
    AimingCamera camera(new kernix::CameraModel, false);
    M scene = AimingCamera::Identity();
    scene.RotateX(1.5707963267948966);
    camera.m_scene->SetSceneMatrix(scene);
    camera.m_node->SetObject({});
    camera.m_node = camera.m_scene->AddNode(camera.m_node, "child");
    auto* object = new kernix::CameraModel;
    object->SetObjectPosition({0, 2, 0});
    camera.m_node->SetObject(Ref<vl::zr::Object3D>::Adopt(object));
    camera.Turn(true);
    camera.m_tool->m_dwAnimFlags |= kAngleAxisKeys;
    ExportNode* record = camera.Export(kAllChoices | kKeepAllNodes);
    ASSERT_NE(record->pRotKeys, nullptr);
    ExpectStepsLeadTo(record);
    ExpectShown(camera, record, 2);
}

// Each object has its place and time; lights that aim at one target share the sampled times.
TEST_F(TargetPassTest, ManyFollowTheirTargetsAtOnce) {
    AimingLight light(new kernix::LightModel(vl::zr::kLightSpot));
    light.Move(light.m_target, {{0, {-3, 0, -4}}, {1, {3, 1, -4}}, {2, {0, 0, -9}}});
    std::vector<NodeModel*> others;
    for (int i = 0; i < 3; ++i) {
        others.push_back(light.m_scene->AddNode(i == 2 ? others[1] : nullptr, "other"));
        auto* object = new kernix::LightModel(vl::zr::kLightSpot);
        others[i]->SetObject(Ref<vl::zr::Object3D>::Adopt(object));
        others[i]->SetRestPose({{static_cast<float>(i), 1, 2}, {}, {1, 1, 1}});
        object->SetTarget(light.m_target);
    }
    light.Move(others[1], {{0.5f, {1, 0, 0}}, {1.75f, {1, 4, 1}}});
    light.m_scene->SetCurrentTime(1.25f, 1);
    light.Export(kLightTargetRecords | kAllChoices | kGroupSplit);
    EXPECT_EQ(light.m_scene->GetCurrentTime(), 1.25f);
    ExpectShown(light, light.m_tool->FindNodeRecord(light.m_node), 2);
    light.m_node = others[0];
    ExpectShown(light, light.m_tool->FindNodeRecord(light.m_node), 2);
}

TEST_F(TargetPassTest, CameraThatDoesNotTurnIsLeftAlone) {
    AimingCamera camera(new kernix::CameraModel);
    camera.Move(camera.m_node, {{0, {0, 0, 0}}, {1, {0, 0, 3}}});
    ExportNode* record = camera.Export(kAllChoices | kCameraTargetKeys);
    EXPECT_EQ(record->pRotKeys, nullptr);
    EXPECT_EQ(record->pScaleKeys, nullptr);
    EXPECT_EQ(Times(record->pPosKeys), (std::vector<float>{0, 1}));
}

}  // namespace
