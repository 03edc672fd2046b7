// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "gltf/document.h"
#include "tests/base/temporary_folder.h"

namespace zr::gltf::test {

// A binary container of the two chunks, or of one when `bin` is empty.
std::string Glb(std::string_view json, std::string_view bin);

// The bytes of floats and of 16-bit indices.
std::string Floats(std::initializer_list<float> values);
std::string Shorts(std::initializer_list<unsigned> values);

// A scene that uses most of the format: two nodes that share a triangle mesh with a morph target, a skin of
// two joints, a camera, a light, textured materials with variants, an animation of three channels (one of
// them by pointer), a second scene, extras. Binary data: kSampleBin.
std::string SampleJson();
std::string SampleBin();
// The same as text: the binary data is at the URI `buffer`, the image in "my images/a.png", and a
// second image is missing.
std::string TextScene(std::string_view buffer);

Document FromText(std::string_view json);
inline Document Sample() {
    return Document::FromBytes(BytesOf(Glb(SampleJson(), SampleBin())), "sample.glb");
}

inline std::string TextOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

using zr::test::TemporaryFolder;

}  // namespace zr::gltf::test
