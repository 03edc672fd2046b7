// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tests/app/commands/command_kit.h"
#include "tests/app/commands/json_schema.h"

namespace zr::test {
namespace {

using Strings = std::vector<std::string>;

class Commands : public testing::Test {
protected:
    Commands() { m_folder.WriteAnimated("a.glb"); }

    static gltf::JsonTree Schema(const std::filesystem::path& file) {
        gltf::JsonTree tree;
        const FileContent content = ReadFile(file);
        tree.root = tree.Build({reinterpret_cast<const char*>(content.data.get()), content.size});
        return tree;
    }

    // The output as JSON, checked against the schema that is installed.
    gltf::Json Json(const std::string& arguments, int status = 0) {
        static const gltf::JsonTree schema = Schema(ZR_OUTPUT_SCHEMA);
        const Outcome run = m_folder.Zr("--json " + arguments);
        EXPECT_EQ(run.status, status) << run.err;
        const gltf::Json json = m_tree.Build(run.out);
        EXPECT_EQ(SchemaFault(json, schema.root), "") << run.out;
        return json;
    }

    Strings AnimationNames(const char* file) {
        Strings names;
        const auto document = gltf::Document::Load(m_folder / file);
        for (const gltf::Json& animation : document.Elements(gltf::Kind::kAnimation))
            names.emplace_back(animation.Find("name")->String());
        return names;
    }

