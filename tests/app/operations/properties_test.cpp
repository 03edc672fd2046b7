// SPDX-License-Identifier: MIT
// Properties that hold for every scene, tested on random ones.
#include <gtest/gtest.h>

#include <set>

#include "app/operations/animations/merge_animations.h"
#include "app/operations/clean/clean_scene.h"
#include "app/operations/compare/compare_scenes.h"
#include "app/operations/export/export_scene.h"
#include "app/operations/export/tool_run.h"
#include "app/scene/animations_of.h"
#include "kernix/host_app_base.h"
#include "tests/app/operations/animations/animation_kit.h"
#include "tests/app/operations/wild_plan.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr::test {
namespace {

// Calls `check` for each seed with a function that makes the scene of that seed anew.
void ForEachScene(ScenePlan (*make)(Random&), unsigned count,
                  const std::function<void(const std::function<gltf::Document()>& scene)>& check) {
    for (unsigned seed = 0; seed < count; ++seed) {
        SCOPED_TRACE(seed);
        check([&] {
            Random random(seed);
            const ScenePlan plan = make(random);
            return Write(plan, random);
        });
        if (testing::Test::HasFailure()) return;
    }
}

void ExpectSame(const gltf::Document& before, const gltf::Document& after,
                const compare::CompareOptions& options) {
    const compare::CompareResult result = compare::CompareScenes(before, after, options);
    for (std::size_t i = 0; i < compare::kAspects; ++i)
        EXPECT_TRUE(result.same[i]) << compare::kAspectNames[i] << ": points " << result.movedPoint.amount
                                    << " at " << result.movedPoint.where << ", nodes " << result.node.amount
                                    << " at " << result.node.where << ", values " << result.value.amount
                                    << " at " << result.value.where
                                    << (result.drawn.empty() ? "" : result.drawn[0])
                                    << (result.structure.empty() ? "" : result.structure[0]);
}

TEST(Properties, ASavedSceneEqualsTheLoadedOne) {
    const TemporaryFolder folder;
    ForEachScene(MakeWildPlan, 60, [&](const auto& scene) {
        const std::string before = gltf::WriteJson(scene().Root(), false);
        EXPECT_EQ(gltf::WriteJson(LoadedScene(scene()).WriteBack().Root(), false), before);
        for (const char* name : {"out.glb", "out.gltf"}) {
            scene().Save(folder / name);
            compare::CompareOptions exact;
            exact.tolerance = {1e-30, 0, 0};
            ExpectSame(scene(), gltf::Document::Load(folder / name), exact);
        }
    });
}

TEST(Properties, EveryRecordStandsOnceBelowARoot) {
    ForEachScene(MakeWildPlan, 60, [](const auto& scene) {
        for (const std::uint32_t splits : {0U, std::uint32_t{vl::tk::kGeometrySplit | vl::tk::kGroupSplit}}) {
            LoadedScene loaded(scene());
            ExportOptions options;
            options.exportFlags |= splits;
            const auto animations = AnimationsOf(loaded.Scene());
            const Tool tool =
                RunTool(TheHost(), loaded, animations.empty() ? nullptr : animations.front(), options);
            std::set<const ExportNode*> met;
            std::vector<const ExportNode*> open;
            for (const ExportNode* root : vl::ArrayOf<ExportNode*>(tool->m_pRoots)) open.push_back(root);
            while (!open.empty()) {
                const ExportNode* record = open.back();
                open.pop_back();
                ASSERT_TRUE(met.insert(record).second) << "a record is in the tree twice";
                for (const ExportNode* child : vl::ArrayOf<ExportNode*>(record->pChildren)) {
                    EXPECT_EQ(child->pParent, record);
                    open.push_back(child);
                }
            }
            std::set<const ExportNode*> all;
            for (const ExportNode* record : AllRecords(tool)) {
                EXPECT_TRUE(all.insert(record).second) << "a record is listed twice";
                EXPECT_TRUE(record->pParent == nullptr || all.contains(record->pParent))
                    << "a parent comes after its child";
            }
            EXPECT_EQ(all, met);
        }
    });
}

// Transforms, weights and pointer values.
TEST(Properties, AnExportPlaysLikeItsSource) {
    const TemporaryFolder folder;
    ForEachScene(MakeLivelyPlan, 25, [&](const auto& scene) {
        ExportOptions options;
        options.exportFlags |= vl::tk::kMergeKeys;
        ExportScene(TheHost(), LoadedScene(scene()), options, [](double) {
        }).document.Save(folder / "out.glb");
        compare::CompareOptions comparison;
        // Rotated curves are linearized to a hundred thousandth of their range, which adds up along the
        // hierarchy.
        comparison.tolerance = {2e-3, 1e-3, 1e-3};
        comparison.aspects[static_cast<std::size_t>(compare::Aspect::kStructure)] = false;
        ExpectSame(scene(), gltf::Document::Load(folder / "out.glb"), comparison);
    });
}

// The indices of the animations that move nodes.
Names MovingAnimations(LoadedScene& loaded) {
    Names names;
    const Animations animations = AnimationsOf(loaded.Scene());
    for (std::size_t i = 0; i < animations.size(); ++i)
        if (!KeyTimes(*animations[i]).empty()) names.push_back(std::to_string(i));
    return names;
}

TEST(Properties, AMergeInSequencePlaysLikeItsSources) {
    unsigned merged = 0;
    for (const double gap : {0.0, 0.5}) {
        ForEachScene(MakeLivelyPlan, 60, [&](const auto& scene) {
            LoadedScene before(scene()), loaded(scene());
            const Names names = MovingAnimations(before);
            if (names.size() < 2) return;
            MergeOptions options;
            options.inSequence = true;
            options.gap = gap;
            MergeAnimations(TheHost(), loaded, ChooseAnimations(loaded.Scene(), names), options);
            LoadedScene after(std::move(loaded).WriteBack());
            // Random scenes move by a hundred units per second, and jump at any key.
            ExpectPlaysInSequence(before, names, after, "Merge Result", gap, {5e-5, 3});
            ++merged;
        });
    }
    EXPECT_GT(merged, 30U);
}

// Sources at their own times: nodes moved by only one of them play as in that one.
TEST(Properties, AMergePlaysLikeItsSourcesWhereTheyDoNotOverlap) {
    unsigned nodes = 0;
    ForEachScene(MakeLivelyPlan, 60, [&](const auto& scene) {
        LoadedScene before(scene()), loaded(scene());
        const Names names = MovingAnimations(before);
        if (names.size() < 2) return;
        MergeAnimations(TheHost(), loaded, ChooseAnimations(loaded.Scene(), names), {});
        LoadedScene after(std::move(loaded).WriteBack());
        kernix::AnimationModel* result = ChooseAnimation(after.Scene(), "Merge Result");
        for (std::size_t node = 0; node < before.Document().Elements(gltf::Kind::kNode).size(); ++node) {
            if (before.Node(node) == nullptr) continue;
            auto* controller = before.Node(node)->GetController(vl::zr::kControllerTransform);
            if (controller == nullptr) continue;
            Animations movers;
            for (const std::string& name : names) {
                kernix::AnimationModel* source = ChooseAnimation(before.Scene(), name);
                if (controller->GetTrack(source) != nullptr) movers.push_back(source);
            }
            if (movers.size() != 1) continue;
            ++nodes;
            const std::vector<float> times = KeyTimes(*movers[0]);
            for (std::size_t i = 0; i + 1 < 2 * times.size(); ++i) {
                const float time = i % 2 == 0 ? times[i / 2] : (times[i / 2] + times[i / 2 + 1]) / 2;
                SCOPED_TRACE(testing::Message() << "node " << node << " at " << time);
                const auto wanted = Pose(before, node, movers[0], time);
                const auto got = Pose(after, node, result, time);
                EXPECT_LT(Difference(wanted.translation, got.translation), 1e-5);
                EXPECT_LT(Difference(wanted.rotation, got.rotation), 1e-5);
                EXPECT_LT(Difference(wanted.scale, got.scale), 1e-5);
            }
        }
    });
    EXPECT_GT(nodes, 30U);
}

TEST(Properties, CleaningChangesNothingVisible) {
    const TemporaryFolder folder;
    EnvironmentService environment(TheHost());
    const auto context = vl::Ref<vl::Context>::AdoptNew(kernix::CreateContext());
    const auto cleaner = TheHost().Create<zr_CLEANER>(kTypeCleaner);
    CleanOptions options;
    for (std::size_t i = 0; i < kCleanSteps; ++i) options.steps[i] = kCleanStepInfo[i].unseen;
    // The comparison also distinguishes materials by name.
    options.steps[static_cast<std::size_t>(CleanStep::kEqualMaterials)] = false;
    ForEachScene(MakeLivelyPlan, 25, [&](const auto& scene) {
        gltf::Document document = scene();
        CleanDocument(document, *cleaner, environment, context.Get(), options, [](double) {});
        document.Save(folder / "out.glb");
        compare::CompareOptions comparison;
        // Removing materials renumbers others, and values are compared by index.
        for (const compare::Aspect aspect :
             {compare::Aspect::kStructure, compare::Aspect::kNodes, compare::Aspect::kValues})
            comparison.aspects[static_cast<std::size_t>(aspect)] = false;
        ExpectSame(scene(), gltf::Document::Load(folder / "out.glb"), comparison);
    });
}

}  // namespace
}  // namespace zr::test
