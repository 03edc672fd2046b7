// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/anim_manager.h"
#include "host/cad_text.h"
#include "host/cleaner.h"
#include "host/params.h"
#include "host/serializer.h"
#include "host/xml.h"
#include "kernix/scene/change_record_model.h"
#include "kernix/scene/plain_objects.h"
#include "module/frame/entry.h"
#include "tests/module/cleaner/scenes.h"
#include "tests/module/failing_memory.h"
#include "tests/module/test_host.h"

// Small runs of every operation of the extensions, in which each allocation fails in turn. Whatever fails,
// nothing throws, crashes or leaks, and the operation returns what the contract states.
namespace {

using kernix::NodeModel;
using kernix::SceneModel;
using vl::Ref;

class OutOfMemory : public HostTest {
protected:
    void SetUp() override { host.StartModule(nullptr, ZRDLLFunc); }

    template <typename T>
    Ref<T> Create(const char* typeName) {
        auto extension = Ref<vl::Extension>::Adopt(host.CreateExtension(typeName));
        return Ref<T>::Share(dynamic_cast<T*>(extension.Get()));
    }

    // Prepares cases of which `extension` holds an extension of the module.
    template <typename Case, typename T>
    auto With(Ref<T> Case::*extension, const char* typeName) {
        return [=, this] {
            auto each = std::make_unique<Case>();
            (*each).*extension = Create<T>(typeName);
            return each;
        };
    }

