// SPDX-License-Identifier: MIT
// Keys from the host's controllers, the scene matrix folded into them, and the pipeline as a whole.
#include "tests/module/keyframe/scene_kit.h"
#include "tests/module/test_host.h"

namespace {

using namespace record_tree;
using namespace scene_kit;
using namespace vl::tk;

class KeyExtraction : public HostTest {
protected:
    int Process(std::uint32_t exportFlags, std::uint32_t animFlags = 0) {
        m_tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        m_tool->m_pScene = m_scene.Get();
        m_tool->m_dwExportFlags = exportFlags | kKeepAllNodes;
        m_tool->m_dwAnimFlags = animFlags;
        return m_tool->Process(0);
    }

    int CountOf(const NodeModel* node, int track) {
        ExportNode* record = m_tool->FindNodeRecord(const_cast<NodeModel*>(node));
        const vl::Array* keys[] = {nullptr, record->pPosKeys, record->pRotKeys, record->pScaleKeys};
        return keys[track] != nullptr ? keys[track]->m_nCount : -1;
    }

    // The controlled transform at a time, followed by the scene matrix.
    static Matrix At(NodeModel* node, float time, const Matrix& scene) {
        Matrix m;
        node->AddTransformController()->EvaluateMatrix(time, 0, &m, 0);
        m.Transform(scene);
        return m;
    }

