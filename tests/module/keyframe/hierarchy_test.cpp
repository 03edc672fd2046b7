// SPDX-License-Identifier: MIT
#include <cstring>

#include "tests/module/keyframe/scene_kit.h"
#include "tests/module/test_host.h"

namespace {

using namespace record_tree;
using namespace scene_kit;
using namespace vl::tk;

class Hierarchy : public HostTest {
protected:
    int Build(std::uint32_t flags) {
        m_tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        m_tool->m_pScene = m_scene.Get();
        m_tool->m_dwExportFlags = flags;
        return m_tool->BuildHierarchy();
    }

    std::uint32_t Flags(const NodeModel* node) { return FlagsOf(*m_tool, node); }

    Ref<SceneModel> m_scene = Ref<SceneModel>::Adopt(new SceneModel);
    Ref<ZR_TK> m_tool;
};

TEST_F(Hierarchy, NothingToExport) {
    m_scene->AddNode(nullptr, "empty");
    EXPECT_EQ(Build(kExportLights), 0);
    EXPECT_TRUE(host.messages.empty());
    EXPECT_EQ(m_tool->m_pRoots, nullptr);
    EXPECT_EQ(m_tool->m_pAllNodes, nullptr);

    EXPECT_EQ(Build(0), 0);
    ASSERT_EQ(host.messages.size(), 1u);
    EXPECT_NE(host.messages[0].find("Invalid parameters"), std::string::npos);
    ZR_TK withoutScene;
    withoutScene.m_dwExportFlags = kKeepAllNodes;
    EXPECT_EQ(withoutScene.Process(0), 0);
}

TEST_F(Hierarchy, ObjectsAndOptions) {
    const auto add = [this](Ref<vl::zr::Object3D> object) {
        NodeModel* node = m_scene->AddNode(nullptr, "");
        node->SetObject(std::move(object));
        return node;
    };
    const NodeModel* mesh = add(Mesh(1));
    const NodeModel* lines = add(Mesh(0, 1));
    const NodeModel* points = add(Mesh(0));
    const NodeModel* hollow = add(Mesh(0, 0, false));
    const NodeModel* note = add(Own(kernix::CreateNote()));
    const NodeModel* bone = add(Own(kernix::CreateBone()));
    const NodeModel* dummy = add(Own(kernix::CreateDummy()));
    const NodeModel* light = AddLight(*m_scene, nullptr);
    const NodeModel* camera = AddCamera(*m_scene, nullptr);
    NodeModel* skeleton = AddMesh(*m_scene, nullptr);
    skeleton->m_dwFlags = vl::zr::kNodeSkeleton;

    const auto flags = [&](std::uint32_t options) {
        Build(options);
        std::vector<std::uint32_t> all;
        for (const auto* node : {mesh, lines, points, hollow, note, bone, dummy, light, camera,
                                 static_cast<const NodeModel*>(skeleton)}) {
            all.push_back(Flags(node));
        }
        return all;
    };
    using All = std::vector<std::uint32_t>;
    EXPECT_EQ(flags(kDecomposeRest), (All{1, 1, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(flags(kNoSecondary), (All{1, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(flags(kAllRenderables), (All{1, 1, 1, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(flags(kExportNotes | kExportLights), (All{1, 1, 0, 0, 1, 0, 0, 1, 0, 1}));
    EXPECT_EQ(flags(kExportBones | kSkeletonOnly), (All{1, 1, 0, 0, 0, 4, 0, 0, 0, 4}));
    EXPECT_EQ(flags(kExportCameras), (All{1, 1, 0, 0, 0, 0, 0, 0, 1, 1}));
    EXPECT_EQ(flags(kExportSystemCamera), (All{1, 1, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(flags(kKeepAllNodes), (All{1, 1, 4, 4, 4, 4, 4, 4, 4, 1}));
    EXPECT_EQ(flags(kSkeletonOnly), (All{1, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(Hierarchy, SystemAndGeneratedNodesAreDroppedWithTheirSubtrees) {
    NodeModel* systemLight = AddLight(*m_scene, nullptr);
    systemLight->m_dwFlags = vl::zr::kNodeSystem;
    const NodeModel* below = AddMesh(*m_scene, systemLight);
    NodeModel* markup = AddMesh(*m_scene, nullptr);
    markup->AddGenerator("zr_detail_markup");
    const NodeModel* belowMarkup = AddMesh(*m_scene, markup);
    NodeModel* systemCamera = AddCamera(*m_scene, nullptr);
    systemCamera->m_dwFlags = vl::zr::kNodeSystem;
    auto* camera = static_cast<vl::zr::Camera*>(systemCamera->m_pObject);

    Build(kKeepAllNodes | kExportLights | kExportCameras | kExportSystemCamera);
    EXPECT_EQ(Flags(systemLight) | Flags(below) | Flags(markup) | Flags(belowMarkup), 0u);
    EXPECT_EQ(Flags(systemCamera), 1u);
    m_scene->m_pCurrentCamera = camera;
    Build(kExportCameras | kExportSystemCamera);
    EXPECT_EQ(Flags(systemCamera), 1u);
    Build(kKeepAllNodes | kExportSystemCamera);
    EXPECT_EQ(Flags(systemCamera), 0u);
    const NodeModel* other = AddCamera(*m_scene, nullptr);
    m_scene->m_pCurrentCamera = static_cast<vl::zr::Camera*>(other->m_pObject);
    Build(kExportCameras | kExportSystemCamera);
    EXPECT_EQ(Flags(systemCamera), 0u);
    m_scene->m_pCurrentCamera = nullptr;
}

TEST_F(Hierarchy, SelectorsShowOneChild) {
    NodeModel* parent = m_scene->AddNode(nullptr, "choice");
    const NodeModel* first = AddMesh(*m_scene, parent);
    NodeModel* second = AddMesh(*m_scene, parent);
    parent->SetObject(Own(kernix::CreateSelector()));
    m_scene->SetSelector(parent, second);
    Build(kDecomposeRest);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "4(1)");
    EXPECT_EQ(Flags(second), 1u);
    m_scene->SetSelector(parent, nullptr);
    Build(kDecomposeRest);
    EXPECT_EQ(Flags(first), 1u);
    EXPECT_EQ(Flags(second), 0u);
    Build(kAllChoices);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "4(1 1)");
}

TEST_F(Hierarchy, GroupSplitSeparatesObjectsFromChildren) {
    const auto addParent = [this](Ref<vl::zr::Object3D> object) {
        NodeModel* node = m_scene->AddNode(nullptr, "");
        node->SetObject(std::move(object));
        AddMesh(*m_scene, node);
        return node;
    };
    NodeModel* plain[] = {addParent(nullptr), addParent(Mesh(0, 0, false)),
                          addParent(Own(kernix::CreateBone()))};
    NodeModel* shown[] = {addParent(Mesh(1)), addParent(Own(kernix::CreateDummy()))};
    NodeModel* alone = AddMesh(*m_scene, nullptr);
    Build(kKeepAllNodes | kGroupSplit);
    for (NodeModel* node : plain) {
        const ExportNode* record = m_tool->FindNodeRecord(node);
        EXPECT_EQ(record->pSplit, nullptr);
        EXPECT_EQ(record->pChildren->m_nCount, 1);
    }
    for (NodeModel* node : shown) {
        const ExportNode* record = m_tool->FindNodeRecord(node);
        ASSERT_EQ(record->pChildren->m_nCount, 2);
        EXPECT_EQ(vl::ArrayOf<ExportNode*>(record->pChildren)[0], record->pSplit);
        EXPECT_EQ(record->pSplit->pNode, node);
    }
    EXPECT_EQ(m_tool->FindNodeRecord(alone)->pSplit, nullptr);
}

TEST_F(Hierarchy, TargetsGetRecordsOfTheirOwn) {
    NodeModel* ofCamera = m_scene->AddNode(nullptr, "");
    NodeModel* ofLight = m_scene->AddNode(nullptr, "");
    NodeModel* ofBoth = m_scene->AddNode(nullptr, "");
    NodeModel* mesh = AddMesh(*m_scene, nullptr);
    for (NodeModel* target : {ofCamera, ofBoth, mesh}) AddCamera(*m_scene, nullptr, target);
    for (NodeModel* target : {ofLight, ofBoth}) AddLight(*m_scene, nullptr, target);
    const auto flags = [&](std::uint32_t options) {
        Build(options);
        return std::vector<std::uint32_t>{Flags(ofCamera), Flags(ofLight), Flags(ofBoth), Flags(mesh)};
    };
    using All = std::vector<std::uint32_t>;
    EXPECT_EQ(flags(kCameraTargetRecords | kLightTargetRecords), (All{0x104, 0x204, 0x304, 1}));
    EXPECT_EQ(flags(kCameraTargetKeys | kLightTargetKeys), (All{0x104, 0, 0x104, 1}));
    EXPECT_EQ(flags(kLightTargetRecords | kKeepAllNodes), (All{4, 0x204, 0x204, 1}));
}

// The literal rule, which judges each subtree again for each node above it.
std::uint32_t FilterPlainly(NodeModel* node, std::uint32_t options) {
    if ((node->m_dwFlags & vl::zr::kNodeSystem) != 0) return 0;
    std::uint32_t flags = 0;
    if (node->GetObjectOfKind(vl::zr::kKindRenderable) != nullptr) flags = NF_GEOMETRY;
    if (node->GetObjectOfKind(vl::zr::kKindBone) != nullptr && (options & kExportBones) != 0)
        flags = NF_GROUP;
    for (auto* child = node->m_pFirstChild; child != nullptr; child = child->m_pNextSibling) {
        if (FilterPlainly(static_cast<NodeModel*>(child), options) != 0) flags |= NF_GROUP;
    }
    return flags == 0 && (options & kKeepAllNodes) != 0 ? std::uint32_t{NF_GROUP} : flags;
}

void ListPlainly(vl::zr::Node* first, std::uint32_t options,
                 std::vector<std::pair<vl::zr::Node*, std::uint32_t>>& out) {
    for (auto* node = first; node != nullptr; node = node->m_pNextSibling) {
        const std::uint32_t flags = FilterPlainly(static_cast<NodeModel*>(node), options);
        if (flags == 0) continue;
        out.emplace_back(node, flags);
        ListPlainly(node->m_pFirstChild, options, out);
    }
}

TEST_F(Hierarchy, JudgesEachNodeOnceWithTheSameResult) {
    for (unsigned seed = 0; seed < 1000; ++seed) {
        std::mt19937 random(seed);
        m_scene = Ref<SceneModel>::Adopt(new SceneModel);
        std::vector<NodeModel*> nodes;
        for (unsigned i = random() % 40; i > 0; --i) {
            NodeModel* parent = nodes.empty() || random() % 6 == 0 ? nullptr : nodes[random() % nodes.size()];
            nodes.push_back(m_scene->AddNode(parent, ""));
            const unsigned kind = random() % 8;
            if (kind == 0) nodes.back()->SetObject(Mesh(1));
            if (kind == 1) nodes.back()->SetObject(Own(kernix::CreateBone()));
            if (kind == 2) nodes.back()->m_dwFlags = vl::zr::kNodeSystem;
        }
        const std::uint32_t options = kDecomposeRest | (random() % 2 != 0 ? kExportBones : 0u) |
                                      (random() % 3 == 0 ? kKeepAllNodes : 0u);
        std::vector<std::pair<vl::zr::Node*, std::uint32_t>> plain;
        ListPlainly(m_scene->m_pFirstNode, options, plain);
        EXPECT_EQ(Build(options), plain.empty() ? 0 : 1);
        std::vector<std::pair<vl::zr::Node*, std::uint32_t>> built;
        for (const ExportNode* record : AllRecords(*m_tool))
            built.emplace_back(record->pSourceNode, record->dwFlags);
        ASSERT_EQ(built, plain) << "seed " << seed;
        if (!plain.empty()) ExpectSoundTree(*m_tool);
    }
}

TEST_F(Hierarchy, ASceneWithoutAMatrixIsNotTransformed) {
    class SilentScene final : public SceneModel {
    public:
        vl::Word GetParam(int, vl::Word value, zr_VALUETYPE) const override { return value; }
    };
    m_scene = Ref<SceneModel>::Adopt(new SilentScene);
    AddMesh(*m_scene, nullptr);
    ASSERT_EQ(Build(kKeepAllNodes), 1);
    EXPECT_TRUE(m_tool->m_mScene.IsIdentity(0));
}

TEST_F(Hierarchy, GroupingRootCarriesTheSceneMatrix) {
    Matrix up = Identity();
    up.RotateX(1.5707963267948966);
    up.Scale(Vector{10, 10, 10});
    m_scene->SetSceneMatrix(up);
    NodeModel* first = AddMesh(*m_scene, nullptr, "a");
    first->SetRestPose({{1, 2, 3}, {}, {1, 1, 1}});
    Build(kGroupingRoot);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "1");
    ExpectNear(AllRecords(*m_tool)[0]->mLocal, AllRecords(*m_tool)[0]->mWorld, 0);
    const NodeModel* second = AddMesh(*m_scene, nullptr, "b");
    Build(kGroupingRoot);
    EXPECT_EQ(Shape(m_tool->m_pRoots), "86(1 1)");
    const auto records = AllRecords(*m_tool);
    EXPECT_EQ(records[1]->pNode, first);
    EXPECT_EQ(records[2]->pNode, second);
    EXPECT_TRUE(records[0]->mLocal.Equal(up, 0));
    ExpectNear(records[1]->mLocal, Moved(1, 2, 3), 1e-9);
    ExpectSoundTree(*m_tool);
}

TEST_F(Hierarchy, RestPoseMirrorsByItsScale) {
    NodeModel* node = AddMesh(*m_scene, nullptr);
    node->SetRestPose({{1, 2, 3}, vl::Quaternion(vl::AngleAxis(0, 0, 1, 0.5f)), {-2, -3, -4}});
    Build(kDecomposeRest);
    ExportNode* record = AllRecords(*m_tool)[0];
    m_tool->DecomposeRest(record, nullptr);
    EXPECT_LT(record->vScale.x, 0);
    ExpectNear(Written(record->vScale, record->qRotation, record->vPosition), record->mLocal, 1e-6);
}

TEST_F(Hierarchy, AddedNodes) {
    NodeModel* node = AddMesh(*m_scene, nullptr);
    node->SetRestPose({{1, 2, 3}, {}, {1, 1, 1}});
    Build(kDecomposeRest);
    ExportNode* parent = AllRecords(*m_tool)[0];
    const ExportNode* unnamed = m_tool->AddNode(parent, "name");
    EXPECT_EQ(unnamed->szName, nullptr);
    EXPECT_EQ(unnamed->pParent, parent);
    EXPECT_TRUE(unnamed->mWorld.Equal(parent->mWorld, 0));
    EXPECT_TRUE(unnamed->mLocal.IsIdentity(0));

    m_tool->m_dwExportFlags |= kAssignNames;
    m_tool->m_nMaxNameLength = 6;
    EXPECT_STREQ(m_tool->AddNode(parent, "a long name")->szName, "a long");
    EXPECT_STREQ(m_tool->AddNode(parent, nullptr)->szName, "");
    m_tool->m_dwNameFlags = kNamesWide;
    const ExportNode* loose = m_tool->AddNode(nullptr, "a long name");
    EXPECT_EQ(std::u16string(loose->wszName), u"a long");
    EXPECT_EQ(loose->pParent, nullptr);
    EXPECT_EQ(AllRecords(*m_tool).back(), loose);
    EXPECT_EQ(AllRecords(*m_tool).size(), 5u);
    // A nonsensical length does not allocate a buffer of that size.
    m_tool->m_nMaxNameLength = -5;
    EXPECT_EQ(std::u16string(m_tool->AddNode(parent, "a long name")->wszName), u"a lo");
}

TEST_F(Hierarchy, FindsTheFirstRecordOfANode) {
    NodeModel* node = AddMesh(*m_scene, nullptr);
    NodeModel* later = AddMesh(*m_scene, nullptr);
    Build(kDecomposeRest);
    EXPECT_EQ(m_tool->FindNodeRecord(node), AllRecords(*m_tool)[0]);
    EXPECT_EQ(m_tool->FindNodeRecord(m_scene->AddNode(nullptr, "new")), nullptr);
    m_tool->AddNode(nullptr, nullptr)->pNode = node;
    EXPECT_EQ(m_tool->FindNodeRecord(node), AllRecords(*m_tool)[0]);
    EXPECT_EQ(m_tool->FindNodeRecord(later), AllRecords(*m_tool)[1]);
}

TEST_F(Hierarchy, AChainOfAnyDepth) {
    NodeModel* node = nullptr;
    for (int i = 0; i < 100000; ++i) {
        node = m_scene->AddNode(node, "");
        node->SetObject(Own(kernix::CreateBone()));
    }
    node->SetObject(Mesh(1));
    Build(kGeometrySplit | kStaticPivot | kGroupingRoot);
    EXPECT_EQ(AllRecords(*m_tool).size(), 100000u);
    EXPECT_EQ(AllRecords(*m_tool).back()->pSourceNode, node);
}

}  // namespace