    // A fresh case for each allocation that fails: prepare makes what run works on and check examines.
    // failed: whether an allocation failed. The last run, in which none fails, ends the steps.
    template <typename Case>
    static void Step(const std::function<std::unique_ptr<Case>()>& prepare,
                     const std::function<void(Case&)>& run,
                     const std::function<void(Case&, bool failed)>& check) {
        run(*prepare());  // makes what is created once and kept
        long n = 0;
        for (bool failed = true; failed;) {
            const long before = failing_memory::LiveBlocks();
            {
                const auto each = prepare();
                failing_memory::FailAt(++n);
                EXPECT_NO_THROW(run(*each)) << "allocation " << n;
                failed = failing_memory::Stop();
                check(*each, failed);
            }
            ASSERT_EQ(failing_memory::LiveBlocks(), before)
                << "live blocks after allocation " << n << " failed";
            ASSERT_FALSE(testing::Test::HasFailure()) << "allocation " << n;
        }
    }
};

// ---- A scene in which everything moves.

void AddKeys(NodeModel* node, kernix::AnimationModel* animation) {
    kernix::TransformTrack* track = node->AddTransformController()->AddTransformTrack(animation);
    for (int i = 0; i < 4; ++i) {
        const auto x = static_cast<float>(i);
        track->AddPosition(x)->SetValue({x * x, 1, 2});
        track->AddScale(x * 2)->SetValue({1, 1 + x, 1});
        track->AddRotation(x * 3)->SetValue(vl::AngleAxis{0, 1, 0, 2.5F});
    }
}

// Its records serve either animation: nothing in it is aimed.
Ref<SceneModel> MovingMeshes() {
    auto scene = Ref<SceneModel>::Adopt(new SceneModel);
    kernix::AnimationModel* first = scene->AddAnimation(u"first");
    kernix::AnimationModel* second = scene->AddAnimation(u"second");
    kernix::MaterialModel* material = scene->AddMaterial("material", "red");
    scene->AddMaterial(std::nullopt, "blue");
    NodeModel* root = scene->AddNode(nullptr, "a name that no short text holds");
    NodeModel* mesh = scene->AddNode(root, "mesh");
    mesh->SetObject(cleaner_test::MakeMesh(material, 0));
    NodeModel* below = scene->AddNode(mesh, "mesh");
    below->SetObject(cleaner_test::MakeMesh(material, 1));
    for (NodeModel* node : {root, mesh, below}) {
        AddKeys(node, first);
        AddKeys(node, second);
    }
    scene->AddViewport(vl::zr::kViewportView, "a view with a longer name")->AddAnimationReference(first);
    return scene;
}

Ref<SceneModel> MovingScene() {
    Ref<SceneModel> scene = MovingMeshes();
    NodeModel* target = scene->AddNode(nullptr, "target");
    NodeModel* camera = scene->AddNode(nullptr, "camera");
    auto* aimed = new kernix::CameraModel;
    camera->SetObject(Ref<vl::zr::Object3D>::Adopt(aimed));
    aimed->SetTarget(target);
    NodeModel* light = scene->AddNode(nullptr, "light");
    auto* spot = new kernix::LightModel(vl::zr::kLightSpot);
    light->SetObject(Ref<vl::zr::Object3D>::Adopt(spot));
    spot->SetTarget(target);
    for (NodeModel* node : {target, camera, light})
        for (const auto& animation : scene->AllAnimations()) AddKeys(node, animation.Get());
    vl::Matrix4<double> matrix;
    matrix.SetScale({2, 3, 4});
    scene->SetSceneMatrix(matrix);
    return scene;
}

struct ExportCase {
    Ref<SceneModel> scene = MovingScene();
    Ref<vl::tk::Serializer> tool;
    int result = -1;
};

TEST_F(OutOfMemory, ProcessDropsItsRecords) {
    constexpr std::uint32_t kNames[] = {vl::tk::kNamesUnique, vl::tk::kNamesUnique | vl::tk::kNamesWide};
    for (const std::uint32_t names : kNames) {
        Step<ExportCase>(
            [&] {
                auto each = std::make_unique<ExportCase>();
                each->tool = Create<vl::tk::Serializer>(kTypeKeyframeTool);
                vl::tk::Serializer& tool = *each->tool;
                tool.m_pScene = each->scene.Get();
                tool.m_dwExportFlags =
                    vl::tk::kExportLights | vl::tk::kExportCameras | vl::tk::kKeepAllNodes |
                    vl::tk::kGroupingRoot | vl::tk::kGeometrySplit | vl::tk::kDecomposeRest |
                    vl::tk::kCameraTargetKeys | vl::tk::kLightTargetRecords | vl::tk::kMergeKeys |
                    vl::tk::kAllChoices | vl::tk::kAssignNames | vl::tk::kExtractKeys;
                tool.m_dwNameFlags = names;
                tool.m_dwAnimFlags = vl::tk::kResampleKeys | vl::tk::kAngleAxisKeys | vl::tk::kReverseTime;
                tool.m_nMaxMaterialNameLength = 20;
                return each;
            },
            [](ExportCase& each) { each.result = each.tool->Process(0); },
            [](ExportCase& each, bool failed) {
                if (!failed) {
                    EXPECT_EQ(each.result, 1);
                }
                EXPECT_EQ(each.tool->m_pRoots != nullptr, each.result == 1);
                EXPECT_EQ(each.tool->m_pAllNodes != nullptr, each.result == 1);
                EXPECT_EQ(each.scene->GetCurrentTime(), 0) << "the scene's time stays";
            });
    }
}

TEST_F(OutOfMemory, KeysOfAnotherAnimationDropTheRecords) {
    struct Case {
        Ref<SceneModel> scene = MovingMeshes();
        Ref<vl::tk::Serializer> tool;
        int result = -1;
    };
    Step<Case>(
        [&] {
            auto each = std::make_unique<Case>();
            each->tool = Create<vl::tk::Serializer>(kTypeKeyframeTool);
            vl::tk::Serializer& tool = *each->tool;
            tool.m_pScene = each->scene.Get();
            tool.m_dwExportFlags = vl::tk::kKeepAllNodes | vl::tk::kGroupingRoot | vl::tk::kDecomposeRest |
                                   vl::tk::kMergeKeys | vl::tk::kFlipAxes | vl::tk::kExtractKeys;
            tool.m_dwAnimFlags = vl::tk::kResampleKeys | vl::tk::kAngleAxisKeys | vl::tk::kReverseTime;
            tool.Process(0);
            each->scene->SetActiveAnimation(each->scene->AllAnimations()[1].Get());
            return each;
        },
        [](Case& each) { each.result = each.tool->ProcessKeys(); },
        [](Case& each, bool failed) {
            if (!failed) {
                EXPECT_EQ(each.result, 1);
            }
            EXPECT_EQ(each.tool->m_pRoots != nullptr, each.result == 1);
            EXPECT_EQ(each.tool->m_pAllNodes != nullptr, each.result == 1);
        });
}

TEST_F(OutOfMemory, QueriesAndNewNodesLeaveTheRecordsAsTheyWere) {
    struct Case : ExportCase {
        ExportNode* parent = nullptr;
        ExportNode* added = nullptr;
        Ref<vl::Array> times;
        int count = 0;
    };
    Step<Case>(
        [&] {
            auto each = std::make_unique<Case>();
            each->tool = Create<vl::tk::Serializer>(kTypeKeyframeTool);
            each->tool->m_pScene = each->scene.Get();
            each->tool->m_dwExportFlags = vl::tk::kKeepAllNodes | vl::tk::kAssignNames | vl::tk::kExtractKeys;
            each->tool->m_dwNameFlags = vl::tk::kNamesUnique;
            each->tool->Process(0);
            each->parent = vl::ArrayOf<ExportNode*>(each->tool->m_pAllNodes)[0];
            each->count = each->tool->m_pAllNodes->m_nCount;
            return each;
        },
        [](Case& each) {
            each.added = each.tool->AddNode(each.parent, "mesh");
            each.times = Ref<vl::Array>::Adopt(each.tool->GetKeyTimes(each.parent, 1));
        },
        [](Case& each, bool failed) {
            EXPECT_TRUE(failed || (each.added != nullptr && each.times));
            EXPECT_EQ(each.tool->m_pAllNodes->m_nCount, each.count + (each.added != nullptr ? 1 : 0));
            for (const ExportNode* child : vl::ArrayOf<ExportNode*>(each.parent->pChildren)) {
                EXPECT_NE(child->szName, nullptr);
            }
            if (each.times) {
                EXPECT_EQ(each.times->m_nCount, 10);
            }
        });
}

struct AnimationCase {
    Ref<SceneModel> scene = MovingScene();
    Ref<kernix::ChangeRecordModel> record =
        Ref<kernix::ChangeRecordModel>::Adopt(new kernix::ChangeRecordModel);
    Ref<zr_ANIM_MANAGER> manager;
    vl::zr::Animation* merged = nullptr;
    bool answer = false;
};

TEST_F(OutOfMemory, AMergeThatFailsLeavesNoAnimation) {
    Step<AnimationCase>(
        With(&AnimationCase::manager, kTypeAnimManager),
        [](AnimationCase& each) {
            each.merged =
                each.manager->MergeAnimations(each.record.Get(), each.scene->m_pAnimations, true, 7);
        },
        [](AnimationCase& each, bool failed) {
            EXPECT_TRUE(failed || (each.merged != nullptr && each.scene->m_pAnimations->m_nCount == 1));
            const int left = each.scene->m_pAnimations->m_nCount;
            if (each.merged == nullptr) {
                EXPECT_EQ(left, 2);
            } else {
                EXPECT_GE(left, 1);
                EXPECT_GE(each.scene->m_pAnimations->IndexOf(vl::ToWord(each.merged)), 0);
            }
        });
}

TEST_F(OutOfMemory, AnimationsInUseCountAsUsed) {
    Step<AnimationCase>(
        With(&AnimationCase::manager, kTypeAnimManager),
        [](AnimationCase& each) {
            char16_t names[64] = {};
            each.answer = each.manager->IsAnimationUsed(each.scene->AllAnimations()[0].Get(), names, 64);
        },
        [](AnimationCase& each, bool) { EXPECT_TRUE(each.answer); });
}

// ---- The cleaner.

struct CleanCase {
    Ref<SceneModel> scene = cleaner_test::RandomScene(7);
    Ref<kernix::ChangeRecordModel> record =
        Ref<kernix::ChangeRecordModel>::Adopt(new kernix::ChangeRecordModel);
    Ref<zr_CLEANER> cleaner;
    std::vector<std::string> before = cleaner_test::Content(*scene);
    int count = -1;
    int notified = 0;
};

bool LayersHoldOnlyNodesOfTheScene(SceneModel& scene) {
    const vl::ArrayOf<vl::zr::Node*> nodes(scene.m_pNodes);
    for (unsigned i = 0; i < scene.m_pLayers->GetCount(); ++i) {
        auto* layer = static_cast<vl::zr::Layer*>(scene.m_pLayers->GetAt(i));
        for (vl::zr::Node* member : vl::ArrayOf<vl::zr::Node*>(layer->m_pMembers)) {
            if (nodes.IndexOf(member) < 0) return false;
        }
    }
    return true;
}

using Operation = int (zr_CLEANER::*)(vl::zr::Scene*, vl::Context*, ChangeRecord*);

TEST_F(OutOfMemory, RemovalsAreCounted) {
    for (const Operation operation :
         {&zr_CLEANER::RemoveUnusedAnimations, &zr_CLEANER::RemoveUnusedMaterials,
          &zr_CLEANER::RemoveEmptyNodes, &zr_CLEANER::RemoveUnusedLayers, &zr_CLEANER::RemoveModelViews,
          &zr_CLEANER::RemoveNotesAndEtc, &zr_CLEANER::RemoveMeshDupes}) {
        Step<CleanCase>(
            [&] {
                auto each = std::make_unique<CleanCase>();
                each->cleaner = Create<zr_CLEANER>(kTypeCleaner);
                each->scene->m_onNotify = [each = each.get()](int, int, int) { ++each->notified; };
                return each;
            },
            [&](CleanCase& each) {
                each.count = ((*each.cleaner).*operation)(each.scene.Get(), nullptr, each.record.Get());
            },
            [&](CleanCase& each, bool) {
                EXPECT_GE(each.count, 0);
                if (operation == &zr_CLEANER::RemoveUnusedAnimations) return;
                EXPECT_EQ(each.notified, 1);
                EXPECT_EQ(each.count == 0, cleaner_test::Content(*each.scene) == each.before);
                EXPECT_TRUE(LayersHoldOnlyNodesOfTheScene(*each.scene));
            });
    }
}

TEST_F(OutOfMemory, CleanSceneRunsOrDoesNothing) {
    Step<CleanCase>(
        With(&CleanCase::cleaner, kTypeCleaner),
        [](CleanCase& each) {
            const auto params = Ref<vl::Params>::Adopt(vl::Params::Create());
            if (!params) return;
            try {
                params->Add(vl::ToWord<vl::zr::Scene*>(each.scene.Get()), ZR_VALUE_SCENE);
            } catch (const std::bad_alloc&) {
                return;  // a host's object may throw it
            }
            each.count = each.cleaner->Invoke(1, params.Get(), nullptr);
            vl::xml::Element description;
            EXPECT_EQ(each.cleaner->QueryInfo(&description, 0), vl::kCannotOpen) << "no resources here";
        },
        [](CleanCase& each, bool failed) {
            if (!failed) {
                EXPECT_EQ(each.count, vl::kSuccess);
            }
            if (each.count != vl::kSuccess) {
                EXPECT_EQ(cleaner_test::Content(*each.scene), each.before);
            }
        });
}

// ---- What every extension offers, and text.

TEST_F(OutOfMemory, ParametersAndMetadataStayOrChangeAsAWhole) {
    struct Case {
        Ref<vl::Extension> from;
        Ref<vl::Extension> to;
        vl::ResultEnum copied = vl::kWrongClass;
    };
    Step<Case>(
        [&] {
            auto each = std::make_unique<Case>();
            each->from = Create<vl::Extension>(kTypeAnimManager);
            each->to = Create<vl::Extension>(kTypeAnimManager);
            each->from->SetParam(0, 7, ZR_VALUE_INT);
            each->from->GetMetadata(true)->Set(u"key", vl::Var(1));
            return each;
        },
        [](Case& each) {
            each.copied = each.to->CopyFrom(each.from.Get(), 0);
            each.to->SetParam(0, 9, ZR_VALUE_FLOAT);
            each.to->SetParamVar(0, vl::Var(true));
        },
        [](Case& each, bool failed) {
            EXPECT_TRUE(failed || each.copied == vl::kSuccess);
            const bool copied = each.copied == vl::kSuccess;
            EXPECT_EQ(each.to->GetParam(0, 0, ZR_VALUE_INT), copied ? 7u : 0u);
            EXPECT_EQ(each.to->GetMetadata(false) != nullptr, copied);
        });
}

TEST_F(OutOfMemory, TextIsWholeOrNull) {
    struct Case {
        Ref<vl::zr::legacy::CadText> text;
        Ref<vl::zr::legacy::GlyphContour> strokes;
    };
    Step<Case>(
        With(&Case::text, kTypeCadText),
        [](Case& each) {
            each.strokes = Ref<vl::zr::legacy::GlyphContour>::Adopt(
                each.text->CreateStrokeContours(u"AB", LOGFONTW{}, 12, nullptr));
        },
        [](Case& each, bool failed) {
            EXPECT_TRUE(failed || each.strokes);
            if (each.strokes) {
                EXPECT_GT(each.strokes->GetContourCount(), 2);
            }
        });
}

// ---- The scene.

TEST_F(OutOfMemory, TheSceneChangesAsAWholeOrNotAtAll) {
    struct Case {
        Ref<SceneModel> scene = cleaner_test::RandomScene(3);
        std::vector<std::string> before = cleaner_test::Content(*scene);
        vl::zr::Animation* animation = nullptr;
        bool threw = false;
    };
    const auto prepare = [] { return std::make_unique<Case>(); };
    const auto check = [](Case& each, bool) {
        EXPECT_EQ(cleaner_test::Content(*each.scene) == each.before, each.threw || each.animation == nullptr);
    };
    const auto guarded = [](const std::function<void(Case&)>& work) {
        return [work](Case& each) {
            try {
                work(each);
                each.animation =
                    each.animation != nullptr ? each.animation : each.scene->AllAnimations()[0].Get();
            } catch (const std::bad_alloc&) {
                each.threw = true;
            }
        };
    };
    Step<Case>(
        prepare, [](Case& each) { each.animation = each.scene->CreateAnimation(u"a name of some length"); },
        check);
    Step<Case>(prepare, guarded([](Case& each) { each.scene->MergeEqualMaterials(); }), check);
    Step<Case>(prepare,
               guarded([](Case& each) { vl::ArrayOf<vl::zr::Node*>(each.scene->m_pNodes)[0]->Delete(0); }),
               check);
}

}  // namespace
