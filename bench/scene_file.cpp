// SPDX-License-Identifier: MIT
#include "bench/scene_file.h"

#include <stdlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/text.h"
#include "bench/glb_builder.h"

namespace zr::bench {
namespace {

constexpr std::size_t kBlock = 11;  // a root, a group, six meshes, three nodes that show nothing
constexpr std::size_t kMeshesInBlock = 6;
constexpr std::size_t kKeysPerLeg = 32;
constexpr float kKeysPerSecond = 30;

class SceneMaker {
public:
    explicit SceneMaker(const SceneShape& shape) : m_shape(shape) {
        for (std::size_t i = 0; i < shape.materials; ++i) AddMaterial(i);
        if (shape.depth != 0) {
            AddChains();
        } else {
            AddBlocks();
        }
        for (std::size_t i = 0; i < shape.animations; ++i) AddAnimation(i);
    }

    void Write(const std::filesystem::path& file) const { m_file.Write(file); }

private:
    void AddMaterial(std::size_t i) {
        const std::size_t look = i / 2;
        m_file.Add("materials",
                   Join(R"({"name":"material )", i, R"(","pbrMetallicRoughness":{"baseColorFactor":[0.)",
                        look % 97, ",0.", look / 97, ",0.5,1]}}"));
    }

    // Three by three vertices in a square, at a different height for each mesh.
    std::size_t AddMesh(std::size_t number) {
        std::vector<float> positions;
        std::vector<std::uint16_t> indices;
        for (std::uint16_t y = 0; y < 3; ++y) {
            for (std::uint16_t x = 0; x < 3; ++x) {
                positions.insert(positions.end(), {static_cast<float>(x) / 2, static_cast<float>(y) / 2,
                                                   static_cast<float>(number) / 16});
                if (x == 2 || y == 2) continue;
                const auto at = static_cast<std::uint16_t>(3 * y + x);
                for (const int corner : {0, 1, 3, 1, 4, 3})
                    indices.push_back(static_cast<std::uint16_t>(at + corner));
            }
        }
        const std::size_t points = m_file.AddFloats("VEC3", positions, true);
        const std::size_t order = m_file.AddIndices(indices);
        const std::string material =
            m_shape.materials == 0 ? "" : Join(R"(,"material":)", number % m_shape.materials);
        return m_file.Add("meshes", Join(R"({"primitives":[{"attributes":{"POSITION":)", points,
                                         R"(},"indices":)", order, material, "}]}"));
    }

    std::size_t AddNode(const std::string& rest) {
        return m_file.Add("nodes", Join(R"({"name":"node )", m_nodes++, "\"", rest, "}"));
    }

    void AddChains() {
        const std::size_t mesh = AddMesh(0);
        for (std::size_t i = 0; i < m_shape.nodes; ++i) {
            const bool ends = (i + 1) % m_shape.depth == 0 || i + 1 == m_shape.nodes;
            const std::size_t node =
                AddNode(Join(R"(,"mesh":)", mesh,
                             R"(,"translation":[0.001,0.002,0],"rotation":[0,0.0009999998,0,0.9999995])",
                             ends ? "" : Join(R"(,"children":[)", i + 1, "]")));
            if (i % m_shape.depth == 0) m_file.AddRoot(node);
            m_moving.push_back(node);
        }
    }

    void AddBlocks() {
        const std::size_t blocks = m_shape.nodes / kBlock;
        std::size_t repeatsLeft = m_shape.repeats, unique = 0;
        for (std::size_t block = 0; block < blocks; ++block) {
            std::string meshes, empties;
            const std::size_t root = block * kBlock;
            const std::size_t repeatsHere =
                std::min((repeatsLeft + blocks - block - 1) / (blocks - block), kMeshesInBlock / 2);
            repeatsLeft -= repeatsHere;
            AddNode(Join(R"(,"translation":[)", block % 1000, ",0,", block / 1000, R"(],"children":[)",
                         root + 1, ",", root + 2, ",", root + 3, ",", root + 4, "]"));
            AddNode(Join(R"(,"children":[)", root + 5, ",", root + 6, ",", root + 7, ",", root + 8, ",",
                         root + 9, ",", root + 10, "]"));
            for (std::size_t i = 0; i < 3; ++i) AddNode("");
            const std::size_t first = unique;
            unique += kMeshesInBlock - repeatsHere;
            for (std::size_t i = 0; i < kMeshesInBlock; ++i) {
                const bool repeats = i >= kMeshesInBlock - repeatsHere;
                AddNode(Join(R"(,"mesh":)",
                             AddMesh(repeats ? first + i - (kMeshesInBlock - repeatsHere) : first + i)));
            }
            m_file.AddRoot(root);
            m_moving.push_back(root);
        }
    }

    void AddAnimation(std::size_t number) {
        const std::size_t keys = m_shape.keysPerChannel;
        const std::size_t channels = m_shape.keys / m_shape.animations / keys;
        std::vector<float> times;
        for (std::size_t i = 0; i < keys; ++i) times.push_back(static_cast<float>(i) / kKeysPerSecond);
        const std::size_t input = m_file.AddFloats("SCALAR", times);
        std::string samplerList, channelList;
        for (std::size_t i = 0; i < channels; ++i) {
            const bool turns = i % 2 == 0;
            const std::size_t output =
                turns ? m_file.AddFloats("VEC4", Turns(keys)) : m_file.AddFloats("VEC3", Moves(keys));
            const std::size_t node = m_moving[(i / 2) % m_moving.size()];
            samplerList += Join(i == 0 ? "" : ",", R"({"input":)", input, R"(,"output":)", output, "}");
            channelList += Join(i == 0 ? "" : ",", R"({"sampler":)", i, R"(,"target":{"node":)", node,
                                R"(,"path":")", turns ? "rotation" : "translation", "\"}}");
        }
        m_file.Add("animations", Join(R"({"name":"move )", number, R"(","samplers":[)", samplerList,
                                      R"(],"channels":[)", channelList, "]}"));
    }

    std::vector<float> Moves(std::size_t keys) {
        std::vector<float> values;
        float place = 0, step = 0;
        for (std::size_t i = 0; i < keys; ++i) {
            if (i % kKeysPerLeg == 0) step = static_cast<float>(m_random() % 8) / 32;
            place += step;
            values.insert(values.end(), {place, 0, -place});
        }
        return values;
    }

    std::vector<float> Turns(std::size_t keys) {
        std::vector<float> values;
        double angle = 0, step = 0;
        for (std::size_t i = 0; i < keys; ++i) {
            if (i % kKeysPerLeg == 0) step = static_cast<double>(m_random() % 8) / 64;
            angle += step;
            values.insert(values.end(), {0, static_cast<float>(std::sin(angle / 2)), 0,
                                         static_cast<float>(std::cos(angle / 2))});
        }
        return values;
    }

    const SceneShape& m_shape;
    GlbBuilder m_file;
    std::size_t m_nodes = 0;
    std::vector<std::size_t> m_moving;
    std::mt19937 m_random{3};
};

}  // namespace

void WriteScene(const std::filesystem::path& file, const SceneShape& shape) {
    SceneMaker(shape).Write(file);
}

SceneFile::SceneFile(const SceneShape& shape) {
    std::string name = (std::filesystem::temp_directory_path() / "zr-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_folder = name;
    WriteScene(Path(), shape);
}

SceneFile::~SceneFile() {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

}  // namespace zr::bench
