// SPDX-License-Identifier: MIT
// Exports compared by an evaluator that shares no code with them: every face, camera, light and morph weight
// over time.
#include <gtest/gtest.h>

#include "app/operations/compare/compare_scenes.h"
#include "app/operations/export/export_scene.h"
#include "tests/app/operations/compare/scene_plan.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr::test {
namespace {

constexpr struct {
    const char* what;
    std::uint32_t exportFlags, animFlags;
} kPasses[] = {
    {"nothing", 0, 0},
    {"merging", vl::tk::kMergeKeys, 0},
    {"resampling", 0, vl::tk::kResampleKeys},
    {"resampling and merging", vl::tk::kMergeKeys, vl::tk::kResampleKeys},
    {"geometry on nodes of its own", vl::tk::kGeometrySplit | vl::tk::kGroupSplit, 0},
};

// Compares the original scene with the exported file.
void ExpectPlaysAlike(const std::function<gltf::Document()>& make) {
    for (const auto& pass : kPasses) {
        SCOPED_TRACE(pass.what);
        const gltf::test::TemporaryFolder folder;
        ExportOptions options;
        options.exportFlags |= pass.exportFlags;
        options.animFlags |= pass.animFlags;
        LoadedScene loaded(make(), SceneOptionsOf(options, true));
        ExportScene(TheHost(), std::move(loaded), options, [](double) {}).document.Save(folder / "out.glb");

        compare::CompareOptions comparison;
        // Rotated curves are linearized to a hundred thousandth of their range, which adds up along the
        // hierarchy.
        comparison.tolerance = {1e-3, 1e-3, 1e-3};
        // Splitting geometry changes the nodes; what is visible stays the same.
        const bool splits = (pass.exportFlags & vl::tk::kGeometrySplit) != 0;
        comparison.aspects = {false, true, !splits, true, true, !splits};
        const auto result =
            compare::CompareScenes(make(), gltf::Document::Load(folder / "out.glb"), comparison);
        for (std::size_t i = 0; i < compare::kAspects; ++i)
            EXPECT_TRUE(result.same[i])
                << compare::kAspectNames[i] << ": points " << result.movedPoint.amount << " at "
                << result.movedPoint.where << ", nodes " << result.node.amount << " at " << result.node.where
                << ", values " << result.value.amount << " at " << result.value.where
                << (result.drawn.empty() ? "" : result.drawn[0]);
        EXPECT_GT(result.times, 20U);
    }
}

TEST(PlayedExport, KeepsTheExample) {
    ExpectPlaysAlike([] { return gltf::Document::Load(ZR_EXAMPLES "/windmill.gltf"); });
}

TEST(PlayedExport, KeepsRandomScenes) {
#ifdef __SANITIZE_ADDRESS__
    constexpr unsigned kScenes = 2;
#else
    constexpr unsigned kScenes = 6;
#endif
    for (unsigned seed = 0; seed < kScenes; ++seed) {
        SCOPED_TRACE(seed);
        ExpectPlaysAlike([seed] {
            Random random(seed);
            return Write(MakePlan(random), random);
        });
    }
}

}  // namespace
}  // namespace zr::test
