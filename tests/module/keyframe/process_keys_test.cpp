// SPDX-License-Identifier: MIT
// The keys of another animation on existing records, compared with a separate tool for each animation.
#include "module/keyframe/keyframe_tool.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/module/keyframe/scene_kit.h"
#include "tests/module/test_host.h"

namespace {

using namespace scene_kit;
using namespace vl::tk;

template <typename Key>
void ExpectSameKeys(vl::Array* actual, vl::Array* expected) {
    const vl::ArrayOf<const Key*> a(actual), b(expected);
    ASSERT_EQ(a.Count(), b.Count());
    for (int i = 0; i < a.Count(); ++i) EXPECT_EQ(std::memcmp(a[i], b[i], sizeof(Key)), 0) << i;
}

class ProcessKeysTest : public testing::Test {
protected:
    ProcessKeysTest() { g_pHost = &m_host; }
    ~ProcessKeysTest() override { g_pHost = nullptr; }

    kernix::NodeModel* AddMoved(kernix::NodeModel* parent, bool movesGroup) {
        kernix::NodeModel* node = AddMesh(*m_scene, parent);
        node->SetRestPose({RandomVector(m_random, -2, 2), RandomRotation(m_random), {1, 2, 1}});
        kernix::TransformControllerModel* controller = node->AddTransformController();
        if (movesGroup) {
            controller->m_offset = {1, 2, 3};
            controller->m_dwFlags |= vl::zr::kControllerPivotGroup;
        }
        // Each animation moves it differently, or not at all.
        for (std::size_t i = 0; i < 3; ++i) {
            auto* track = controller->AddTransformTrack(m_scene->AllAnimations()[i].Get());
            for (int key = 0; key < 4; ++key) {
                const auto time = static_cast<float>(key * (i + 1));
                if (i != 1) track->AddRotation(time)->SetQuaternion(RandomRotation(m_random));
                if (i == 0) track->AddPosition(time)->SetValue(RandomVector(m_random, -3, 3));
                if (i == 1 && !movesGroup && key > 1) track->AddScale(time)->SetValue({1, 1, 1});
            }
        }
        return node;
    }

    vl::Ref<ZR_TK> NewTool(std::uint32_t exportFlags, std::uint32_t animFlags, int pivotMode = 0) {
        const auto tool = vl::Ref<ZR_TK>::Adopt(new ZR_TK);
        tool->m_pScene = m_scene.Get();
        tool->m_dwExportFlags = exportFlags | kExtractKeys | kKeepAllNodes;
        tool->m_dwAnimFlags = animFlags;
        tool->m_nPivotMode = pivotMode;
        EXPECT_EQ(tool->Process(0), 1);
        return tool;
    }

