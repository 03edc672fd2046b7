// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "gltf/document.h"

namespace zr::gltf::test {

// A binary container of the two chunks; `bin` empty: of one.
std::string Glb(std::string_view json, std::string_view bin);

// The bytes of floats and of 16-bit indices.
std::string Floats(std::initializer_list<float> values);
std::string Shorts(std::initializer_list<unsigned> values);

// A scene that uses most of the format: two nodes that share a triangle mesh with a morph target, a skin of
// two joints, a camera, a light, textured materials with variants, an animation of three channels (one of
// them by pointer), a second scene, extras. Binary data: kSampleBin.
std::string SampleJson();
std::string SampleBin();

Document FromText(std::string_view json);
inline Document Sample() {
    return Document::FromBytes(BytesOf(Glb(SampleJson(), SampleBin())), "sample.glb");
}

// A folder of its own that goes with the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();

    std::filesystem::path operator/(std::string_view name) const { return m_path / name; }
    std::vector<std::string> Files() const;  // relative names, sorted
    void Write(std::string_view name, std::string_view content) const;
    std::string Read(std::string_view name) const;

private:
    std::filesystem::path m_path;
};

}  // namespace zr::gltf::test
