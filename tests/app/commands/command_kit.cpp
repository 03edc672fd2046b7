// SPDX-License-Identifier: MIT
#include "tests/app/commands/command_kit.h"

#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>

namespace zr::test {

std::string Program() {
    const char* const other = std::getenv("ZR_TEST_PROGRAM");
    return other != nullptr ? other : ZR_PROGRAM;
}

bool IsOneLine(const std::string& text) {
    return text.ends_with('\n') && std::count(text.begin(), text.end(), '\n') == 1;
}

Outcome CommandFolder::Zr(const std::string& arguments, const std::string& input) const {
    Write("stdin", input);
    return Shell("zr " + arguments + " <stdin");
}

Outcome CommandFolder::Shell(const std::string& line) const {
    const std::string folder = (*this / "").string();
    // Tests count the files that a run leaves, so its captured streams are stored elsewhere.
    const TemporaryFolder streams;
    const std::string command = "cd " + folder + " && zr() { " + Program() + " \"$@\"; } && { " + line +
                                "; } >" + (streams / "out").string() + " 2>" + (streams / "err").string();
    const int status = std::system(command.c_str());
    std::error_code ignored;
    std::filesystem::remove(*this / "stdin", ignored);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, streams.Read("out"), streams.Read("err")};
}

void CommandFolder::WriteAnimated(const std::string& name) const {
    constexpr const char* kScene = R"({
      "asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0, 1]}],
      "extensionsUsed": ["ZR_scene"],
      "extensions": {"ZR_scene": {"viewports": [{"name": "front", "kind": 2, "animations": [0]}]}},
      "nodes": [{"name": "box", "mesh": 0}, {"name": "lamp"}],
      "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}],
      "animations": [
        {"name": "walk", "samplers": [{"input": 1, "output": 3}],
         "channels": [{"sampler": 0, "target": {"node": 0, "path": "translation"}}]},
        {"name": "run, fast", "samplers": [{"input": 2, "output": 3}],
         "channels": [{"sampler": 0, "target": {"node": 0, "path": "translation"}}]},
        {"name": "still", "samplers": [{"input": 1, "output": 3}],
         "channels": [{"sampler": 0, "target": {"path": "translation"}}]}],
      "accessors": [
        {"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 0]},
        {"bufferView": 0, "byteOffset": 36, "componentType": 5126, "count": 2, "type": "SCALAR", "min": [0], "max": [1]},
        {"bufferView": 0, "byteOffset": 44, "componentType": 5126, "count": 2, "type": "SCALAR", "min": [0], "max": [2]},
        {"bufferView": 0, "byteOffset": 52, "componentType": 5126, "count": 2, "type": "VEC3"}],
      "bufferViews": [{"buffer": 0, "byteLength": 76}],
      "buffers": [{"byteLength": 76}]})";
    Write(name, gltf::test::Glb(kScene, gltf::test::Floats({0, 0, 0, 1, 0, 0, 0, 1, 0}) +
                                            gltf::test::Floats({0, 1}) + gltf::test::Floats({0, 2}) +
                                            gltf::test::Floats({0, 0, 0, 2, 0, 0})));
}

}  // namespace zr::test
