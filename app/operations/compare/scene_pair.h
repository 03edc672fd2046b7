// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "app/operations/compare/drawn.h"
#include "app/operations/compare/evaluator.h"
#include "app/operations/compare/material_classes.h"
#include "app/operations/compare/material_pairs.h"
#include "app/operations/compare/node_matching.h"
#include "gltf/document.h"
#include "gltf/walk.h"

namespace zr::compare {

// Two documents, which of their elements match, and what each draws in its evaluator's current pose.
struct ScenePair {
    // The documents must outlive it. Throws gltf::Error.
    ScenePair(const gltf::Document& a, const gltf::Document& b);
    ScenePair(const ScenePair&) = delete;
    ScenePair& operator=(const ScenePair&) = delete;

    const gltf::Document& a;
    const gltf::Document& b;
    Evaluator evaluatorA, evaluatorB;
    const NodeMatching nodes;
    const MaterialMatching materials;
    const std::vector<std::size_t> animations, scenes;  // partners of the first document's; or kNone
    const Drawn drawnA, drawnB;                         // paired nodes first, in the same order
    const MaterialPairs materialPairs;

    void SetRest();
    // Whether element x of the first document matches y of the second.
    bool AreSame(gltf::Kind kind, std::size_t x, std::size_t y) const;
    // Describes a node of the first document.
    std::string NodeText(std::size_t node) const;
};

// 'node "Lid" (/nodes/3)', or 'node 3' if it has no name.
std::string NodeText(const gltf::Document& document, std::size_t node);

// what: "mesh", "skin", "camera" or "light".
bool Carries(const gltf::Json& node, std::string_view what);

}  // namespace zr::compare
