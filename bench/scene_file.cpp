// SPDX-License-Identifier: MIT
#include "bench/scene_file.h"

#include <stdlib.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/text.h"
#include "gltf/glb.h"

namespace zr::bench {
namespace {

class SceneText {
public:
    explicit SceneText(const SceneShape& shape) {
        AddAccessor("VEC3", {0, 0, 0, 1, 0, 0, 0, 1, 0}, R"(,"min":[0,0,0],"max":[1,1,0])");
        const std::size_t keys = shape.keysPerNode / 2;
        std::vector<float> times;
        for (std::size_t k = 0; k < keys; ++k) times.push_back(static_cast<float>(k));
        if (keys != 0) AddAccessor("SCALAR", times, Join(R"(,"min":[0],"max":[)", keys - 1, "]"));
        for (std::size_t i = 0; i < shape.nodes; ++i) {
            Node(i, shape);
            if (keys != 0) Channels(i, keys);
        }
    }

    std::string Json() const {
        std::string json = R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[)" + m_roots +
                           R"(]}],"nodes":[)" + m_nodes +
                           R"(],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],"accessors":[)" +
                           m_accessors + R"(],"bufferViews":[{"buffer":0,"byteLength":)" +
                           Join(m_bin.size()) + R"(}],"buffers":[{"byteLength":)" + Join(m_bin.size()) + "}]";
        if (!m_channels.empty()) {
            json += R"(,"animations":[{"name":"move","samplers":[)" + m_samplers + R"(],"channels":[)" +
                    m_channels + "]}]";
        }
        return json + "}";
    }
    const std::string& Bin() const { return m_bin; }

private:
    void AddAccessor(const char* type, const std::vector<float>& values, const std::string& bounds = "") {
        const std::size_t width = type[0] == 'S' ? 1 : static_cast<std::size_t>(type[3] - '0');
        m_accessors += Join(m_accessorCount == 0 ? "" : ",",
                            R"({"bufferView":0,"componentType":5126,"byteOffset":)", m_bin.size(),
                            R"(,"count":)", values.size() / width, R"(,"type":")", type, "\"", bounds, "}");
        m_bin.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof(float));
        ++m_accessorCount;
    }

    void Node(std::size_t i, const SceneShape& shape) {
        if (i % shape.depth == 0) m_roots += Join(i == 0 ? "" : ",", i);
        m_nodes +=
            Join(i == 0 ? "" : ",", R"({"name":"node )", i,
                 R"(","mesh":0,"translation":[0.001,0.002,0],"rotation":[0,0.0009999998,0,0.9999995])");
        if (i + 1 < shape.nodes && (i + 1) % shape.depth != 0)
            m_nodes += Join(R"(,"children":[)", i + 1, "]");
        m_nodes += "}";
    }

    void Channels(std::size_t i, std::size_t keys) {
        std::vector<float> rotations, places;
        for (std::size_t k = 0; k < keys; ++k) {
            const float angle = 0.1f * static_cast<float>(k) + 0.001f * static_cast<float>(i);
            rotations.insert(rotations.end(), {0, std::sin(angle), 0, std::cos(angle)});
            places.insert(places.end(), {angle, 0.002f, static_cast<float>(k)});
        }
        for (const char* path : {"rotation", "translation"}) {
            const bool turns = path[0] == 'r';
            AddAccessor(turns ? "VEC4" : "VEC3", turns ? rotations : places);
            const char* comma = m_samplerCount == 0 ? "" : ",";
            m_samplers += Join(comma, R"({"input":1,"output":)", m_accessorCount - 1, "}");
            m_channels += Join(comma, R"({"sampler":)", m_samplerCount, R"(,"target":{"node":)", i,
                               R"(,"path":")", path, "\"}}");
            ++m_samplerCount;
        }
    }

    std::string m_bin, m_accessors, m_roots, m_nodes, m_samplers, m_channels;
    std::size_t m_accessorCount = 0;
    std::size_t m_samplerCount = 0;
};

}  // namespace

SceneFile::SceneFile(const SceneShape& shape) {
    std::string name = (std::filesystem::temp_directory_path() / "zr-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_folder = name;
    const SceneText scene(shape);
    const std::string json = scene.Json();
    std::vector<std::byte> head;
    const Bytes bin = BytesOf(scene.Bin());
    FileTransaction files;
    files.Add(Path(), gltf::GlbPieces(json, std::span(&bin, 1), {}, "scene.glb", head));
    files.Commit();
}

SceneFile::~SceneFile() {
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

}  // namespace zr::bench
