// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/operations/compare/drawn_comparison.h"

namespace zr::compare {

// The aspects of a comparison.
enum class Aspect : std::size_t {
    kStructure,  // nodes and their content, names, materials, scenes, animations
    kDrawn,      // faces in world space by material, at rest and in a pose that moves every joint and morph
                 // target
    kNodes,      // node transforms over time
    kPoints,     // faces in world space over time
    kViews,      // directions of cameras and lights over time
    kValues,     // morph weights and pointer values over time
};
inline constexpr std::size_t kAspects = 6;
inline constexpr std::array<std::string_view, kAspects> kAspectNames{"structure", "drawn", "nodes",
                                                                     "points",    "views", "values"};

// The greatest difference of one kind, with its place and time.
struct Greatest {
    double amount = 0;
    std::string where;      // a node, or a place in the first document
    std::string animation;  // empty: at rest
    double time = 0;        // seconds

    void Note(double other, const std::function<std::string()>& place, std::string_view animation,
              double time);
};

struct CompareResult {
    std::array<bool, kAspects> compared{};
    std::array<bool, kAspects> same{true, true, true, true, true, true};
    std::vector<std::string> structure;  // one line per difference
    std::vector<std::string> drawn;      // likewise: faces that changed or are in one scene only
    std::size_t faces = 0;               // compared, at rest
    std::size_t times = 0;               // compared, of all animations
    Greatest point;                      // kDrawn: scene units
    Greatest node;                       // kNodes: of an origin, scene units
    Greatest axis;                       // kNodes: of an axis, relative to its length
    Greatest movedPoint;                 // kPoints: scene units
    Greatest view;                       // kViews: radians
    Greatest value;                      // kValues: relative to the greater value, at least 1
    double size = 0;                     // of the first scene: diagonal of its bounding box
    Tolerance tolerance;                 // as used
    std::vector<std::string> unread;     // places whose data cannot be read, and was not compared

    bool IsSame() const;
};

}  // namespace zr::compare
