// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "kernix/scene/plain_objects.h"
#include "module/cleaner/cleaner.h"
#include "tests/base/rounds.h"
#include "tests/module/cleaner/plain_operations.h"
#include "tests/module/cleaner/scenes.h"
#include "tests/module/test_host.h"

using cleaner_test::CallLog;
using cleaner_test::MakeMesh;
using kernix::NodeModel;
using kernix::SceneModel;

namespace {

using Object = vl::Ref<vl::zr::Object3D>;
using Operation = int (CCleanerImpl::*)(vl::zr::Scene*, vl::Context*, ChangeRecord*);

// Reports every call that the cleaner makes.
class AskedObject final : public vl::zr::Renderable {
public:
    explicit AskedObject(std::function<void()> onAsked) : m_onAsked(std::move(onAsked)) {}
    bool IsKindOf(int kind) override { return Answer(kind == vl::zr::kKindRenderable); }
    bool IsTypeOf(const char*) override { return Answer(false); }
    int GetType() override { return Answer(false) ? 1 : 0; }
    vl::Interface* QueryComponent(int, int) override { return nullptr; }
    int CountMaterialUses(vl::zr::Material*, int) override { return Answer(false) ? 1 : 0; }

private:
    bool Answer(bool answer) {
        m_onAsked();
        return answer;
    }
    std::function<void()> m_onAsked;
};

// Has no list of materials; answers for a single one.
class UnlistedObject final : public vl::zr::Renderable {
public:
    explicit UnlistedObject(vl::zr::Material* material) : m_material(material) {}
    bool IsKindOf(int kind) override { return kind == vl::zr::kKindRenderable; }
    int GetType() override { return vl::zr::kTypeObject; }
    vl::Interface* QueryComponent(int, int) override { return nullptr; }
    int CountMaterialUses(vl::zr::Material* material, int) override { return material == m_material ? 1 : 0; }

private:
    vl::zr::Material* m_material;
};

// A node that its host refuses to delete.
class KeptNode final : public vl::zr::Node {
public:
    vl::VarMap* GetMetadata(bool) override { return nullptr; }
    void GetName(char*, int) override {}
    void GetNameW(char16_t*, int) override {}
    void GetDescription(char*, int) override {}
    vl::zr::Controller* GetController(int) override { return nullptr; }
    void GetLocalMatrix(vl::Matrix4<double>* m, int) override { m->IdentityMatrix(); }
    void GetWorldMatrix(vl::Matrix4<double>* m, int) override { m->IdentityMatrix(); }
    void Delete(int) override {}
    vl::zr::Object3D* GetObjectOfKind(int) override { return nullptr; }
};

// The lists, the tree and the layers agree about the nodes.
void ExpectConsistent(SceneModel& scene) {
    std::set<vl::zr::Node*> listed, reached;
    for (auto* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) listed.insert(node);
    std::vector<vl::zr::Node*> open = {scene.m_pFirstNode};
    while (!open.empty()) {
        vl::zr::Node* node = open.back();
        open.pop_back();
        if (node == nullptr) continue;
        reached.insert(node);
        open.insert(open.end(), {node->m_pFirstChild, node->m_pNextSibling});
    }
    EXPECT_EQ(reached, listed);
    std::set<vl::Interface*> layers = {nullptr};
    for (unsigned i = 0; i < scene.m_pLayers->GetCount(); ++i) {
        auto* layer = static_cast<vl::zr::Layer*>(scene.m_pLayers->GetAt(i));
        for (auto* member : vl::ArrayOf<vl::zr::Node*>(layer->m_pMembers))
            EXPECT_EQ(listed.count(member), 1U);
        layers.insert(layer);
    }
    for (const auto& viewport : scene.Viewports()) EXPECT_EQ(layers.count(viewport->m_pLayer), 1U);
}

class CleanerOperations : public HostTest {
protected:
    NodeModel* AddNode(NodeModel* parent, const char* name) { return m_scene->AddNode(parent, name); }
    NodeModel* AddMesh(NodeModel* parent, const char* name, float x) {
        NodeModel* node = AddNode(parent, name);
        node->SetObject(MakeMesh(m_material, x));
        return node;
    }
    int Run(Operation operation) {
        return ((*m_cleaner).*operation)(m_scene.Get(), m_context.Get(), m_log.Get());
    }

