// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>

namespace zr::bench {

// A scene of nodes in blocks of eleven: a root with a group of six meshes below it and three nodes that show
// nothing. Motion is baked at 30 keys a second, linear for about a second at a time.
struct SceneShape {
    std::size_t nodes = 0;
    std::size_t repeats = 0;    // meshes repeated at the same place, with separate data
    std::size_t materials = 0;  // used in turn; half of them look like the other half
    std::size_t animations = 0;
    std::size_t keys = 0;   // of all animations, in channels of keysPerChannel
    std::size_t depth = 0;  // other than 0: chains of that many nodes that all show the same mesh
    std::size_t keysPerChannel = 100;

    // The scenes that the tables of docs/performance.md measure.
    static SceneShape Large() { return {100'000, 10'000, 1'000, 10, 1'000'000}; }
    static SceneShape ExtraLarge() { return {1'000'000, 100'000, 1'000, 10, 1'000'000}; }
    static SceneShape ManyKeys() { return {10'000, 0, 100, 10, 10'000'000, 0, 1000}; }
    static SceneShape Deep() { return {20'000, 0, 1, 1, 20'000, 20'000}; }
};

// Writes the scene as a binary container. Equal shapes give equal files.
void WriteScene(const std::filesystem::path& file, const SceneShape& shape);

// The scene in a temporary folder, which is deleted with the object.
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
