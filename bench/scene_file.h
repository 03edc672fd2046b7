// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>

namespace zr::bench {

struct SceneShape {
    std::size_t nodes;
    std::size_t depth;            // of each chain of nodes; 1: all at the top
    std::size_t keysPerNode = 0;  // half of them rotations, half of them translations
};

// A binary glTF file of triangles, in a folder of its own that goes with the object.
class SceneFile {
public:
    explicit SceneFile(const SceneShape& shape);
    ~SceneFile();

    SceneFile(const SceneFile&) = delete;
    SceneFile& operator=(const SceneFile&) = delete;

    std::filesystem::path Path() const { return m_folder / "scene.glb"; }
    std::filesystem::path Beside(const char* name) const { return m_folder / name; }

private:
    std::filesystem::path m_folder;
};

}  // namespace zr::bench