    vl::Ref<SceneModel> m_scene = vl::Ref<SceneModel>::Adopt(new SceneModel);
    kernix::MaterialModel* m_material = m_scene->AddMaterial("material", "");
    vl::Ref<CallLog> m_log = vl::Ref<CallLog>::Adopt(new CallLog(*m_scene));
    vl::Ref<vl::Context> m_context = vl::Ref<vl::Context>::Adopt(kernix::CreateContext());
    vl::Ref<CCleanerImpl> m_cleaner = vl::Ref<CCleanerImpl>::Adopt(CreateCleaner());
};

TEST_F(CleanerOperations, MakeTheCallsOfThePlainForm) {
    const struct {
        const char* name;
        Operation operation;
        int (*plain)(vl::zr::Scene*, ChangeRecord*);
    } cases[] = {
        {"materials", &CCleanerImpl::RemoveUnusedMaterials, plain::RemoveUnusedMaterials},
        {"empty nodes", &CCleanerImpl::RemoveEmptyNodes, plain::RemoveEmptyNodes},
        {"layers", &CCleanerImpl::RemoveUnusedLayers, plain::RemoveUnusedLayers},
        {"notes", &CCleanerImpl::RemoveNotesAndEtc, plain::RemoveNotesAndEtc},
        {"repeated meshes", &CCleanerImpl::RemoveMeshDupes, plain::RemoveMeshDupes},
    };
    for (const auto& c : cases) {
        std::size_t calls = 0;
        for (unsigned seed = 0; seed < zr::test::Rounds(300); ++seed) {
            const auto expected = cleaner_test::Trace(seed, c.plain);
            const auto actual = cleaner_test::Trace(seed, [&](vl::zr::Scene* scene, ChangeRecord* record) {
                return ((*m_cleaner).*c.operation)(scene, m_context.Get(), record);
            });
            ASSERT_EQ(actual, expected) << c.name << ", scene " << seed;
            calls += static_cast<std::size_t>(std::count_if(
                actual.begin(), actual.end(), [](const auto& line) { return line.ends_with(" mode 0"); }));
        }
        EXPECT_GT(calls, zr::test::Rounds(200)) << c.name << ": the scenes give it work";
    }
}

// A break after the k-th recording: the recorded removal happens, and no further one.
TEST_F(CleanerOperations, ABreakKeepsCountAndRecordConsistent) {
    const Operation operations[] = {
        &CCleanerImpl::RemoveUnusedMaterials, &CCleanerImpl::RemoveEmptyNodes,
        &CCleanerImpl::RemoveUnusedLayers,    &CCleanerImpl::RemoveModelViews,
        &CCleanerImpl::RemoveMeshDupes,
    };
    for (const Operation operation : operations) {
        const auto run = [&](std::size_t stopAfter, std::vector<std::string>& lines) {
            const auto scene = cleaner_test::RandomScene(5);
            const std::size_t before = cleaner_test::Content(*scene).size();
            const auto log = vl::Ref<CallLog>::Adopt(new CallLog(*scene));
            int notifications = 0;
            scene->m_onNotify = [&](int, int, int) { ++notifications; };
            m_context->SetBreak(stopAfter == 0);
            log->m_onLine = [&] { m_context->SetBreak(log->m_lines.size() >= stopAfter); };
            const int count = ((*m_cleaner).*operation)(scene.Get(), m_context.Get(), log.Get());
            lines = log->m_lines;
            EXPECT_EQ(before - cleaner_test::Content(*scene).size(), static_cast<std::size_t>(count));
            EXPECT_EQ(lines.size(), static_cast<std::size_t>(count));
            EXPECT_EQ(notifications, 1);
        };
        std::vector<std::string> all;
        run(1000, all);
        ASSERT_GT(all.size(), 1U);
        for (std::size_t stop = 0; stop < all.size(); ++stop) {
            std::vector<std::string> lines;
            run(stop, lines);
            EXPECT_EQ(lines, std::vector<std::string>(all.begin(), all.begin() + static_cast<long>(stop)));
        }
    }
}

// A break at any call to the scene's objects or to the record: removals are counted and recorded, the scene
// is consistent, and cleaning it again removes the rest.
TEST_F(CleanerOperations, ABreakAtAnyCallLeavesAConsistentScene) {
    for (const Operation operation : {&CCleanerImpl::RemoveUnusedMaterials, &CCleanerImpl::RemoveEmptyNodes,
                                      &CCleanerImpl::RemoveUnusedLayers, &CCleanerImpl::RemoveModelViews,
                                      &CCleanerImpl::RemoveNotesAndEtc, &CCleanerImpl::RemoveMeshDupes}) {
        std::vector<std::string> whole;
        // The first run completes, the last one ends before its break.
        bool stopped = true;
        for (int stopAt = 0; stopped; ++stopAt) {
            const auto scene = cleaner_test::RandomScene(5);
            int calls = 0;
            const auto onCall = [&] {
                if (++calls == stopAt) m_context->SetBreak(true);
            };
            for (int i = 0; i < 3; ++i) {
                scene->AddNode(nullptr, "asked")->SetObject(Object::Adopt(new AskedObject(onCall)));
            }
            const auto log = vl::Ref<CallLog>::Adopt(new CallLog(*scene));
            log->m_onLine = onCall;
            const std::size_t before = cleaner_test::Content(*scene).size();
            const auto run = [&] {
                return static_cast<std::size_t>(
                    ((*m_cleaner).*operation)(scene.Get(), m_context.Get(), log.Get()));
            };
            const std::size_t count = run();
            EXPECT_EQ(count, log->m_lines.size());
            EXPECT_EQ(count, before - cleaner_test::Content(*scene).size());
            ExpectConsistent(*scene);
            stopped = stopAt == 0 || m_context->IsBreak();
            m_context->SetBreak(false);
            run();
            if (stopAt == 0) whole = cleaner_test::Content(*scene);
            EXPECT_EQ(cleaner_test::Content(*scene), whole) << "stopped at call " << stopAt;
        }
    }
}

TEST_F(CleanerOperations, ABreakWhileCollectingRemovesNothing) {
    m_scene->AddMaterial("unused", "");
    AddNode(nullptr, "empty");
    AddMesh(nullptr, "mesh", 0);
    AddMesh(nullptr, "repeated", 0);
    AddNode(nullptr, "note")->SetObject(Object::Adopt(kernix::CreateNote()));
    auto* stop = new AskedObject([&] { m_context->SetBreak(true); });
    AddNode(nullptr, "stop")->SetObject(Object::Adopt(stop));
    m_scene->AddLayer("layer");
    AddNode(nullptr, "target")->Subscribe(stop);
    int notifications = 0;
    m_scene->m_onNotify = [&](int, int, int) { ++notifications; };
    for (const Operation operation : {&CCleanerImpl::RemoveUnusedMaterials, &CCleanerImpl::RemoveEmptyNodes,
                                      &CCleanerImpl::RemoveNotesAndEtc, &CCleanerImpl::RemoveMeshDupes}) {
        m_context->SetBreak(false);
        EXPECT_EQ(Run(operation), 0);
        EXPECT_TRUE(m_context->IsBreak()) << "the object was asked";
    }
    EXPECT_TRUE(m_log->m_lines.empty());
    EXPECT_EQ(notifications, 4);
    m_scene->m_onNotify = nullptr;
}

TEST_F(CleanerOperations, NodesThatTheHostKeepsAreTriedOnce) {
    const auto kept = vl::Ref<KeptNode>::Adopt(new KeptNode);
    m_scene->m_pNodes->Add(vl::ToWord<vl::zr::Node*>(kept.Get()));
    EXPECT_EQ(m_cleaner->RemoveEmptyNodes(m_scene.Get(), m_context.Get(), nullptr), 1);
    m_scene->m_pNodes->RemoveAll();
}

TEST_F(CleanerOperations, MetadataIsClearedNotRecorded) {
    AddNode(nullptr, "plain");
    AddNode(nullptr, "empty")->GetMetadata(true);
    NodeModel* node = AddNode(nullptr, "full");
    node->GetMetadata(true)->Set(u"part", vl::Var(std::u16string(u"4711")));
    EXPECT_EQ(Run(&CCleanerImpl::RemoveMetadata), 2);
    EXPECT_EQ(node->GetMetadata(false)->GetCount(), 0);
    EXPECT_EQ(m_scene->m_pNodes->m_nCount, 3);
    EXPECT_TRUE(m_log->m_lines.empty());
}

TEST_F(CleanerOperations, MaterialsThatObjectsListOrAnswerForStay) {
    auto* asked = m_scene->AddMaterial("asked", "a");
    auto* listed = m_scene->AddMaterial("listed", "l");
    m_scene->AddMaterial("unused", "u");
    m_scene->AddNode(nullptr, "unlisted")->SetObject(Object::Adopt(new UnlistedObject(asked)));
    m_scene->AddNode(nullptr, "mesh")->SetObject(MakeMesh(listed, 0));
    m_scene->RemoveMaterial(m_material);
    EXPECT_EQ(Run(&CCleanerImpl::RemoveUnusedMaterials), 1);
    std::vector<vl::zr::Material*> left;
    for (auto* material : vl::ArrayOf<vl::zr::Material*>(m_scene->m_pMaterials)) left.push_back(material);
    EXPECT_EQ(left, (std::vector<vl::zr::Material*>{asked, listed}));
}

TEST_F(CleanerOperations, PortfoliosAreRemovedBeforeModelViewsFromTheLast) {
    for (const auto& [kind, name] :
         {std::pair{1, "m1"}, {2, "view"}, {6, "p1"}, {1, "m2"}, {6, "p2"}, {3, "other"}}) {
        m_scene->AddViewport(kind, name);
    }
    EXPECT_EQ(Run(&CCleanerImpl::RemoveModelViews), 4);
    EXPECT_EQ(m_log->m_lines,
              (std::vector<std::string>{"viewport p2 of 6 mode 0", "viewport p1 of 5 mode 0",
                                        "viewport m2 of 4 mode 0", "viewport m1 of 3 mode 0"}));
    EXPECT_EQ(cleaner_test::Content(*m_scene),
              (std::vector<std::string>{"material material", "viewport view", "viewport other"}));
}

// Eleven repeated meshes in a chain need eleven passes; the tenth is the last.
TEST_F(CleanerOperations, RepeatedMeshesAreRemovedFromTheLeavesInTenPasses) {
    AddMesh(nullptr, "first", 0);
    const char* names[] = {"r0", "r1", "r2", "r3", "r4", "r5", "r6", "r7", "r8", "r9", "r10"};
    NodeModel* parent = nullptr;
    for (const char* name : names) parent = AddMesh(parent, name, 0);
    NodeModel* kept = AddMesh(nullptr, "parent", 0);
    AddNode(kept, "child that stays");
    EXPECT_EQ(Run(&CCleanerImpl::RemoveMeshDupes), 10);
    EXPECT_EQ(m_log->m_lines.front(), "node r10 of 14 mode 0");
    EXPECT_EQ(cleaner_test::Content(*m_scene),
              (std::vector<std::string>{"node first", "node r0", "node parent", "node child that stays",
                                        "material material"}));
}

// A system node neither counts as the first occurrence nor is removed.
TEST_F(CleanerOperations, SystemMeshesAreIgnored) {
    AddMesh(nullptr, "system", 0)->m_dwFlags = vl::zr::kNodeSystem;
    AddMesh(nullptr, "first", 0);
    AddMesh(nullptr, "system again", 0)->m_dwFlags = vl::zr::kNodeSystem;
    EXPECT_EQ(Run(&CCleanerImpl::RemoveMeshDupes), 0);
}

TEST_F(CleanerOperations, MissingListsAndSceneDoNothing) {
    int notifications = 0;
    m_scene->m_onNotify = [&](int, int, int) { ++notifications; };
    AddNode(nullptr, "note")->SetObject(Object::Adopt(kernix::CreateNote()));
    m_scene->AddMaterial("only without nodes", "");
    m_scene->m_pDefaultMaterial = m_material;
    m_scene->m_pNodes = nullptr;
    EXPECT_EQ(Run(&CCleanerImpl::RemoveUnusedMaterials), 1) << "no node uses it";
    EXPECT_EQ(Run(&CCleanerImpl::RemoveMetadata), 0);
    EXPECT_EQ(Run(&CCleanerImpl::RemoveNotesAndEtc), 0);
    EXPECT_EQ(Run(&CCleanerImpl::RemoveMeshDupes), 0);
    EXPECT_EQ(notifications, 4);
    m_scene->m_pMaterials = nullptr;
    m_scene->m_pAnimations = nullptr;
    for (const Operation operation :
         {&CCleanerImpl::RemoveUnusedMaterials, &CCleanerImpl::RemoveEmptyNodes,
          &CCleanerImpl::RemoveUnusedLayers, &CCleanerImpl::RemoveUnusedAnimations}) {
        EXPECT_EQ(Run(operation), 0);
    }
    EXPECT_EQ(notifications, 4) << "an early return does not notify";
    m_scene->m_onNotify = nullptr;
    for (const Operation operation :
         {&CCleanerImpl::RemoveUnusedAnimations, &CCleanerImpl::RemoveUnusedMaterials,
          &CCleanerImpl::RemoveEmptyNodes, &CCleanerImpl::RemoveUnusedLayers, &CCleanerImpl::RemoveMetadata,
          &CCleanerImpl::RemoveModelViews, &CCleanerImpl::RemoveNotesAndEtc, &CCleanerImpl::RemoveMeshDupes,
          &CCleanerImpl::MergeEqualMaterials}) {
        EXPECT_EQ(((*m_cleaner).*operation)(nullptr, nullptr, nullptr), 0);
    }
}

}  // namespace
