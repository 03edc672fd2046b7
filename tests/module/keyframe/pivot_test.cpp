// SPDX-License-Identifier: MIT
// The group, static and animated pivot passes.
#include "tests/module/keyframe/scene_kit.h"
#include "tests/module/test_host.h"

namespace {

using namespace record_tree;
using namespace scene_kit;
using namespace vl::tk;

class Pivots : public HostTest {
protected:
    int Build(std::uint32_t flags, int pivotMode = 0) {
        m_tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        m_tool->m_pScene = m_scene.Get();
        m_tool->m_dwExportFlags = flags;
        m_tool->m_nPivotMode = pivotMode;
        m_tool->m_bAnimated = m_scene->IsAnimated() != 0;
        return m_tool->BuildHierarchy();
    }

    ExportNode* Record(const NodeModel* node) {
        for (ExportNode* record : AllRecords(*m_tool)) {
            if (record->pSourceNode == node) return record;
        }
        return nullptr;
    }

    // A mesh that moves along x, with a pivot.
    NodeModel* AddMover(NodeModel* parent, const Vector& pivot, bool movesGroup = false) {
        NodeModel* node = AddMesh(*m_scene, parent);
        node->SetRestPose({{1, 2, 3}, vl::Quaternion(vl::AngleAxis(0, 0, 1, 0.5f)), {1, 1, 1}});
        auto* track = Track(*m_scene, node);
        track->AddPosition(0)->m_value = {1, 2, 3};
        track->AddPosition(1)->m_value = {4, 2, 3};
        auto* controller = node->AddTransformController();
        controller->m_offset = pivot;
        if (movesGroup) controller->m_dwFlags = vl::zr::kControllerPivotGroup;
        return node;
    }

    static Matrix World(NodeModel* node, int isStatic) {
        Matrix m;
        node->GetWorldMatrix(&m, isStatic);
        return m;
    }

    Ref<SceneModel> m_scene = Ref<SceneModel>::Adopt(new SceneModel);
    Ref<ZR_TK> m_tool;
};

// The content of a static pivot is a group if it has children, or if the record was one.
TEST_F(Pivots, StaticPivotsKeepGroups) {
    const auto contentFlags = [this](bool hasChild, std::uint32_t flags) {
        m_tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        Matrix sheared = Identity();
        sheared.Rotate(vl::AngleAxis(0, 0, 1, 0.5F));
        sheared.Scale(Vector{1, 2, 1});
        sheared.Rotate(vl::AngleAxis(0, 0, 1, 0.7F));
        ExportNode* record = Add(*m_tool, nullptr, flags, sheared);
        if (hasChild) Add(*m_tool, record, NF_GEOMETRY);
        return m_tool->StaticPivot(record)->dwFlags;
    };
    EXPECT_EQ(contentFlags(false, NF_GEOMETRY), NF_GEOMETRY);
    EXPECT_EQ(contentFlags(true, NF_GEOMETRY), NF_GEOMETRY | NF_GROUP);
    EXPECT_EQ(contentFlags(false, NF_GROUP), NF_GROUP);
    EXPECT_EQ(contentFlags(true, NF_GROUP), NF_GROUP);
}

TEST_F(Pivots, GroupsMoveTheirObjectsToAChild) {
    NodeModel* mesh = AddMesh(*m_scene, nullptr);
    AddMesh(*m_scene, mesh);
    NodeModel* bone = m_scene->AddNode(nullptr, "bone");
    bone->SetObject(Own(kernix::CreateBone()));
    AddMesh(*m_scene, bone);
    NodeModel* light = AddLight(*m_scene, nullptr);  // splits although lights are not exported
    AddMesh(*m_scene, light);
    NodeModel* hollow = m_scene->AddNode(nullptr, "hollow");
    hollow->SetObject(Mesh(0, 0, false));
    AddMesh(*m_scene, hollow);
    Build(kGroupSplit);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "6(9 1) 4(1) 6(8 1) 4(1)");
    const ExportNode* split = Record(mesh)->pSplit;
    EXPECT_EQ(split, vl::ArrayOf<ExportNode*>(Record(mesh)->pChildren)[0]);
    EXPECT_EQ(split->pNode, mesh);
    EXPECT_EQ(split->pSourceNode, nullptr);
}

