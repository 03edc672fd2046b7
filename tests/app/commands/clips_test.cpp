// SPDX-License-Identifier: MIT
// One file per clip, and clips merged from several files.
#include <gtest/gtest.h>

#include "gltf/document.h"
#include "tests/app/commands/command_kit.h"

namespace {

using zr::gltf::Document;
using zr::gltf::Kind;
using zr::test::CommandFolder;
using zr::test::Outcome;

std::string NamesIn(const CommandFolder& folder, const char* file) {
    const Document document = Document::Load(folder / file);
    std::string names;
    for (const zr::gltf::Json& animation : document.Elements(Kind::kAnimation))
        names += std::string(animation.Find("name")->String()) + ";";
    return names;
}

TEST(Clips, SplitIntoFilesAndMergeBack) {
    const CommandFolder folder;
    folder.WriteAnimated("scene.glb");
    const Outcome split = folder.Zr("split scene.glb --out-dir clips");
    ASSERT_EQ(split.status, 0) << split.err;
    EXPECT_EQ(NamesIn(folder, "clips/walk.glb"), "walk;");
    EXPECT_EQ(NamesIn(folder, "clips/run, fast.glb"), "run, fast;");
    EXPECT_LT(std::filesystem::file_size(folder / "clips/walk.glb"),
              std::filesystem::file_size(folder / "scene.glb"));

    const Outcome cut = folder.Zr("split scene.glb --out-dir parts --animation walk --at 0.5");
    ASSERT_EQ(cut.status, 0) << cut.err;
    EXPECT_EQ(NamesIn(folder, "parts/walk 1.glb"), "walk 1;");
    EXPECT_TRUE(folder.Exists("parts/walk 2.glb"));

    ASSERT_EQ(folder.Zr("remove-animations scene.glb bare.glb --animations 0,1,2").status, 0);
    const Outcome merged =
        folder.Zr("merge bare.glb all.glb --from clips/walk.glb --from 'clips/run, fast.glb' --match name");
    ASSERT_EQ(merged.status, 0) << merged.err;
    EXPECT_EQ(NamesIn(folder, "all.glb"), "walk;run, fast;");
}

TEST(Clips, RefuseWhatMatchesNothing) {
    const CommandFolder folder;
    folder.WriteAnimated("scene.glb");
    const Outcome pairs = folder.Shell(
        "echo '{\"no such node\": \"either\"}' >map.json; zr merge scene.glb out.glb --from scene.glb "
        "--match map.json");
    EXPECT_EQ(pairs.status, 1);
    EXPECT_EQ(pairs.err, "zr: scene.glb: no node of the other scene is named \"no such node\"\n");
    const Outcome large = folder.Shell(
        "truncate -s 67108865 map.json; zr merge scene.glb out.glb --from scene.glb --match map.json");
    EXPECT_EQ(large.status, 1);
    EXPECT_EQ(large.err, "zr: scene.glb: map.json: is larger than the 67108864 bytes that may be read\n");
    EXPECT_EQ(folder.Zr("split scene.glb").status, 2);
    EXPECT_EQ(folder.Zr("split scene.glb out.glb --out-dir clips --each").status, 2);
    EXPECT_EQ(folder.Zr("split - --out-dir clips").status, 2);
    EXPECT_FALSE(folder.Exists("out.glb"));
}

}  // namespace
