// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "gltf/document.h"

namespace {

namespace fs = std::filesystem;

// Runs the program in a folder of its own.
class TextCommand : public testing::Test {
protected:
    TextCommand() : m_folder(fs::temp_directory_path() / ("zr_text_" + std::to_string(getpid()))) {
        fs::create_directory(m_folder);
    }
    ~TextCommand() override { fs::remove_all(m_folder); }

    int Run(const std::string& arguments) {
        const std::string command =
            "cd " + m_folder.string() + " && " ZR_PROGRAM " text " + arguments + " 2>errors";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    std::string Read(const char* name) const {
        std::ifstream file(m_folder / name, std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

    fs::path m_folder;
};

TEST_F(TextCommand, WritesEveryFormat) {
    const std::string font = "--font 'DejaVu Sans' ";
    EXPECT_EQ(Run(font + "l l.json"), 0) << Read("errors");
    EXPECT_TRUE(Read("l.json").starts_with("{\"contours\": [\n{\"letter\": 0, \"points\": [["));
    EXPECT_EQ(Run(font + "--style mesh l l.obj"), 0);
    EXPECT_EQ(Read("l.obj"),
              "v 22.089844 0 0\nv 11.308594 91.171875 0\nv 11.308594 0 0\nv 22.089844 91.171875 0\n"
              "f 1 2 3\nf 2 1 4\n");
    EXPECT_EQ(Run("--style stroke '|' l.svg"), 0);
    EXPECT_NE(Read("l.svg").find("<path d=\"M4 -25 L4 7\"/>"), std::string::npos) << Read("l.svg");

    // Scenes that a reader with every check accepts, and that hold the triangles and the segments.
    for (const auto& [arguments, file, mode, corners] :
         {std::tuple{"--style mesh l", "l.glb", 4, 6}, {"l", "l.gltf", 1, 8}}) {
        ASSERT_EQ(Run(font + arguments + " " + file), 0) << Read("errors");
        const auto document = zr::gltf::Document::Load(m_folder / file);
        const zr::gltf::Json* primitive =
            &document.Elements(zr::gltf::Kind::kMesh)[0].Find("primitives")->Items()[0];
        EXPECT_EQ(primitive->Find("mode")->Number(), mode);
        EXPECT_EQ(document.Elements(zr::gltf::Kind::kAccessor)[1].Find("count")->Number(), corners);
    }
    EXPECT_EQ(Run("' ' empty.glb --style mesh"), 0);
    EXPECT_TRUE(zr::gltf::Document::Load(m_folder / "empty.glb").Elements(zr::gltf::Kind::kMesh).empty());
}

TEST_F(TextCommand, NamesWhatIsMissingAndWritesNothing) {
    const struct {
        const char* arguments;
        int status;
        const char* text;
    } cases[] = {
        {"A out.svg --font 'No Such Font'", 1, "\"No Such Font\" is not installed"},
        {"'A\xE4\xB8\x80' out.svg --font 'DejaVu Sans'", 1, "U+4E00"},
        {"'\xC3\xA9' out.svg --style stroke", 1, "U+00E9"},
        {"A out.svg --height 20000", 1, "U+0041"},
        {"--file missing.txt out.svg", 1, "missing.txt"},
        {"A out.obj", 2, "--style mesh"},
        {"A out.xyz", 2, "out.xyz"},
        {"out.svg", 2, "TEXT"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(Run(c.arguments), c.status);
        EXPECT_NE(Read("errors").find(c.text), std::string::npos) << Read("errors");
        EXPECT_FALSE(fs::exists(m_folder / "out.svg") || fs::exists(m_folder / "out.obj"));
    }
    EXPECT_EQ(Run("A out.svg --font 'No Such Font' --substitute"), 0);
    EXPECT_NE(Read("errors").find("No Such Font"), std::string::npos);
    EXPECT_TRUE(fs::exists(m_folder / "out.svg"));
}

TEST_F(TextCommand, TakesTheLinesOfAFile) {
    std::ofstream(m_folder / "lines.txt") << "\xEF\xBB\xBFl\nl\r\n";
    ASSERT_EQ(Run("--font 'DejaVu Sans' --file lines.txt out.json"), 0) << Read("errors");
    // The second line starts at the left again, 10 units below the first.
    EXPECT_NE(Read("out.json").find("{\"letter\": 0, \"points\": [[11.308594, 101.171875]"),
              std::string::npos)
        << Read("out.json");
    EXPECT_NE(Read("out.json").find("{\"letter\": 3, \"points\": [[11.308594, 91.171875]"),
              std::string::npos);
}

}  // namespace