    void ExpectFailure(const std::string& arguments, const char* text) {
        SCOPED_TRACE(arguments);
        const Strings before = m_folder.Files();
        const Outcome run = m_folder.Zr(arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_TRUE(IsOneLine(run.err)) << run.err;
        EXPECT_NE(run.err.find(text), std::string::npos) << run.err;
        EXPECT_EQ(m_folder.Files(), before);
    }

    CommandFolder m_folder;
    gltf::JsonTree m_tree;
};

TEST_F(Commands, InfoCounts) {
    const Outcome run = m_folder.Zr("info a.glb");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_NE(run.out.find("nodes       2\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("  \"run, fast\"  0 to 2 s, 1 track, 2 keys\n"), std::string::npos) << run.out;
    const gltf::Json json = Json("info a.glb");
    EXPECT_EQ(json.Find("counts")->Find("meshes")->Number(), 1);
    EXPECT_EQ(json.Find("animations")->Items()[1].Find("end")->Number(), 2);
}

TEST_F(Commands, AnimationsListTheirViewports) {
    const Outcome run = m_folder.Zr("animations a.glb");
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(
        run.out.starts_with("0  \"walk\"  0 to 1 s, 1 track, 2 keys, used by front\n"
                            "1  \"run, fast\"  0 to 2 s, 1 track, 2 keys, unused\n"))
        << run.out;
    const gltf::Json json = Json("animations a.glb");
    EXPECT_EQ(json.Find("animations")->Items()[0].Find("viewports")->Items()[0].String(), "front");
}

TEST_F(Commands, TreeDrawsTheExportHierarchy) {
    const Outcome run = m_folder.Zr("tree a.glb");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("[box"), std::string::npos) << run.out;
    EXPECT_EQ(Json("tree a.glb").Find("items")->Items().size(), 2U);
    m_folder.Write("empty.gltf", R"({"asset": {"version": "2.0"}})");
    EXPECT_EQ(m_folder.Zr("tree empty.gltf").out, "the scene has no nodes\n");
}

TEST_F(Commands, DescribeListsTheCleaner) {
    const Outcome run = m_folder.Zr("describe cleaner");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("Clean_Scene"), std::string::npos);
    const gltf::Json method = Json("describe cleaner").Find("methods")->Items()[0];
    EXPECT_EQ(method.Find("name")->String(), "Clean_Scene");
    EXPECT_GE(method.Find("parameters")->Items().size(), 8U);
}

TEST_F(Commands, ExportReportsItsWork) {
    const Outcome run = m_folder.Zr("export a.glb b.glb --animation walk --animation 'run, fast'");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(run.out.starts_with("4 keys became 4; quick check: largest deviation ")) << run.out;
    EXPECT_EQ(AnimationNames("b.glb"), (Strings{"walk", "run, fast"}));
    const gltf::Json json = Json("export a.glb c.gltf --rename '^b=x' --names unique --rename-map map.json");
    EXPECT_EQ(json.Find("results")->Items()[0].Find("keysAfter")->Number(), 4);
    EXPECT_NE(m_folder.Read("map.json").find("xox"), std::string::npos) << m_folder.Read("map.json");
}

TEST_F(Commands, ReduceReportsItsWork) {
    const std::string scene = std::string(ZR_EXAMPLES) + "/windmill.gltf";
    const gltf::Json json = Json("reduce " + scene + " b.glb --tolerance 1cm,0.5deg");
    const gltf::Json& result = json.Find("results")->Items()[0];
    EXPECT_LT(result.Find("keysAfter")->Number(), result.Find("keysBefore")->Number());
    EXPECT_LE(result.Find("length")->Number(), 0.01);
    EXPECT_EQ(m_folder.Zr("compare " + scene + " b.glb --only points,views --tolerance 1cm,0.5deg").status,
              0);
    EXPECT_NE(m_folder.Zr("export " + scene + " c.glb --tolerance 1cm").out.find("reduced: "),
              std::string::npos);
    EXPECT_EQ(m_folder.Zr("reduce " + scene + " c.glb").status, 2);
    EXPECT_EQ(m_folder.Zr("reduce " + scene + " c.glb --tolerance 1parsec").status, 2);
}

TEST_F(Commands, RecordsHoldEveryAnimation) {
    ASSERT_EQ(m_folder.Zr("export a.glb all.json --at-least-one-key").status, 0);
    gltf::JsonTree tree;
    const gltf::Json all = tree.Build(m_folder.Read("all.json"));
    const gltf::JsonTree schema =
        Schema(std::filesystem::path(ZR_OUTPUT_SCHEMA).parent_path() / "zr-records.schema.json");
    EXPECT_EQ(SchemaFault(all, schema.root), "");
    const auto animations = all.Find("animations")->Items();
    ASSERT_EQ(animations.size(), 3U);
    for (const char* name : {"walk", "run, fast", "still"}) {
        // Each equals its export on its own, plus its name.
        ASSERT_EQ(
            m_folder.Zr("export a.glb one.json --at-least-one-key --animation '" + std::string(name) + "'")
                .status,
            0);
        gltf::Json one = tree.Build(m_folder.Read("one.json"));
        EXPECT_EQ(SchemaFault(one, schema.root), "");
        tree.Member(one, "name") = tree.MakeString(name);
        const auto found = std::find_if(animations.begin(), animations.end(), [&](const gltf::Json& each) {
            return each.Find("name")->String() == name;
        });
        ASSERT_NE(found, animations.end());
        EXPECT_TRUE(gltf::EqualJson(*found, one)) << name;
    }
    EXPECT_EQ(m_folder.Zr("export a.glb b.JSON --animation walk").status, 0);
    EXPECT_NE(m_folder.Read("b.JSON").find("\"box\""), std::string::npos);
    EXPECT_EQ(m_folder.Zr("export a.glb c.json --no-animation").status, 0);
}

TEST_F(Commands, AModuleErrorIsReportedOnce) {
    ExpectFailure("export a.glb b.glb --option-words 0,0,0", "a.glb: Invalid parameters\n");
}

// Stored times that would produce endless keys, or none at all.
TEST_F(Commands, SettingsStayInRange) {
    for (const char* percent : {"1e38", "-50"}) {
        m_folder.Write("user.ini",
                       std::string("[anim]\nrescale=1\nrescaletype=1\nrescalepercent=") + percent + "\n");
        ExpectFailure("export a.glb b.glb --settings user.ini", "user.ini: ");
    }
}

TEST_F(Commands, MergeWritesItsResult) {
    const Outcome run = m_folder.Zr(
        "merge a.glb b.glb --animations walk --animation 'run, fast' --sequence --gap .5 --name both "
        "--remove-sources");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "merged \"both\"  0 to 3.5 s, 1 track, 5 keys\n");
    EXPECT_EQ(AnimationNames("b.glb"), (Strings{"still", "both"}));
    const gltf::Json json = Json("merge a.glb c.glb --from a.glb --animations 0,1");
    EXPECT_EQ(json.Find("results")->Items()[0].Find("done")->Bool(), true);
    EXPECT_EQ(m_folder.Zr("merge a.glb d.glb --from a.glb").status, 0);
    EXPECT_EQ(AnimationNames("d.glb").size(), 5U) << "the one that moves nothing stays there";
}

