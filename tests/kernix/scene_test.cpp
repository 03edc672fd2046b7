// SPDX-License-Identifier: MIT
#include "kernix/scene/scene_model.h"

#include <gtest/gtest.h>

#include <random>

#include "host/generator.h"
#include "kernix/scene/change_record_model.h"
#include "kernix/scene/plain_objects.h"

namespace {

using kernix::NodeModel;
using kernix::SceneModel;
using vl::Ref;
using M = vl::Matrix4<double>;
using V3f = vl::Vector3<float>;

Ref<SceneModel> NewScene() {
    return Ref<SceneModel>::Adopt(new SceneModel);
}

M World(NodeModel* node, int isStatic) {
    M m;
    node->GetWorldMatrix(&m, isStatic);
    return m;
}

std::vector<std::string> Names(SceneModel& scene) {
    std::vector<std::string> names;
    for (auto* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) {
        names.push_back(static_cast<NodeModel*>(node)->GetNameText());
    }
    return names;
}

TEST(Scene, WorldFollowsParentsTimeAndSceneMatrix) {
    const auto scene = NewScene();
    NodeModel* parent = scene->AddNode(nullptr, "parent");
    NodeModel* child = scene->AddNode(parent, "child");
    parent->SetRestPose({{1, 0, 0}, {}, {2, 2, 2}});
    child->SetRestPose({{0, 1, 0}, {}, {1, 1, 1}});
    auto* track = child->AddTransformController()->AddTransformTrack(scene->AddAnimation(u"move"));
    track->AddPosition(0)->m_value = {0, 1, 0};
    track->AddPosition(2)->m_value = {0, 5, 0};
    scene->SetCurrentTime(1, 1);
    EXPECT_DOUBLE_EQ(World(child, 1).m[3][1], 2);
    EXPECT_DOUBLE_EQ(World(child, 0).m[3][1], 6);
    M up;
    up.IdentityMatrix();
    up.RotateX(1.5707963267948966);
    scene->SetSceneMatrix(up);
    EXPECT_NEAR(World(child, 0).m[3][2], 6, 1e-9);
    scene->SetActiveAnimation(nullptr);
    EXPECT_NEAR(World(child, 0).m[3][2], 2, 1e-9);
    M stored;
    scene->GetParam(vl::zr::kParamSceneMatrix, vl::ToWord(&stored), ZR_VALUE_MATRIX);
    EXPECT_TRUE(stored.Equal(up, 0));
}

TEST(Scene, TheLastRestTransformWins) {
    const auto scene = NewScene();
    NodeModel* node = scene->AddNode(nullptr, "node");
    M sheared;
    sheared.IdentityMatrix();
    sheared.m[0][1] = 0.5;
    sheared.m[3][0] = 7;
    node->SetRestMatrix(sheared);
    EXPECT_TRUE(World(node, 1).Equal(sheared, 0));
    node->SetRestPose({{1, 2, 3}, {}, {1, 1, 1}});
    M moved;
    moved.IdentityMatrix();
    moved.Offset(V3f{1, 2, 3});
    EXPECT_TRUE(World(node, 1).Equal(moved, 1e-12));
}

TEST(Scene, DeletesSubtreesAndLeavesNoReference) {
    const auto scene = NewScene();
    NodeModel* a = scene->AddNode(nullptr, "a");
    NodeModel* b = scene->AddNode(nullptr, "b");
    NodeModel* b1 = scene->AddNode(b, "b1");
    scene->AddNode(b, "b2");
    NodeModel* c = scene->AddNode(nullptr, "c");
    a->SetObject(Ref<vl::zr::Object3D>::Adopt(new kernix::CameraModel));
    static_cast<kernix::CameraModel*>(a->m_pObject)->SetTarget(b1);
    kernix::LayerModel* layer = scene->AddLayer("layer");
    layer->AddMember(b1);
    layer->AddMember(c);
    const auto subscribers = Ref<vl::InterfaceArray>::Adopt(b1->GetSubscribers("zr_camera"));
    EXPECT_EQ(subscribers->GetCount(), 1u);

    b->Delete(0);
    b1->Delete(0);  // already deleted
    scene->Notify(vl::zr::kNotifyRemoved, 1, 2);
    EXPECT_EQ(Names(*scene), (std::vector<std::string>{"a", "c"}));
    EXPECT_EQ(a->m_pNextSibling, c);
    EXPECT_EQ(static_cast<kernix::CameraModel*>(a->m_pObject)->GetTargetNode(), nullptr);
    EXPECT_EQ(layer->m_pMembers->m_nCount, 1);
    EXPECT_EQ(b1->GetNameText(), "b1");
}

TEST(Scene, KeepsItsNodeListInOrderUnderManyDeletions) {
    const auto scene = NewScene();
    std::vector<NodeModel*> nodes;
    for (int i = 0; i < 3000; ++i) nodes.push_back(scene->AddNode(nullptr, std::to_string(i)));
    std::mt19937 engine(5);
    std::vector<NodeModel*> order = nodes;
    std::shuffle(order.begin(), order.end(), engine);
    for (std::size_t i = 0; i < 2500; ++i) {
        order[i]->Delete(0);
        if (i % 100 == 0) nodes.push_back(scene->AddNode(nullptr, "added " + std::to_string(i)));
    }
    std::vector<std::string> expected;
    for (NodeModel* node : nodes) {
        if (!node->IsDeleted()) expected.push_back(node->GetNameText());
    }
    EXPECT_EQ(Names(*scene), expected);
}

TEST(Scene, AimedObjectsLookAtTheirTargetAtEveryTime) {
    const auto scene = NewScene();
    NodeModel* eye = scene->AddNode(nullptr, "eye");
    NodeModel* target = scene->AddNode(nullptr, "target");
    eye->SetRestPose({{3, 1, 2}, vl::Quaternion(vl::AngleAxis(0, 1, 0, 0.7f)), {1, 1, 1}});
    auto* track = target->AddTransformController()->AddTransformTrack(scene->AddAnimation(u"move"));
    track->AddPosition(0)->m_value = {0, 0, 0};
    track->AddPosition(1)->m_value = {9, 4, -5};
    auto* camera = new kernix::CameraModel;
    eye->SetObject(Ref<vl::zr::Object3D>::Adopt(camera));
    camera->SetTarget(target);
    NodeModel* lamp = scene->AddNode(nullptr, "lamp");
    lamp->SetRestPose(eye->GetRestPose());
    auto* light = new kernix::LightModel(vl::zr::kLightSpot);
    lamp->SetObject(Ref<vl::zr::Object3D>::Adopt(light));
    light->SetTarget(target);
    for (const float time : {0.0f, 0.4f, 1.0f}) {
        scene->SetCurrentTime(time, 1);
        M shown, lit;
        camera->GetObjectMatrix(eye, &shown);
        light->GetObjectMatrix(lamp, &lit);
        EXPECT_TRUE(lit.Equal(shown, 1e-12));
        shown.Invert();
        shown.Transform(World(eye, 0));
        const auto place = shown.PointTransform(vl::Vector3<double>{0, 0, 0});
        const auto ahead = shown.VectorTransform(vl::Vector3<double>{0, 0, -1});
        const M goal = World(target, 0);
        const double distance =
            std::hypot(goal.m[3][0] - place.x, goal.m[3][1] - place.y, goal.m[3][2] - place.z);
        EXPECT_NEAR(place.x + ahead.x * distance, goal.m[3][0], 1e-5);
        EXPECT_NEAR(place.y + ahead.y * distance, goal.m[3][1], 1e-5);
        EXPECT_NEAR(place.z + ahead.z * distance, goal.m[3][2], 1e-5);
        V3f atRest;
        camera->GetTargetPosition(&atRest);
        const V3f world = World(eye, 1).PointTransform(atRest);
        EXPECT_NEAR(world.x, goal.m[3][0], 1e-5);
    }
}

TEST(Track, RotationFormsDescribeTheSameMotion) {
    const auto scene = NewScene();
    NodeModel* node = scene->AddNode(nullptr, "n");
    auto* controller = node->AddTransformController();
    auto* track = controller->AddTransformTrack(scene->AddAnimation(u"turn"));
    std::mt19937 engine(9);
    std::uniform_real_distribution<float> number(-1, 1);
    for (int i = 0; i < 8; ++i) {
        track->AddRotation(static_cast<float>(i))
            ->SetQuaternion(vl::Quaternion(V3f{number(engine), number(engine), number(engine)}));
    }
    const auto sample = [&](float time) {
        M m;
        controller->EvaluateMatrix(time, 0, &m, 0);
        return m;
    };
    std::vector<M> before;
    for (float t = 0; t <= 7; t += 0.125f) before.push_back(sample(t));
    controller->NormalizeRotationKeys(track, 0);
    std::size_t i = 0;
    for (float t = 0; t <= 7; t += 0.125f) EXPECT_TRUE(sample(t).Equal(before[i++], 1e-6)) << t;
    controller->RetimeTrack(-1, 7, track);
    i = before.size();
    for (float t = 0; t <= 7; t += 0.125f) EXPECT_TRUE(sample(t).Equal(before[--i], 1e-6)) << t;

    // A relative step beyond half a turn is made in full.
    auto* long_ = node->AddTransformController()->AddTransformTrack(scene->AddAnimation(u"long"));
    scene->SetActiveAnimation(static_cast<kernix::AnimationModel*>(long_->GetAnimation()));
    long_->AddRotation(0)->SetValue({0, 0, 1, 0});
    long_->AddRotation(1)->SetValue({0, 0, 1, 4});
    EXPECT_NEAR(vl::AngleAxis(sample(0.5f)).angle, 2, 1e-6);
}

TEST(Track, TransferCarriesEverything) {
    const auto scene = NewScene();
    auto* controller = scene->AddNode(nullptr, "n")->AddTransformController();
    auto* source = controller->AddTransformTrack(scene->AddAnimation(u"a"));
    auto* position = source->AddPosition(0.5f);
    position->m_value = {1, 2, 3};
    position->m_params[0] = vl::zr::kInterpolationCubic;
    position->m_tangents = std::make_unique<kernix::Tangents>();
    position->m_tangents->out[2] = 7;
    source->AddScale(1)->m_value = {2, 2, 2};
    source->AddRotation(1)->SetEuler({0.1f, 0.2f, 0.3f}, 0x24);
    source->AddRotation(2)->SetValue({1, 0, 0, 0.5f});
    auto* copy = controller->AddTransformTrack(scene->AddAnimation(u"b"));
    const auto stream = Ref<vl::Stream>::Adopt(vl::Stream::CreateInMemory());
    controller->SaveTrack(stream.Get(), source, 0);
    stream->Seek(0, 0);
    controller->LoadTrack(stream.Get(), 0, copy);
    ASSERT_EQ(copy->GetKeyCount(), 4);
    EXPECT_EQ(copy->Positions()[0]->m_tangents->out[2], 7);
    V3f angles;
    int order = 0;
    copy->Rotations()[0]->GetEuler(&angles, &order);
    EXPECT_EQ(order, 0x24);
    EXPECT_EQ(angles, (V3f{0.1f, 0.2f, 0.3f}));

    // Cut short anywhere, it loads as an empty track.
    const std::size_t size = stream->GetSize();
    std::vector<char> bytes(size);
    stream->Seek(0, 0);
    stream->Read(bytes.data(), size);
    for (std::size_t length = 0; length < size; ++length) {
        const auto cut = Ref<vl::Stream>::Adopt(vl::Stream::CreateInMemory());
        cut->Write(bytes.data(), length);
        cut->Seek(0, 0);
        controller->LoadTrack(cut.Get(), 0, copy);
        EXPECT_EQ(copy->GetKeyCount(), 0) << length;
    }
}

TEST(Scene, MergesEqualMaterialsEverywhere) {
    const auto scene = NewScene();
    auto* red = scene->AddMaterial("red", "r");
    auto* blue = scene->AddMaterial("blue", "b");
    auto* red2 = scene->AddMaterial("red again", "r");
    auto geometry = std::make_shared<kernix::MeshGeometry>();
    geometry->positions = std::make_shared<kernix::Positions>(9, 0.0F);
    geometry->faces = kernix::MakeFaces({0, 1, 2, 2, 1, 0});
    const auto attributes = std::make_shared<kernix::FaceAttributes>();
    *attributes = {red2->GetId(), blue->GetId()};
    NodeModel* node = scene->AddNode(nullptr, "n");
    auto* mesh = new kernix::MeshModel(geometry, attributes,
                                       std::make_shared<kernix::MaterialUses>(std::vector{red2, blue}), 0);
    node->SetObject(Ref<vl::zr::Object3D>::Adopt(mesh));
    EXPECT_EQ(scene->MergeEqualMaterials(), 1);
    EXPECT_EQ(mesh->CountMaterialUses(red, 1), 1);
    EXPECT_EQ(mesh->m_pFaceAttributes[0], red->GetId());
    EXPECT_EQ(scene->MergedInto(red2), red);
    EXPECT_EQ(scene->m_pMaterials->m_nCount, 2);
    EXPECT_EQ(scene->MergeEqualMaterials(), 0);
}

TEST(Scene, DeletingAnAnimationRemovesItsTracksAndReferences) {
    const auto scene = NewScene();
    auto* a = scene->AddAnimation(u"a");
    auto* b = scene->AddAnimation(u"b");
    auto* controller = scene->AddNode(nullptr, "n")->AddTransformController();
    controller->AddTransformTrack(a)->AddPosition(1);
    controller->AddTransformTrack(b)->AddPosition(3);
    auto* view = scene->AddViewport(vl::zr::kViewportView, "view");
    view->AddAnimationReference(a);
    view->AddAnimationReference(b);
    EXPECT_EQ(scene->GetEndTime(nullptr), 1);
    EXPECT_TRUE(scene->DeleteAnimation(a));
    EXPECT_FALSE(scene->DeleteAnimation(a));
    EXPECT_EQ(controller->GetTrack(a), nullptr);
    EXPECT_EQ(controller->m_pTracks->m_nCount, 1);
    EXPECT_EQ(view->m_pAnimationReferences->m_nCount, 1);
    EXPECT_EQ(scene->GetActiveAnimation(), b);
    EXPECT_EQ(scene->GetStartTime(nullptr), 3);
}

TEST(Scene, WalksDeepChainsWithoutRecursion) {
    const auto scene = NewScene();
    NodeModel* node = nullptr;
    for (int i = 0; i < 100000; ++i) {
        node = scene->AddNode(node, "");
        node->SetRestPose({{1, 0, 0}, {}, {1, 1, 1}});
    }
    EXPECT_DOUBLE_EQ(World(node, 1).m[3][0], 100000);
    scene->m_pFirstNode->Delete(0);
    EXPECT_EQ(scene->m_pNodes->m_nCount, 0);
}

TEST(Scene, SelectorsAndGenerators) {
    const auto scene = NewScene();
    NodeModel* group = scene->AddNode(nullptr, "choice");
    NodeModel* first = scene->AddNode(group, "first");
    NodeModel* second = scene->AddNode(group, "second");
    group->SetObject(Ref<vl::zr::Object3D>::Adopt(kernix::CreateSelector()));
    scene->SetSelector(group, second);
    auto* selector = static_cast<vl::zr::Selector*>(second->m_pOwner);
    second->Delete(0);
    EXPECT_EQ(selector->m_pSelectedChild, nullptr);
    EXPECT_EQ(selector->m_pFirstChild, first);
    first->AddGenerator("zr_detail_markup");
    EXPECT_TRUE(vl::zr::Generator::IsPresent(first, "zr_detail_markup"));
    EXPECT_FALSE(vl::zr::Generator::IsPresent(group, "zr_detail_markup"));
}

}  // namespace
