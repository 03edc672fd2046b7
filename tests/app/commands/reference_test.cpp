// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/commands/reference/completions.h"
#include "app/commands/reference/pages.h"
#include "base/text.h"
#include "tests/app/commands/command_kit.h"

namespace zr::test {
namespace {

const CommandTable& Program() {
    static const CommandTable program = ReadCommandTable();
    return program;
}

const CommandTable& Command(const std::string& name) {
    for (const CommandTable& command : Program().commands) {
        if (command.name == name) return command;
    }
    throw std::runtime_error("no command " + name);
}

// The completions that a shell would offer for the last word.
std::string Completed(const CommandFolder& folder, const std::string& words) {
    return folder
        .Shell("bash -c 'source ./zr.bash; compopt() { :; }; COMP_WORDS=(" + words +
               "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _zr; echo \"${COMPREPLY[*]}\"'")
        .out;
}

TEST(Reference, BashCompletesCommandsOptionsAndWords) {
    const CommandFolder folder;
    folder.Write("zr.bash", BashCompletion(Program()));
    EXPECT_EQ(Completed(folder, "zr exp"), "export\n");
    EXPECT_EQ(Completed(folder, "zr help remo"), "remove-animations\n");
    EXPECT_EQ(Completed(folder, "zr describe \"\""), "cleaner\n");
    EXPECT_EQ(Completed(folder, "zr --quiet export a.glb --mer"), "--merge-keys\n");
    EXPECT_EQ(Completed(folder, "zr export --up \"\""), "y z\n");
    EXPECT_EQ(Completed(folder, "zr merge a.glb b.glb --keep r"), "rotation\n");
    EXPECT_EQ(Completed(folder, "zr merge a.glb b.glb --keep position,r"), "position,rotation\n");
    EXPECT_EQ(Completed(folder, "zr export --up ="), "y z\n");
    EXPECT_EQ(Completed(folder, "zr inspect --format = c"), "csv\n");
    EXPECT_EQ(Completed(folder, "zr text x a"), "\n") << "files are the shell's";
    folder.Write("a b.glb", "");
    folder.Write("a.txt", "");
    EXPECT_EQ(Completed(folder, "zr info a"), "a b.glb\n");
    EXPECT_EQ(Completed(folder, "zr merge a b --match \"\""), "path name a b.glb a.txt zr.bash\n");
    EXPECT_EQ(Completed(folder, "zr merge --from x --from a"), "a b.glb\n");
}

TEST(Reference, EveryOptionIsInEveryFormat) {
    const std::string zsh = ZshCompletion(Program()), fish = FishCompletion(Program());
    for (const CommandTable& command : Program().commands) {
        const std::string manual = ManualPage(Program(), command), page = DocumentPage(Program(), command);
        for (const OptionHeading& heading : command.headings) {
            for (const OptionEntry& option : heading.options) {
                const std::string& name = option.names.back();
                SCOPED_TRACE(command.name + " " + name);
                EXPECT_NE(zsh.find(Join(name, option.value.empty() ? "[" : "=[")), std::string::npos);
                EXPECT_NE(fish.find(" -l " + name.substr(2) + " "), std::string::npos);
                EXPECT_NE(page.find(name), std::string::npos);
                EXPECT_FALSE(option.text.empty());
            }
        }
        EXPECT_TRUE(manual.starts_with(".TH ZR-")) << manual;
        EXPECT_FALSE(command.footer.empty()) << command.name;
    }
}

// A line that begins with a dot would be a request, and a backslash an escape.
TEST(Reference, ManualPagesEscapeTheirText) {
    CommandTable program{"zr", "", "x", {"zr"}, {}, {}, ".sh \\fB\n'quoted'", {}};
    const std::string page = ManualPage(program, program);
    EXPECT_NE(page.find("\n\\&.sh \\efB\n\\&'quoted'\n"), std::string::npos) << page;
}

TEST(Reference, ValuesHaveTheirKinds) {
    std::string kinds;
    for (const OptionHeading& heading : Command("export").headings) {
        for (const OptionEntry& option : heading.options) {
            for (const char* name :
                 {"--out-dir", "--settings", "--up", "--scale", "--flip", "--rename", "--scene"}) {
                if (option.names.back() == name)
                    kinds += std::string(name) + std::to_string(static_cast<int>(option.kind)) +
                             (option.isRepeatable ? "+ " : " ");
            }
        }
    }
    EXPECT_EQ(kinds, "--scene4 --settings1 --up4 --scale6 --flip0 --rename6+ --out-dir3 ");
}

}  // namespace
}  // namespace zr::test