    Ref<SceneModel> m_scene = Ref<SceneModel>::Adopt(new SceneModel);
    Ref<ZR_TK> m_tool;
};

enum class Form { kAngleAxis, kQuaternion, kEuler };

// Keys on all three tracks at the same times, rotations in one form with steps of up to a turn and a half.
void Animate(SceneModel& scene, NodeModel* node, Form form, int count, std::mt19937& random) {
    auto* track = Track(scene, node);
    std::uniform_real_distribution<float> angle(-9, 9);
    for (int i = 0; i < count; ++i) {
        const float time = static_cast<float>(i) / 4;
        track->AddPosition(time)->m_value = RandomVector(random, -5, 5);
        auto* scale = track->AddScale(time);
        scale->m_value = RandomVector(random, 0.5f, 2);
        scale->m_params[3] = static_cast<float>(i);
        auto* rotation = track->AddRotation(time);
        if (form == Form::kAngleAxis) {
            vl::AngleAxis step(RandomRotation(random));
            step.angle = angle(random);
            rotation->SetValue(step);
        } else if (form == Form::kQuaternion) {
            rotation->SetQuaternion(RandomRotation(random));
        } else {
            rotation->SetEuler(RandomVector(random, -4, 4), 2 | 1 << 2 | 0 << 4);
        }
    }
}

// What an exporter reads at every key of the host is what the host plays there, in each pair of forms.
TEST_F(KeyExtraction, KeysReproduceTheMotion) {
    std::mt19937 random(5);
    for (const Form form : {Form::kAngleAxis, Form::kQuaternion, Form::kEuler}) {
        for (const std::uint32_t animFlags : {0u, std::uint32_t{kAngleAxisKeys}}) {
            m_scene = Ref<SceneModel>::Adopt(new SceneModel);
            NodeModel* node = AddMesh(*m_scene, nullptr);
            Animate(*m_scene, node, form, 40, random);
            ASSERT_EQ(Process(kExtractKeys, animFlags), 1);
            EXPECT_EQ(m_tool->m_dwStatus, 1u);
            EXPECT_EQ(m_tool->HasAnimation(), 1);
            const ExportNode* record = m_tool->FindNodeRecord(node);
            const vl::ArrayOf<ExportRotationKey*> rotations(record->pRotKeys);
            ASSERT_EQ(record->pPosKeys->m_nCount, 40);
            EXPECT_EQ(rotations.Count() > 40,
                      form == Form::kEuler || (form == Form::kAngleAxis && animFlags == 0));

            vl::Quaternion orientation;
            int next = 0;
            for (const ExportRotationKey* key : rotations) {
                orientation = animFlags != 0 ? orientation * vl::Quaternion(key->aaValue) : key->qValue;
                if (key->fTime != static_cast<float>(next) / 4) continue;
                const auto* position = vl::ArrayOf<ExportPositionKey*>(record->pPosKeys)[next];
                const auto* scale = vl::ArrayOf<ExportScaleKey*>(record->pScaleKeys)[next];
                EXPECT_EQ(position->fTime, key->fTime);
                EXPECT_EQ(scale->fParams[3], static_cast<float>(next));
                ExpectNear(Written(scale->vValue, orientation, position->vValue),
                           At(node, key->fTime, Identity()), 2e-4);
                ++next;
            }
            EXPECT_EQ(next, 40);
        }
    }
}

TEST_F(KeyExtraction, WhichTracksAreWorthKeys) {
    NodeModel* onePosition = AddMesh(*m_scene, nullptr);
    Track(*m_scene, onePosition)->AddPosition(1);
    NodeModel* oneRotation = AddMesh(*m_scene, nullptr);
    Track(*m_scene, oneRotation)->AddRotation(1);
    Track(*m_scene, oneRotation)->AddScale(1);
    NodeModel* twoScales = AddMesh(*m_scene, nullptr);
    Track(*m_scene, twoScales)->AddRotation(1);
    for (const float time : {1.0f, 2.0f}) Track(*m_scene, twoScales)->AddScale(time)->m_value = {1, 1, 1};
    NodeModel* group = m_scene->AddNode(nullptr, "group");
    for (const float time : {1.0f, 2.0f}) Track(*m_scene, group)->AddPosition(time);

    Process(kExtractKeys);
    const auto counts = [this](const NodeModel* node) {
        return std::vector<int>{CountOf(node, 1), CountOf(node, 2), CountOf(node, 3)};
    };
    EXPECT_EQ(counts(onePosition), (std::vector<int>{1, -1, -1}));
    EXPECT_EQ(counts(oneRotation), (std::vector<int>{-1, -1, -1}));
    EXPECT_EQ(counts(twoScales), (std::vector<int>{-1, 1, 2}));
    EXPECT_EQ(counts(group), (std::vector<int>{2, -1, -1}));

    Process(kExtractKeys, kGroupKeysOnly);
    EXPECT_EQ(counts(onePosition), (std::vector<int>{-1, -1, -1}));
    EXPECT_EQ(counts(group), (std::vector<int>{2, -1, -1}));

    Process(kExtractKeys | kIgnoreAnimation);
    EXPECT_EQ(counts(group), (std::vector<int>{-1, -1, -1}));
    EXPECT_FALSE(m_tool->m_bAnimated);
    EXPECT_EQ(m_tool->HasAnimation(), 0);

    Process(kDecomposeRest);
    EXPECT_EQ(counts(group), (std::vector<int>{-1, -1, -1}));
    EXPECT_EQ(m_tool->m_dwStatus, 0u);
}

TEST_F(KeyExtraction, ExtractingAgainReplacesTheKeys) {
    std::mt19937 random(2);
    NodeModel* node = AddMesh(*m_scene, nullptr);
    Animate(*m_scene, node, Form::kQuaternion, 3, random);
    Process(kExtractKeys);
    EXPECT_EQ(m_tool->ExtractKeys(), 1);
    EXPECT_EQ(CountOf(node, 1), 3);
    EXPECT_EQ(CountOf(node, 2), 3);
}

TEST_F(KeyExtraction, TheSceneMatrixGoesIntoTheKeysOfTheTop) {
    std::mt19937 random(4);
    Matrix up = Identity();
    up.Scale(Vector{-2, -2, -2});
    up.RotateX(1.5707963267948966);
    up.Offset(Vector{1, 0, 0});
    m_scene->SetSceneMatrix(up);
    NodeModel* top = AddMesh(*m_scene, nullptr);
    NodeModel* below = AddMesh(*m_scene, top);
    Animate(*m_scene, top, Form::kQuaternion, 9, random);
    Animate(*m_scene, below, Form::kAngleAxis, 9, random);
    Process(kExtractKeys);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "5(1)");
    for (NodeModel* node : {top, below}) {
        const ExportNode* record = m_tool->FindNodeRecord(node);
        int next = 0;
        for (const auto* key : vl::ArrayOf<ExportRotationKey*>(record->pRotKeys)) {
            if (key->fTime != static_cast<float>(next) / 4) continue;
            ExpectNear(Written(vl::ArrayOf<ExportScaleKey*>(record->pScaleKeys)[next]->vValue, key->qValue,
                               vl::ArrayOf<ExportPositionKey*>(record->pPosKeys)[next]->vValue),
                       At(node, key->fTime, node == top ? up : Identity()), 1e-4);
            ++next;
        }
        EXPECT_EQ(next, 9);
    }
}

