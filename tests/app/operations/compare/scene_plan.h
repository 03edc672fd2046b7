// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>
#include <vector>

#include "gltf/document.h"
#include "tests/base/random.h"

namespace zr::test {

// A scene in the abstract: the same plan can be written as documents with different orders and layouts.
struct ScenePlan {
    struct Material {
        std::string name;
        std::array<float, 4> color;
        float roughness;
    };
    struct Vertex {
        std::array<float, 3> position, normal;
        std::array<float, 2> texture;
        std::array<float, 3> target;  // offset of the morph target
        std::array<unsigned, 4> joints;
        std::array<float, 4> weights;
    };
    struct Mesh {
        std::string name;
        std::vector<Vertex> vertices;
        std::vector<unsigned> indices;
        std::size_t material;
    };
    struct Node {
        std::string name;
        int parent = -1;
        std::array<float, 3> translation{0, 0, 0};
        std::array<float, 4> rotation{0, 0, 0, 1};
        std::array<float, 3> scale{1, 1, 1};
        int mesh = -1, camera = -1, light = -1;
        bool isSkinned = false;
        float weight = 0;
        unsigned scene = 0;  // of a root: the index of its scene
        int extra = 0;
    };
    struct Track {
        std::size_t node;
        std::string path, interpolation;  // path "roughness": of `material`, by pointer
        std::vector<float> times, values;
        std::size_t material = 0;
    };
    struct Animation {
        std::string name;
        std::vector<Track> tracks;
    };

    struct Layer {
        std::string name;
        std::vector<std::size_t> nodes;
    };
    struct Viewport {
        std::string name;
        unsigned kind;  // 2 plays animations
        std::vector<std::size_t> animations;
    };

    std::vector<Material> materials;
    std::vector<Mesh> meshes;
    std::vector<Node> nodes;
    std::vector<std::size_t> joints;  // of the one skin
    std::vector<float> cameras;       // fields of view
    std::vector<float> lights;        // intensities
    std::vector<Animation> animations;
    std::vector<Layer> layers;
    std::vector<Viewport> viewports;
    unsigned shownScene = 0;
};

// Forty nodes with everything except layers, viewports and pointers.
ScenePlan MakePlan(Random& random);

// A mesh of twelve vertices, skinned to four joints; every vertex is in a face.
ScenePlan::Mesh MakeMesh(Random& random, std::size_t number, std::size_t material);

// Writes the plan as a document: elements, children, vertices and faces in random order, buffers with random
// names, transforms of nodes that are not animated either as matrices or decomposed.
gltf::Document Write(const ScenePlan& plan, Random& random);

}  // namespace zr::test
