// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/commands/suggestion.h"
#include "tests/app/commands/command_kit.h"

namespace zr::test {
namespace {

TEST(Program, PrintsItsVersions) {
    const CommandFolder folder;
    for (const char* option : {"--version", "-V"}) {
        const Outcome run = folder.Zr(option);
        EXPECT_EQ(run.status, 0);
        EXPECT_TRUE(run.out.starts_with("zr 6.3.1.8069\nmodule 6.3.1.8069, ")) << run.out;
        EXPECT_NE(run.out.find("\nhost interface 1555\n"), std::string::npos) << run.out;
    }
}

TEST(Program, HasHelpForEachCommand) {
    const CommandFolder folder;
    const Outcome list = folder.Zr("help");
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.out, folder.Zr("--help").out);
    for (const char* command : {"export", "clean", "info", "tree", "animations", "merge", "split",
                                "remove-animations", "text", "describe", "help"}) {
        SCOPED_TRACE(command);
        EXPECT_NE(list.out.find(std::string("\n  ") + command + " "), std::string::npos);
        const Outcome help = folder.Zr(std::string("help ") + command);
        EXPECT_EQ(help.status, 0);
        EXPECT_NE(help.out.find(std::string("Usage: zr ") + command + " [OPTIONS]"), std::string::npos);
        EXPECT_NE(help.out.find("--json"), std::string::npos);
        EXPECT_EQ(help.out, folder.Zr(std::string(command) + " --help").out);
    }
}

TEST(Program, NamesTheWrongWordInOneLine) {
    const CommandFolder folder;
    folder.WriteAnimated("a.glb");
    const struct {
        const char* arguments;
        const char* text;
    } cases[] = {
        {"", "usage: zr [OPTIONS] COMMAND"},
        {"expotr a.glb b.glb", "unknown command \"expotr\"; did you mean \"export\"?"},
        {"help expotr", "did you mean \"export\"?"},
        {"describe claener", "did you mean \"cleaner\"?"},
        {"xyzzy", "unknown command \"xyzzy\"\n"},
        {"export --mrege-keys", "\"--mrege-keys\"; did you mean \"--merge-keys\"?"},
        {"info a.glb --jsno", "\"--jsno\"; did you mean \"--json\"?"},
        {"info", "usage: zr info [OPTIONS] SCENE"},
        {"reduce a.glb b.glb", "--tolerance is required"},
        {"info a.glb b.glb", "unexpected argument \"b.glb\""},
        {"info a.glb \"$(printf 'b\\nc')\"", "unexpected argument \"b\\nc\""},
        {"--language zz info a.glb", "unknown language \"zz\""},
        {"export a.glb", "one to write"},
        {"info a.glb --max-memory nan", "\"nan\" is not a number from 1 to 1000000"},
        {"text --style bold A a.svg", "\"bold\" is not one of stroke|outline|mesh"},
        {"export a.glb b.glb --rescale nan", "\"nan\" is not a number from 1e-06 to 1000000"},
        {"export a.glb b.glb --rescale 1e39", "--rescale"},
        {"export a.glb b.glb --length -1", "--length"},
        {"export a.glb b.glb --scale inf", "--scale"},
        {"export a.glb b.glb --max-name 4.5", "is not a whole number from 4 to 512"},
        {"export a.glb b.glb --names uniqe", "is not one of digits|"},
        {"export a.glb b.glb --option-words fffffffff,0,0", "hexadecimal"},
        {"export a.glb b.glb --option-words -1,0,0", "hexadecimal"},
        {"export a.glb b.glb --option-words 1,2", "hexadecimal"},
        {"export --format glb a.glb b.gltf", "--format"},
        {"export a.glb - --json", "cannot both go to standard output"},
        {"merge a.glb b.glb --animations walk", "two animations"},
        {"merge a.glb b.glb --animations walk,1 --gap 1", "--sequence"},
        {"merge a.glb b.glb --animations walk,1 --sequence --gap 1e39", "--gap"},
        {"split a.glb b.glb", "--at or --each"},
        {"split a.glb b.glb --at nan", "--at"},
        {"remove-animations a.glb b.glb", "--animations or --unused"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const Outcome run = folder.Zr(c.arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_EQ(run.out, "");
        EXPECT_TRUE(IsOneLine(run.err) && run.err.starts_with("zr: ")) << run.err;
        EXPECT_NE(run.err.find(c.text), std::string::npos) << run.err;
        EXPECT_EQ(folder.Files(), (std::vector<std::string>{"a.glb"}));
    }
}

// A report that cannot be written is a failure.
TEST(Program, FailsWhenStandardOutputIsFull) {
    const CommandFolder folder;
    folder.WriteAnimated("a.glb");
    for (const char* line :
         {"zr info a.glb", "zr animations a.glb", "zr tree a.glb", "zr describe cleaner", "zr help",
          "zr --version", "zr clean --dry-run a.glb --json", "zr export a.glb -"}) {
        SCOPED_TRACE(line);
        const Outcome run = folder.Shell(std::string(line) + " >/dev/full");
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find("zr: standard output: "), std::string::npos) << run.err;
    }
}

// The first Ctrl-C arrives while the scene is being read.
TEST(Program, StopsAtCtrlC) {
    const CommandFolder folder;
    folder.WriteAnimated("a.glb");
    for (const char* command : {"export - b.glb", "clean - b.glb", "merge - b.glb --animations 0,1",
                                "split - b.glb --animation walk --each"}) {
        SCOPED_TRACE(command);
        const Outcome run =
            folder.Shell("mkfifo scene && { " + Program() + " " + command +
                         " <scene & program=$!; exec 3>scene; head -c 20 a.glb >&3; "
                         "while ! grep -q zr /proc/$program/comm; do :; done; "
                         "while ! grep -q '^SigCgt:.*[2367abef]$' /proc/$program/status; do :; done; "
                         "kill -INT $program; tail -c +21 a.glb >&3; exec 3>&-; wait $program; "
                         "status=$?; rm scene; exit $status; }");
        EXPECT_EQ(run.status, 130);
        EXPECT_EQ(run.err, "zr: stopped\n");
        EXPECT_EQ(folder.Files(), (std::vector<std::string>{"a.glb"}));
    }
}

TEST(Suggestion, IsTheNearestSimilarWord) {
    const std::vector<std::string> words{"export", "clean", "text", "tree"};
    EXPECT_EQ(NearestWord("exprot", words), "export");
    EXPECT_EQ(NearestWord("CLEAN", words), "clean");
    EXPECT_EQ(NearestWord("tre", words), "tree");
    EXPECT_EQ(NearestWord("purge", words), "");
    EXPECT_EQ(NearestWord("", words), "");
    EXPECT_EQ(NearestWord(std::string(100000, 'x'), words), "");
}

}  // namespace
}  // namespace zr::test