TEST_F(Commands, AMergeThatMovesNothingFails) {
    ExpectFailure("merge a.glb b.glb --animations 0,1 --keep scale --remove-sources", "would move nothing");
    ExpectFailure("merge a.glb b.glb --animations 0,still --sequence", "\"still\" has no keys");
    m_folder.Write("other.gltf", R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
                                     "nodes": [{"name": "nobody"}]})");
    ExpectFailure("merge a.glb b.glb --from other.gltf", "other.gltf: nothing in it moves");
}

TEST_F(Commands, SplitCutsOrSeparates) {
    const Outcome run = m_folder.Zr("split a.glb b.glb --animation 1 --at 0.5,1.5");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out,
              "\"run, fast 1\"  0 to 0.5 s, 1 track, 2 keys\n"
              "\"run, fast 2\"  0 to 1 s, 1 track, 2 keys\n"
              "\"run, fast 3\"  0 to 0.5 s, 1 track, 2 keys\n");
    const gltf::Json json = Json("split a.glb c.glb --animation walk --each");
    EXPECT_EQ(json.Find("animations")->Items()[0].Find("name")->String(), "walk box");
    ExpectFailure("split a.glb d.glb --at 1", "choose one with --animation");
    ExpectFailure("split a.glb d.glb --animation walk --at 1", "not inside the animation");
    ExpectFailure("split a.glb d.glb --animation still --each", "moves nothing");
}

TEST_F(Commands, FontsAndHelpPrintJson) {
    EXPECT_FALSE(Json("fonts dejavu").Find("fonts")->Items().empty());
    EXPECT_GT(Json("help").Find("commands")->Items().size(), 10U);
    const gltf::Json help = Json("help export");
    EXPECT_TRUE(help.Find("usages")->Items()[0].String().starts_with("zr export "));
    EXPECT_GT(help.Find("groups")->Items().size(), 5U);
}

TEST_F(Commands, RemoveAnimationsCounts) {
    EXPECT_EQ(m_folder.Zr("remove-animations a.glb b.glb --animations walk,2").out, "removed 2 animations\n");
    EXPECT_EQ(m_folder.Zr("remove-animations a.glb c.glb --animation 'run, fast'").out,
              "removed 1 animation\n");
    EXPECT_EQ(AnimationNames("c.glb"), (Strings{"walk", "still"}));
    EXPECT_EQ(Json("remove-animations a.glb d.glb --unused").Find("removed")->Number(), 2);
    ExpectFailure("remove-animations a.glb e.glb --animation ran", "no animation is named \"ran\"");
}

TEST_F(Commands, CompareExitsWithItsResult) {
    EXPECT_EQ(m_folder.Zr("export a.glb b.glb").status, 0);
    EXPECT_TRUE(Json("compare a.glb b.glb").Find("same")->Bool());
    EXPECT_EQ(m_folder.Zr("export a.glb big.glb --scale 1.001").status, 0);
    const gltf::Json json = Json("compare a.glb big.glb --only nodes", 1);
    EXPECT_FALSE(json.Find("aspects")->Find("nodes")->Bool());
    EXPECT_EQ(json.Find("aspects")->Find("structure"), nullptr);
    EXPECT_EQ(m_folder.Zr("compare a.glb big.glb --tolerance 1m,0.1deg,0.1").status, 0);
    const Outcome run = m_folder.Zr("compare a.glb big.glb");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "") << "a verdict is no failure";
    EXPECT_NE(run.out.find("nodes      different; largest difference "), std::string::npos) << run.out;
    for (const char* tolerance : {"1deg", "-1", "nan", "1,1m", "1,1,1,1", "x"}) {
        const Outcome refused = m_folder.Zr(std::string("compare a.glb b.glb --tolerance=") + tolerance);
        EXPECT_EQ(refused.status, 2) << tolerance;
        EXPECT_TRUE(IsOneLine(refused.err)) << refused.err;
    }
}

TEST_F(Commands, InspectListsTables) {
    const gltf::Json json = Json("inspect a.glb");
    EXPECT_EQ(json.Find("animations")->Items().size(), 3U);
    EXPECT_EQ(json.Find("nodes")->Items()[0].Find("node")->Number(), 0);
    const Outcome text = m_folder.Zr("inspect a.glb --tables animations --format csv");
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_TRUE(text.out.starts_with("animations,animation,name,")) << text.out;
    EXPECT_NE(text.out.find("\"run, fast\""), std::string::npos) << text.out;
    EXPECT_EQ(m_folder.Shell("zr inspect - <a.glb").out, m_folder.Zr("inspect a.glb").out);
}

