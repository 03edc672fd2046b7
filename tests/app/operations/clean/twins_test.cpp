// SPDX-License-Identifier: MIT
// Which meshes in one place are duplicates, and which only look like it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "base/text.h"
#include "tests/app/operations/clean/clean_kit.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using gltf::Document;
using gltf::Kind;

// `nodes` with their scene; every node may show mesh 0, a triangle of material 0.
Document TwinScene(const std::string& roots, const std::string& nodes, const std::string& more = "",
                   const std::string& material = "{}") {
    return gltf::test::FromText(Join(R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[)", roots,
                                     R"(]}],"nodes":[)", nodes,
                                     R"(],"meshes":[{"primitives":[{"attributes":{},"material":0}]}],
        "materials":[)",
                                     material, "]", more, "}"));
}

using TwinsTest = CleanTest;

// "alone" would be a duplicate of "below", but for the parent of that.
TEST_F(TwinsTest, AncestorsTellMeshesApart) {
    struct Case {
        const char* what;
        const char* extensions;  // of the parent
        const char* more;        // of the document
        bool repeats;
    };
    const Case cases[] = {
        {"nothing", "", "", true},
        {"packet of metadata", R"("KHR_xmp_json_ld":{"packet":0})", "", true},
        {"light", R"("KHR_lights_punctual":{"light":0})",
         R"(,"extensions":{"KHR_lights_punctual":{"lights":[{"type":"point"}]}})", true},
        {"hidden", R"("KHR_node_visibility":{"visible":false})", "", false},
        {"not to be picked", R"("KHR_node_selectability":{"selectable":false})", "", false},
        {"body", R"("KHR_physics_rigid_bodies":{"motion":{}})", "", false},
        {"level of detail", R"("MSFT_lod":{"ids":[4]})", "", false},
        {"unknown", R"("X_glow":{"colour":"red"})", "", false},
        {"shown by an animation", "",
         R"(,"accessors":[{"componentType":5126,"count":1,"type":"SCALAR"},
             {"componentType":5121,"count":1,"type":"SCALAR"}],
            "animations":[{"samplers":[{"input":0,"output":1,"interpolation":"STEP"}],"channels":[{"sampler":0,
             "target":{"path":"pointer","extensions":{"KHR_animation_pointer":{"pointer":
             "/nodes/0/extensions/KHR_node_visibility/visible"}}}}]}])",
         false},
    };
    for (const Case& c : cases) {
        const std::string extensions =
            *c.extensions != '\0' ? Join(R"(,"extensions":{)", c.extensions, "}") : std::string();
        Document document = TwinScene("0,2,3",
                                      Join(R"({"children":[1])", extensions,
                                           R"(},{"name":"below","mesh":0},{"name":"alone","mesh":0},
                                                {"name":"also alone","mesh":0},{"mesh":0,"name":"far"})"),
                                      c.more);
        const CleanResult result = Clean(document, Unseen());
        const Strings expected = c.repeats ? Strings{"alone", "also alone"} : Strings{"also alone"};
        EXPECT_EQ(NamesOf(result, CleanStep::kMeshDupes), expected) << c.what;
        const Strings held = Held(result);
        const bool isHeld = std::any_of(held.begin(), held.end(),
                                        [](const std::string& line) { return line.starts_with("alone: "); });
        EXPECT_EQ(isHeld, !c.repeats) << c.what;
    }
}

TEST_F(TwinsTest, DuplicatesBelowOneNodeAreRemoved) {
    Document document =
        TwinScene("0", R"({"children":[1,2],"extensions":{"KHR_node_visibility":{"visible":false}}},
        {"name":"first","mesh":0},{"name":"second","mesh":0})");
    EXPECT_EQ(NamesOf(Clean(document, Unseen()), CleanStep::kMeshDupes), Strings{"second"});
}

// One child of a selector is shown, the others are not.
TEST_F(TwinsTest, ChildrenOfASelectorAreAlternatives) {
    Document document =
        TwinScene("0", R"({"children":[1,2],"extensions":{"ZR_scene":{"selector":true,"selected":2}}},
        {"name":"first","mesh":0},{"name":"second","mesh":0})");
    EXPECT_EQ(NamesOf(Clean(document, Unseen()), CleanStep::kMeshDupes), Strings{});
}

TEST_F(TwinsTest, MetadataKeepsNodesUntilItIsRemoved) {
    const auto scene = [] {
        return TwinScene("0,1,2,3,4", R"({"name":"first","mesh":0,"extras":{"part":1}},
            {"name":"second","mesh":0,"extras":{"part":2}},{"name":"third","mesh":0},
            {"name":"marked","extras":{"note":"door"}},{"name":"empty","extras":{}})");
    };
    Document document = scene();
    const CleanResult result = Clean(document, Unseen());
    EXPECT_EQ(Names(document, Kind::kNode), (Strings{"first", "second", "marked"}));
    EXPECT_EQ(result.steps[static_cast<std::size_t>(CleanStep::kMeshDupes)].count, 1U);
    EXPECT_EQ(NamesOf(result, CleanStep::kMeshDupes), Strings{"third"});
    EXPECT_EQ(Held(result), (Strings{"marked: metadata", "second: metadata"}));

    CleanOptions all = Unseen();
    all.steps.fill(true);
    document = scene();
    Clean(document, all);
    EXPECT_EQ(Names(document, Kind::kNode), Strings{"first"});
}

// Two panes of glass at one place are darker than one.
TEST_F(TwinsTest, BlendedDuplicatesAreRemovedOnlyOnRequest) {
    const auto scene = [] {
        return TwinScene("0,1", R"({"name":"pane","mesh":0},{"name":"other pane","mesh":0})", "",
                         R"({"alphaMode":"BLEND"})");
    };
    Document document = scene();
    const CleanResult result = Clean(document, Unseen());
    EXPECT_EQ(NamesOf(result, CleanStep::kMeshDupes), Strings{});
    EXPECT_EQ(Held(result), Strings{"other pane: blended with the mesh that it duplicates"});

    CleanOptions options = Unseen();
    options.blended = true;
    document = scene();
    EXPECT_EQ(NamesOf(Clean(document, options), CleanStep::kMeshDupes), Strings{"other pane"});
}

}  // namespace
}  // namespace zr