// Whatever passes run, each object stays where its node places it, and every record except a camera's can be
// written as scale, rotation and translation.
TEST_F(Pivots, StaticPassesKeepEveryObjectInPlace) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        m_scene = Ref<SceneModel>::Adopt(new SceneModel);
        m_scene->SetSceneMatrix(RandomMatrix(random));
        std::vector<NodeModel*> nodes;
        for (unsigned i = 1 + random() % 12; i > 0; --i) {
            NodeModel* parent = nodes.empty() || random() % 4 == 0 ? nullptr : nodes[random() % nodes.size()];
            nodes.push_back(random() % 3 != 0 ? AddMesh(*m_scene, parent) : m_scene->AddNode(parent, ""));
            if (random() % 3 != 0) nodes.back()->SetRestMatrix(RandomMatrix(random));
        }
        const std::uint32_t splits[] = {0, kGroupSplit, kGeometrySplit};
        Build(kKeepAllNodes | kStaticPivot | splits[random() % 3] | (random() % 2 != 0 ? kGroupingRoot : 0u));
        ExpectSoundTree(*m_tool);
        std::vector<int> objects(nodes.size());
        for (ExportNode* record : AllRecords(*m_tool)) {
            m_tool->DecomposeRest(record, nullptr);
            if ((record->dwFlags & NF_ROOT) == 0) {
                ExpectNear(Written(record->vScale, record->qRotation, record->vPosition), record->mLocal,
                           5e-3);
            }
            if ((record->dwFlags & NF_GEOMETRY) == 0) continue;
            auto* node = static_cast<NodeModel*>(record->pNode);
            ++objects[static_cast<std::size_t>(std::find(nodes.begin(), nodes.end(), node) - nodes.begin())];
            const double size = std::abs(World(node, 1).m[3][0]) + std::abs(World(node, 1).m[3][1]) + 10;
            ExpectNear(Placed(record), World(node, 1), 1e-5 * size);
        }
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            ASSERT_EQ(objects[i], nodes[i]->m_pObject != nullptr ? 1 : 0) << "seed " << seed;
        }
        if (HasFailure()) FAIL() << "seed " << seed;
    }
}

TEST_F(Pivots, AStaticPivotCarriesTheScale) {
    NodeModel* node = AddMesh(*m_scene, nullptr);
    AddMesh(*m_scene, node);
    Matrix turned = Identity();
    turned.RotateZ(0.6);
    turned.Scale(Vector{3, 1, 1});
    node->SetRestMatrix(turned);
    Build(kStaticPivot);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "26(5(1))");
    const ExportNode* pivot = Record(node);
    const ExportNode* content = vl::ArrayOf<ExportNode*>(pivot->pChildren)[0];
    EXPECT_EQ(pivot->pNode, nullptr);
    EXPECT_EQ(content->pNode, node);
    EXPECT_EQ(content->pSplit, pivot);
    EXPECT_NEAR(vl::AngleAxis(content->qRotation).angle, 0.6, 1e-5);
    ExpectNear(Placed(pivot), pivot->mWorld, 1e-6);
    ExpectNear(Placed(content), content->mWorld, 1e-6);

    Build(kStaticPivot | kNoStaticPivot);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "5(1)");
    EXPECT_NEAR(Record(node)->vScale.x, 3, 1e-5);
    node->SetObject(Own(new kernix::CameraModel));
    Build(kStaticPivot | kExportCameras);
    EXPECT_EQ(Record(node)->dwFlags, 5u);
}

TEST_F(Pivots, AnObjectsPivotGoesToItsSplit) {
    NodeModel* node = AddMover(nullptr, {0, 1, 0});
    NodeModel* child = AddMesh(*m_scene, node);
    Build(kDecomposeRest);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "6(1 19)");
    const ExportNode* record = Record(node);
    EXPECT_EQ(record->pController, node->GetController(vl::zr::kControllerTransform));
    EXPECT_EQ(record->pSplit->vPosition, (Vector{0, -1, 0}));
    EXPECT_EQ(record->pSplit->qRotation, vl::Quaternion());
    ExpectNear(record->pSplit->mLocal, Moved(0, -1, 0), 0);
    ExpectNear(Record(child)->mLocal, Identity(), 1e-9);
    EXPECT_EQ(Record(child)->pController, nullptr);

    Build(kGroupSplit);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "6(19 1)");
}