TEST_F(Commands, StrictRefusesMissingFiles) {
    m_folder.Write("image.gltf", R"({"asset":{"version":"2.0"},"images":[{"uri":"gone.png"}]})");
    EXPECT_EQ(m_folder.Zr("inspect image.gltf").status, 0);
    ExpectFailure("inspect image.gltf --strict", "/images/0/uri: \"gone.png\" is missing");
}

TEST_F(Commands, ReportsOverwriteNothing) {
    for (const char* place : {"a.glb", "./b.glb"}) {
        const Outcome run = m_folder.Zr(std::string("clean a.glb b.glb --report ") + place);
        EXPECT_EQ(run.status, 2) << run.err;
        EXPECT_NE(run.err.find("would overwrite"), std::string::npos) << run.err;
    }
    EXPECT_EQ(m_folder.Files(), (Strings{"a.glb"}));
}

TEST_F(Commands, ReportsAreCompletePages) {
    const Outcome run = m_folder.Zr("clean a.glb b.glb --report page.html");
    if (run.err.find("built without report pages") != std::string::npos) GTEST_SKIP() << run.err;
    EXPECT_EQ(run.status, 0) << run.err;
    const std::string page = m_folder.Read("page.html");
    EXPECT_TRUE(page.starts_with("<!doctype html>\n"));
    EXPECT_TRUE(page.ends_with("</html>\n"));
}

TEST_F(Commands, CleanAndTextPrintJson) {
    const gltf::Json clean = Json("clean a.glb b.glb --explain").Find("results")->Items()[0];
    EXPECT_GT(clean.Find("bytesAfter")->Number(), 0);
    EXPECT_EQ(Json("text --style stroke A a.svg").Find("contours")->Number(), 3);
}

TEST_F(Commands, ScenesPassThroughPipes) {
    const Outcome run = m_folder.Shell("zr clean - - <a.glb | zr export - - | zr info - >info && cat info");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("nodes       1\n"), std::string::npos) << run.out;
    EXPECT_EQ(m_folder.Shell("cat a.glb | zr export - - --animation 0 --format json | grep -c box").out,
              "1\n");
    const Outcome split = m_folder.Zr("export a.glb - --format gltf");
    EXPECT_EQ(split.status, 1) << "its buffer would be a file of its own";
    EXPECT_EQ(split.out, "");
    const Outcome mapped =
        m_folder.Shell("zr export a.glb - --rename-map map.json | zr info - | grep -c nodes");
    EXPECT_EQ(mapped.out, "1\n") << mapped.err;
    EXPECT_TRUE(m_folder.Exists("map.json"));
    EXPECT_EQ(m_folder.Shell("zr export a.glb b.glb -q --rename-map - | head -c 1").out, "[");
    const Outcome broken = m_folder.Zr("info -", "{]");
    EXPECT_EQ(broken.status, 1);
    EXPECT_TRUE(broken.err.starts_with("zr: standard input: byte ")) << broken.err;
}

TEST_F(Commands, NoClobberKeepsExistingFiles) {
    for (const char* command :
         {"export a.glb b.glb", "clean a.glb b.glb", "merge a.glb b.glb --animations 0,1",
          "split a.glb b.glb --animation 0 --each", "remove-animations a.glb b.glb --unused",
          "text --style stroke A b.glb", "export a.glb c.glb --rename-map b.glb"}) {
        m_folder.Write("b.glb", "mine");
        ExpectFailure(std::string("--no-clobber ") + command, "b.glb: already exists");
        EXPECT_EQ(m_folder.Read("b.glb"), "mine");
    }
}

TEST_F(Commands, QuietPrintsAnswersAndErrors) {
    const Outcome quiet = m_folder.Zr("-q export a.glb b.glb");
    EXPECT_EQ(quiet.status, 0);
    EXPECT_EQ(quiet.out + quiet.err, "");
    EXPECT_NE(m_folder.Zr("-q info a.glb").out, "");
    EXPECT_NE(m_folder.Zr("-q info nothing.glb").err, "");
    const Outcome verbose = m_folder.Zr("-v export a.glb b.glb");
    EXPECT_NE(verbose.err.find("zr: log: ZR_TK::Process() - entering\n"), std::string::npos) << verbose.err;
}

