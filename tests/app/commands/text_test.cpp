// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "gltf/document.h"
#include "tests/app/commands/command_kit.h"

namespace {

namespace fs = std::filesystem;

// Runs the program in a folder of its own.
class TextCommand : public testing::Test {
protected:
    TextCommand() : m_folder(fs::temp_directory_path() / ("zr_text_" + std::to_string(getpid()))) {
        fs::create_directory(m_folder);
    }
    ~TextCommand() override { fs::remove_all(m_folder); }

    int RunProgram(const std::string& arguments) {
        std::ofstream(m_folder / "run") << zr::test::Program() << ' ' << arguments;
        const std::string command = "cd " + m_folder.string() + " && bash run >output 2>errors";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int Run(const std::string& arguments) { return RunProgram("text " + arguments); }

    std::string Read(const char* name) const {
        std::ifstream file(m_folder / name, std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

    fs::path m_folder;
};

// The text's numbers begin with these, up to the differences between systems' glyph hinting.
void ExpectNumbers(const std::string& text, const std::vector<double>& wanted) {
    constexpr double kGrid = 0.5;
    std::vector<double> found;
    for (const char* at = text.c_str(); *at != '\0' && found.size() < wanted.size();) {
        char* end = nullptr;
        const double number = std::strtod(at, &end);
        if (end != at) found.push_back(number);
        at = std::max<const char*>(end, at + 1);
    }
    ASSERT_EQ(found.size(), wanted.size()) << text;
    for (std::size_t i = 0; i < wanted.size(); ++i) EXPECT_NEAR(found[i], wanted[i], kGrid) << text;
}

TEST_F(TextCommand, WritesEveryFormat) {
    const std::string font = "--font 'DejaVu Sans' ";
    EXPECT_EQ(Run(font + "l l.json"), 0) << Read("errors");
    EXPECT_TRUE(Read("l.json").starts_with("{\"contours\": [\n{\"letter\": 0, \"points\": [["));
    EXPECT_EQ(Run(font + "--style mesh l l.obj"), 0);
    EXPECT_TRUE(Read("l.obj").starts_with("v ") && Read("l.obj").ends_with("\nf 1 2 3\nf 2 1 4\n"));
    ExpectNumbers(Read("l.obj"),
                  {22.09, 0, 0, 11.31, 91.17, 0, 11.31, 0, 0, 22.09, 91.17, 0, 1, 2, 3, 2, 1, 4});
    EXPECT_EQ(Run("--style stroke '|' l.svg"), 0);
    EXPECT_NE(Read("l.svg").find("<path d=\"M4 -25 L4 7\"/>"), std::string::npos) << Read("l.svg");

    // The scenes pass every check of the reader and hold the triangles and the segments.
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
        {"A out.svg --height 20000", 2, "-2000 to 2000"},
        {"A out.svg --size nan", 2, "0.001 to 1000000"},
        {"A out.svg --cap-height inf", 2, "0.001 to 1000000"},
        {"A out.svg --cap-height 5 --size 3", 2, "--size"},
        {"A out.svg --font-file /dev/null", 1, "/dev/null: "},
        {"--file missing.txt out.svg", 1, "missing.txt"},
        {"--file long.txt out.svg --max-memory 1", 1, "the budget of 1 MiB"},
        {"A out.obj", 2, "--style mesh"},
        {"A out.stl", 2, "--depth"},
        {"A out.svg --depth 3", 2, "--depth"},
        {"A out.stl --depth 3 --style stroke", 2, "--style stroke"},
        {"A out.xyz", 2, "out.xyz"},
        {"A", 2, "TEXT"},
        {"out.svg", 2, "TEXT"},
    };
    std::ofstream(m_folder / "long.txt") << std::string(10'000, 'g');
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(Run(c.arguments), c.status);
        EXPECT_NE(Read("errors").find(c.text), std::string::npos) << Read("errors");
        for (const char* name : {"out.svg", "out.obj", "out.stl", "out.xyz"})
            EXPECT_FALSE(fs::exists(m_folder / name));
    }
    // Only here can an argument contain invalid UTF-8.
    if (std::getenv("ZR_TEST_PROGRAM") == nullptr) {
        EXPECT_EQ(Run("'A\xFF' out.svg"), 1);
        EXPECT_NE(Read("errors").find("TEXT: byte 1: "), std::string::npos) << Read("errors");
    }
    EXPECT_EQ(Run("A out.svg --font 'No Such Font' --substitute"), 0);
    EXPECT_NE(Read("errors").find("No Such Font"), std::string::npos);
    EXPECT_TRUE(fs::exists(m_folder / "out.svg"));
}

TEST_F(TextCommand, ReadsTheLinesOfAFile) {
    std::ofstream(m_folder / "lines.txt") << "\xEF\xBB\xBFl\nl\r\n";
    ASSERT_EQ(Run("--font 'DejaVu Sans' --file lines.txt out.json"), 0) << Read("errors");
    // The second line starts at the left again, 10 units below the first.
    ExpectNumbers(Read("out.json"), {0, 11.31, 101.17, 22.09, 101.17, 22.09, 10, 11.31, 10, 11.31, 101.17,
                                     3, 11.31, 91.17,  22.09, 91.17,  22.09, 0,  11.31, 0,  11.31, 91.17});
}

TEST_F(TextCommand, ReadsManyFilesAndStandardStreams) {
    fs::create_directory(m_folder / "texts");
    for (const char* name : {"one", "two", "three"})
        std::ofstream(m_folder / "texts" / (std::string(name) + ".txt")) << name << "\n";
    ASSERT_EQ(Run("--style stroke --format dxf --jobs 3 --out-dir out texts"), 0) << Read("errors");
    for (const char* name : {"one", "two", "three"}) {
        ASSERT_EQ(Run(std::string("--style stroke ") + name + " alone.dxf"), 0);
        EXPECT_EQ(Read((std::string("out/") + name + ".dxf").c_str()), Read("alone.dxf"));
    }
    EXPECT_EQ(Run("--style stroke --format dxf --file - - <texts/three.txt"), 0) << Read("errors");
    EXPECT_EQ(Read("output"), Read("alone.dxf"));

    ASSERT_EQ(Run("--style stroke --format dxf --out-dir out texts --json"), 0) << Read("errors");
    EXPECT_NE(Read("output").find("\"output\": \"out/one.dxf\""), std::string::npos);

    std::ofstream(m_folder / "texts/three.txt") << "\xFF";
    EXPECT_EQ(Run("--style stroke --format svg --keep-going --out-dir out texts"), 1);
    EXPECT_NE(Read("errors").find("zr: texts/three.txt: byte 0: the text is not UTF-8\n"), std::string::npos);
    EXPECT_NE(Read("errors").find("2 done, 1 failed"), std::string::npos);
    for (const char* wrong : {"--out-dir out texts", "l -", "l out.svg --format svg",
                              "l - --format svg --metrics", "--out-dir out texts --format svg --metrics"})
        EXPECT_EQ(Run(wrong), 2) << wrong;
}

TEST_F(TextCommand, AcceptsATextThatBeginsWithADash) {
    const auto letters = [&](const char* arguments) {
        EXPECT_EQ(Run(arguments), 0) << arguments << ": " << Read("errors");
        const std::string metrics = Read("output");
        std::string text;
        for (std::size_t at = 0; (at = metrics.find("\"code\": ", at)) != metrics.npos; ++at)
            text += static_cast<char>(std::stoi(metrics.substr(at + 8)));
        return text;
    };
    EXPECT_EQ(letters("-hello --metrics"), "-hello");
    EXPECT_EQ(letters("--height -24 '-40 C' --bold --metrics out.svg"), "-40 C");
    EXPECT_EQ(letters("--metrics --style=stroke -- --help"), "--help");
    EXPECT_EQ(Run("-h"), 0);
    EXPECT_NE(Read("output").find("--metrics"), std::string::npos);
}

TEST_F(TextCommand, DrawsForMachines) {
    ASSERT_EQ(Run("H out.svg --style stroke --units cm --cap-height 21"), 0) << Read("errors");
    EXPECT_TRUE(Read("out.svg").starts_with(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"18cm\" height=\"25cm\" viewBox=\"2 -23 18 25\">"))
        << Read("out.svg");
    ASSERT_EQ(Run("$'i\nm' out.DXF --style stroke --align right"), 0) << Read("errors");
    EXPECT_NE(Read("out.DXF").find("VERTEX\n8\nSTROKES\n10\n-4\n20\n43\n"), std::string::npos);
    // A font that is not installed, and a depth that implies a mesh.
    ASSERT_EQ(Run("l out.obj --depth 3 "
                  "--font-file /usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf"),
              0)
        << Read("errors");
    const std::string solid = Read("out.obj");
    EXPECT_EQ(std::count(solid.begin(), solid.end(), 'v') % 2, 0);
    EXPECT_NE(solid.find(" 3\n"), std::string::npos);
    // A right-to-left digit is drawn, with a note.
    EXPECT_EQ(Run("$'\\u05D0' out.svg --font 'DejaVu Sans'"), 0);
    EXPECT_NE(Read("errors").find("right-to-left"), std::string::npos);
}

TEST_F(TextCommand, ListsFonts) {
    ASSERT_EQ(RunProgram("fonts 'dejavu sans c'"), 0);
    EXPECT_EQ(Read("output"), "DejaVu Sans Condensed: Book, Oblique, Bold, Bold Oblique\n");
    ASSERT_EQ(RunProgram("fonts condensed --json"), 0);
    EXPECT_NE(Read("output").find("\"family\": \"DejaVu Serif Condensed\""), std::string::npos);
}

}  // namespace
