// SPDX-License-Identifier: MIT
// Names that would break a line, colour a terminal, change the text direction or are not valid text: in
// scenes, of files and on the command line. All output stays on its lines and shows such characters as
// escapes.
#include <gtest/gtest.h>

#include <sstream>

#include "base/text.h"
#include "tests/app/commands/command_kit.h"

namespace zr::test {
namespace {

// The text as a JSON string, and quoted for a shell.
constexpr const char* kJsonName = R"(a\nb\u001B[31m\u0007\r\u2028\u202E\u0085\u007F\"\\)";
constexpr const char* kWord = R"~("$(printf 'a\nb\033[31m\007\r\342\200\250\177\377"')")~";
constexpr const char* kFile = R"~("$(printf 'in\n\033[2J\377.gltf')")~";

// Every line is plain text to a terminal, without control sequences.
void ExpectPrintable(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) EXPECT_EQ(line, Printable(line));
}

std::string Replaced(std::string text, std::string_view what, std::string_view with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
        text.replace(at, what.size(), with);
    return text;
}

// faults: further text in the primitive's attributes.
std::string Scene(const char* faults) {
    return Replaced(
        Join(R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"name": "NAME", "nodes": [0]}],
      "extensionsUsed": ["NAME", "ZR_scene"],
      "extensions": {"NAME": {"NAME": 0},
        "ZR_scene": {"layers": [{"name": "NAME"}], "viewports": [{"name": "NAME", "kind": 2, "animations": [0]}]}},
      "nodes": [{"name": "NAME", "mesh": 0, "extras": {"NAME": 1}}], "materials": [{"name": "NAME"}],
      "meshes": [{"name": "NAME", "primitives": [{"attributes": {"POSITION": 0)",
             faults, R"(}}]}],
      "images": [{"name": "NAME", "uri": "NAME"}],
      "animations": [{"name": "NAME", "samplers": [{"input": 1, "output": 0}],
        "channels": [{"sampler": 0, "target": {"node": 0, "path": "translation"}}]},
        {"name": "NAME 2", "samplers": [{"input": 1, "output": 0}],
        "channels": [{"sampler": 0, "target": {"node": 0, "path": "NAME"}}]}],
      "accessors": [
        {"bufferView": 0, "componentType": 5126, "count": 2, "type": "VEC3", "min": [0, 0, 0], "max": [0, 0, 0]},
        {"bufferView": 0, "byteOffset": 24, "componentType": 5126, "count": 2, "type": "SCALAR", "min": [0], "max": [1]}],
      "bufferViews": [{"buffer": 0, "byteLength": 32}],
      "buffers": [{"byteLength": 32, "uri": "data:;base64,AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAgD8="}]})"),
        "NAME", kJsonName);
}

TEST(HostileNames, StayOnTheirLines) {
    const CommandFolder folder;
    folder.Write("good.gltf", Scene(""));
    folder.Write("bad.gltf", Scene(Join(", \"", kJsonName, "\": 7").c_str()));
    folder.Write("in\n\x1b[2J\xff.gltf", folder.Read("good.gltf"));
    const char* const lines[] = {
        "info FILE",
        "tree FILE",
        "inspect FILE",
        "inspect FILE --format md",
        "animations FILE",
        "compare FILE bad.gltf",
        "export FILE out.glb",
        "export FILE out.json",
        "export FILE WORD",
        "clean FILE out.glb --all",
        "clean --dry-run --explain FILE",
        "merge FILE out.glb --animations 0,1",
        "merge FILE out.glb --from bad.gltf",
        "merge FILE out.glb --animation WORD --animation 0",
        "split FILE out.glb --each",
        "split FILE out.glb --animation WORD",
        "split FILE --out-dir WORD",
        "remove-animations FILE out.glb --animation WORD",
        "reduce FILE out.glb --tolerance 1cm",
        "export FILE out.glb --rename WORD",
        "export FILE out.glb --settings WORD",
        "export FILE out.glb --option-words WORD",
        "clean FILE out.glb --only WORD",
        "info FILE WORD",
        "WORD",
        "--WORD",
        "text WORD out.svg",
        "text A out.svg --font WORD",
        "text A out.svg --font-file WORD",
        "fonts WORD",
        "help WORD",
        "describe WORD",
        "--language WORD info FILE",
        "info bad.gltf",
        "export bad.gltf out.glb",
    };
    for (const char* line : lines) {
        SCOPED_TRACE(line);
        const Outcome run = folder.Shell("zr " + Replaced(Replaced(line, "FILE", kFile), "WORD", kWord));
        EXPECT_GE(run.status, 0);
        EXPECT_LE(run.status, 2);
        ExpectPrintable(run.out);
        ExpectPrintable(run.err);
        const bool differs = std::string_view(line).starts_with("compare") && !run.out.empty();
        if (run.status != 0 && !differs) {
            EXPECT_TRUE(IsOneLine(run.err)) << run.err;
        }
    }
}

}  // namespace
}  // namespace zr::test