TEST_F(Commands, NamesNeverReachTheTerminalAsCommands) {
    m_folder.Write("odd.gltf", R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [{"name": "a\u001b[2J\nb"}], "animations": [
        {"name": "x\u0007\ny", "samplers": [], "channels": []}, {"name": "z\u009b", "samplers": [], "channels": []}]})");
    for (const char* command :
         {"info odd.gltf", "animations odd.gltf", "tree odd.gltf", "clean --dry-run odd.gltf",
          "split odd.gltf b.gltf --at 1", "export odd.gltf b.gltf --animation none",
          "remove-animations odd.gltf b.gltf --animation none"}) {
        SCOPED_TRACE(command);
        const Outcome run = m_folder.Zr(command);
        const std::string all = run.out + run.err;
        EXPECT_EQ(all.find_first_of("\x1b\x07"), std::string::npos) << all;
        EXPECT_EQ(all.find("\xC2\x9B"), std::string::npos) << all;
        EXPECT_TRUE(run.status == 0 || IsOneLine(run.err)) << run.err;
    }
}

class ManyFiles : public Commands {
protected:
    ManyFiles() {
        for (const char* name : {"in/a.glb", "in/deep/b.glb", "in/deep/c.glb"}) m_folder.WriteAnimated(name);
        m_folder.Write("in/notes.txt", "no scene");
        std::filesystem::remove(m_folder / "a.glb");
    }
};

TEST_F(ManyFiles, KeepTheirNames) {
    for (const char* command : {"export", "clean", "merge --animations 0,1"}) {
        SCOPED_TRACE(command);
        const std::string line = std::string(command) + " --out-dir out --jobs 3 --format gltf in";
        const Outcome run = m_folder.Zr(line);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.err.find("zr: 3 files: 3 done, 0 failed, 0 left\n"), std::string::npos) << run.err;
        for (const char* name : {"out/a.gltf", "out/deep/b.gltf", "out/deep/c.gltf"})
            EXPECT_TRUE(m_folder.Exists(name)) << name;
        EXPECT_EQ(m_folder.Zr("-q " + line).status, 0);
        std::filesystem::remove_all(m_folder / "out");
        m_folder.Zr(std::string(command) + " --out-dir in/out in");
        EXPECT_EQ(Json(std::string(command) + " --out-dir in/out in").Find("done")->Number(), 3)
            << "what was written is not read";
        std::filesystem::remove_all(m_folder / "in/out");
    }
}

TEST_F(ManyFiles, StopAtTheFirstFailureOrContinue) {
    m_folder.Write("in/deep/b.glb", "broken");
    const gltf::Json stopped = Json("export --out-dir out in", 1);
    EXPECT_EQ(stopped.Find("done")->Number(), 1);
    EXPECT_EQ(stopped.Find("failed")->Number(), 1);
    EXPECT_EQ(stopped.Find("left")->Number(), 1);
    EXPECT_EQ(stopped.Find("results")->Items()[1].Find("error")->String().substr(0, 13), "in/deep/b.glb");
    EXPECT_FALSE(m_folder.Exists("out/deep/c.glb"));

    const Outcome run = m_folder.Zr("export --out-dir out --keep-going in");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("zr: 3 files: 2 done, 1 failed, 0 left\n"), std::string::npos) << run.err;
    EXPECT_TRUE(m_folder.Exists("out/deep/c.glb"));
}

TEST_F(ManyFiles, MayNotShareAnOutput) {
    for (const char* files : {"in/a.glb in/a.glb", "in/deep/b.glb in/deep", "-", "nothing"}) {
        SCOPED_TRACE(files);
        std::filesystem::create_directory(m_folder / "nothing");
        const Outcome run = m_folder.Zr(std::string("export --out-dir out ") + files);
        EXPECT_EQ(run.status, 2);
        EXPECT_TRUE(IsOneLine(run.err)) << run.err;
        EXPECT_FALSE(m_folder.Exists("out"));
    }
    EXPECT_EQ(m_folder.Zr("export --out-dir out --rename-map map.json in").status, 2);
}

}  // namespace
}  // namespace zr::test