    TestHost m_host;
    vl::Ref<kernix::SceneModel> m_scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
    std::mt19937 m_random{3};
};

TEST_F(ProcessKeysTest, EqualThoseOfASeparateTool) {
    for (const char16_t* name : {u"a", u"b", u"c"}) m_scene->AddAnimation(name);
    kernix::NodeModel* top = AddMoved(nullptr, false);
    AddMoved(AddMoved(AddMesh(*m_scene, top), true), false);
    const struct {
        std::uint32_t exportFlags, animFlags;
        int pivotMode;
    } kOptions[] = {
        {0, 0, 0},
        {kMergeKeys, kResampleKeys, 0},
        {kFlipAxes | kGroupingRoot, kResampleKeys | kReverseTime, 2},
        {kGroupSplit | kFlipAxes, kSetLength | kResampleKeys | kAngleAxisKeys, 0},
    };
    for (const bool turned : {false, true}) {
        Matrix scene = record_tree::Identity();
        if (turned) scene.RotateX(1);
        m_scene->SetSceneMatrix(scene);
        for (const auto& [exportFlags, animFlags, pivotMode] : kOptions) {
            m_scene->SetActiveAnimation(m_scene->AllAnimations()[0].Get());
            const auto standing = NewTool(exportFlags, animFlags, pivotMode);
            for (const std::size_t next : {1, 2, 0}) {
                SCOPED_TRACE(testing::Message() << turned << " " << exportFlags << " " << next);
                m_scene->SetActiveAnimation(m_scene->AllAnimations()[next].Get());
                ASSERT_EQ(standing->ProcessKeys(), 1);
                const auto own = NewTool(exportFlags, animFlags, pivotMode);
                EXPECT_EQ(standing->GetEndTime(), own->GetEndTime());
                EXPECT_EQ(standing->MapTime(1), own->MapTime(1));
                const auto records = AllRecords(*standing), expected = AllRecords(*own);
                ASSERT_EQ(records.size(), expected.size());
                for (std::size_t i = 0; i < records.size(); ++i) {
                    EXPECT_TRUE(records[i]->mLocal.Equal(expected[i]->mLocal, 1e-12)) << i;
                    if (records[i]->pController != nullptr) {
                        EXPECT_EQ(records[i]->qRotation, expected[i]->qRotation) << i;
                    }
                    ExpectSameKeys<ExportPositionKey>(records[i]->pPosKeys, expected[i]->pPosKeys);
                    ExpectSameKeys<ExportScaleKey>(records[i]->pScaleKeys, expected[i]->pScaleKeys);
                    ExpectSameKeys<ExportRotationKey>(records[i]->pRotKeys, expected[i]->pRotKeys);
                }
            }
        }
    }
}

TEST_F(ProcessKeysTest, OneTrackThatMovesGivesTheOthersItsTimes) {
    kernix::AnimationModel* animation = m_scene->AddAnimation(u"a");
    kernix::TransformTrack* tracks[3];
    for (auto*& track : tracks)
        track = AddMesh(*m_scene, nullptr)->AddTransformController()->AddTransformTrack(animation);
    for (const float time : {0.0F, 1.0F, 3.0F}) {
        tracks[0]->AddPosition(time)->SetValue({time, 0, 0});
        tracks[1]->AddRotation(time)->SetQuaternion(RandomRotation(m_random));
        tracks[2]->AddScale(time)->SetValue({1, 1 + time, 1});
    }
    m_scene->SetActiveAnimation(animation);
    const auto tool = NewTool(0, kResampleKeys);
    for (ExportNode* record : AllRecords(*tool)) {
        for (const int kind : {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale})
            EXPECT_EQ(tool->GetKeyCount(record, kind), 3) << kind;
    }
}

TEST_F(ProcessKeysTest, ChangeNothingWhereTheRecordsDependOnTheAnimation) {
    for (const char16_t* name : {u"a", u"b", u"c"}) m_scene->AddAnimation(name);
    kernix::NodeModel* target = AddMoved(nullptr, false);
    AddCamera(*m_scene, nullptr, target);
    const auto tool = NewTool(kExportCameras | kAllChoices, 0);
    const int keys = AllRecords(*tool)[0]->pRotKeys->m_nCount;
    m_scene->SetActiveAnimation(m_scene->AllAnimations()[1].Get());
    EXPECT_EQ(tool->ProcessKeys(), 0);
    EXPECT_EQ(AllRecords(*tool)[0]->pRotKeys->m_nCount, keys);

    const auto fresh = vl::Ref<ZR_TK>::Adopt(new ZR_TK);
    EXPECT_EQ(fresh->ProcessKeys(), 0);
}

// A turn below a scene matrix that stretches one axis needs a record above.
TEST_F(ProcessKeysTest, ChangeNothingWhereTheSceneMatrixCannotBeFolded) {
    kernix::AnimationModel* moves = m_scene->AddAnimation(u"moves");
    kernix::AnimationModel* turns = m_scene->AddAnimation(u"turns");
    kernix::TransformControllerModel* controller = AddMesh(*m_scene, nullptr)->AddTransformController();
    controller->AddTransformTrack(moves)->AddPosition(0)->SetValue({1, 2, 3});
    controller->AddTransformTrack(turns)->AddRotation(0)->SetQuaternion(
        vl::Quaternion(vl::AngleAxis(1, 0, 0, 0.5F)));
    Matrix stretched;
    stretched.SetScale({1, 1, 2});
    m_scene->SetSceneMatrix(stretched);
    m_scene->SetActiveAnimation(moves);
    const auto tool = NewTool(0, 0);
    m_scene->SetActiveAnimation(turns);
    EXPECT_EQ(tool->ProcessKeys(), 0);
    m_scene->SetActiveAnimation(moves);
    EXPECT_EQ(tool->ProcessKeys(), 1);
}

}  // namespace