TEST_F(Pivots, AGroupsPivotGoesBetween) {
    NodeModel* node = AddMover(nullptr, {0, 1, 0}, true);
    NodeModel* child = AddMesh(*m_scene, node);
    Build(kDecomposeRest);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "6(15(1))");
    const ExportNode* pivot = Record(child)->pParent;
    EXPECT_EQ(pivot->pNode, node);
    EXPECT_EQ(pivot->pSourceNode, nullptr);
    EXPECT_EQ(pivot->vPosition, (Vector{0, -1, 0}));
    ExpectNear(Placed(pivot), World(node, 0), 1e-9);
    ExpectNear(Placed(Record(child)), World(child, 0), 1e-9);
}

TEST_F(Pivots, ExportersMayWritePivotsThemselves) {
    NodeModel* one = AddMover(nullptr, {0, 1, 0});
    NodeModel* group = AddMover(nullptr, {0, 2, 0}, true);
    Build(kDecomposeRest, 1);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "1 6(11)");
    EXPECT_EQ(Record(one)->vPivot, (Vector{0, 1, 0}));
    Matrix moved = World(one, 0);
    moved.m[3][1] -= 1;
    ExpectNear(Record(one)->mWorld, moved, 1e-12);
    ExpectNear(Record(one)->mLocal, World(one, 0), 1e-12);

    Build(kDecomposeRest, 2);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "6(19) 1");
    EXPECT_EQ(Record(group)->vPivot, (Vector{0, 2, 0}));
    ExpectNear(Record(group)->mWorld, World(group, 0), 1e-12);

    // Not if the record has given its object to a child.
    AddMesh(*m_scene, one);
    Build(kGroupSplit, 1);
    EXPECT_EQ(Record(one)->pSplit->vPosition, (Vector{0, -1, 0}));
    EXPECT_EQ(Record(one)->vPivot, Vector());
}

TEST_F(Pivots, ObjectOffsets) {
    AddMover(nullptr, {});  // the scene is animated
    NodeModel* node = AddMesh(*m_scene, nullptr);
    node->SetRestPose({{5, 0, 0}, {}, {1, 1, 1}});
    Matrix offset = Identity();
    offset.Scale(Vector{2, -2, 2});
    offset.Offset(Vector{0, 0, 1});
    node->SetObjectOffset(offset);
    Build(kDecomposeRest);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "1 6(19)");
    const ExportNode* split = Record(node)->pSplit;
    EXPECT_EQ(Record(node)->pController, nullptr);
    ExpectNear(split->mLocal, offset, 0);
    ExpectNear(Written(split->vScale, split->qRotation, split->vPosition), offset, 1e-6);
    Matrix shown = offset;
    shown.Transform(World(node, 0));
    ExpectNear(split->mWorld, shown, 1e-12);

    // Below the tolerance there is no offset.
    node->SetObjectOffset(Moved(0, 1e-7, 0));
    Build(kDecomposeRest);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "1 1");
}

TEST_F(Pivots, ControllersWithoutKeysCountForTheirOffset) {
    AddMover(nullptr, {});
    NodeModel* still = AddMesh(*m_scene, nullptr);
    still->AddTransformController()->m_offset = {1, 0, 0};
    NodeModel* plain = AddMesh(*m_scene, nullptr);
    plain->AddTransformController();
    Build(kDecomposeRest);
    EXPECT_EQ(Record(still)->pController, nullptr);
    Build(kOffsetControllers);
    EXPECT_EQ(Record(still)->pController, still->GetController(vl::zr::kControllerTransform));
    EXPECT_EQ(Record(plain)->pController, nullptr);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "1 6(19) 1");
}

}  // namespace