TEST_F(KeyExtraction, ASceneMatrixThatTurnsTheScaleStaysAbove) {
    std::mt19937 random(4);
    Matrix stretch = Identity();
    stretch.Scale(Vector{1, 3, 1});
    m_scene->SetSceneMatrix(stretch);
    NodeModel* still = AddMesh(*m_scene, nullptr);
    NodeModel* moving = AddMesh(*m_scene, nullptr);
    Animate(*m_scene, moving, Form::kQuaternion, 2, random);
    Process(kExtractKeys);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "1 406(1)");
    const ExportNode* record = m_tool->FindNodeRecord(moving);
    EXPECT_EQ(record->pParent, AllRecords(*m_tool).back());
    EXPECT_EQ(record->pParent->pNode, moving);
    EXPECT_TRUE(record->pParent->mLocal.Equal(stretch, 0));
    Vector value;
    moving->AddTransformController()->Resolve(nullptr)->Positions()[0]->GetValue(&value);
    EXPECT_EQ(vl::ArrayOf<ExportPositionKey*>(record->pPosKeys)[0]->vValue, value);
    EXPECT_EQ(m_tool->FindNodeRecord(still)->pParent, nullptr);
}

TEST_F(KeyExtraction, ProcessEndsWithTheTimeRange) {
    NodeModel* node = AddMesh(*m_scene, nullptr);
    for (const float time : {10.0f, 40.0f}) Track(*m_scene, node)->AddPosition(time)->m_value = {time, 0, 0};
    m_scene->SetCurrentTime(25, 1);
    Process(kExtractKeys);
    EXPECT_EQ(m_tool->GetStartTime(), 10);
    EXPECT_EQ(m_tool->GetEndTime(), 40);
    // The rest pose is that of the current time.
    EXPECT_NEAR(m_tool->FindNodeRecord(node)->vPosition.x, 25, 1e-5);
    // It is that of the record's own transform, without its pivot.
    node->AddTransformController()->m_offset = {0, 1, 0};
    node->AddTransformController()->m_dwFlags = vl::zr::kControllerPivotGroup;
    Process(kExtractKeys);
    EXPECT_NEAR(m_tool->FindNodeRecord(node)->vPosition.y, 1, 1e-5);
    node->AddTransformController()->m_offset = {};

    Process(kExtractKeys, kReverseTime);
    EXPECT_EQ(m_tool->GetEndTime(), 30);
    EXPECT_EQ(m_tool->GetCurrentTime(), 15);
    EXPECT_EQ(vl::ArrayOf<ExportPositionKey*>(m_tool->FindNodeRecord(node)->pPosKeys)[0]->vValue.x, 40);
    EXPECT_EQ(m_tool->TimeToFrame(1), 30);
    EXPECT_TRUE(host.messages.empty());
}

}  // namespace
