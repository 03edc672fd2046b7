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

// What is compared.
enum class Aspect : std::size_t {
    kStructure,  // nodes, what they carry, names, materials, scenes, animations
    kDrawn,      // faces in world space by material, at rest and in a pose that moves every joint and morph
                 // target
    kNodes,      // where nodes stand over time
    kPoints,     // faces in world space over time
    kViews,      // where cameras and lights look over time
    kValues,     // morph weights and what animation pointers drive over time
};
inline constexpr std::size_t kAspects = 6;
inline constexpr std::array<std::string_view, kAspects> kAspectNames{"structure", "drawn", "nodes",
                                                                     "points",    "views", "values"};

// The greatest difference of one kind, and where and when it is.
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
    std::vector<std::string> structure;  // a line for each difference
    std::vector<std::string> drawn;      // the same: faces that changed, or that one scene alone has
    std::size_t faces = 0;               // compared, at rest
    std::size_t times = 0;               // compared, of all animations
    Greatest point;                      // kDrawn: scene units
    Greatest node;                       // kNodes: of an origin, scene units
    Greatest axis;                       // kNodes: of an axis, relative to its length
    Greatest movedPoint;                 // kPoints: scene units
    Greatest view;                       // kViews: radians
    Greatest value;                      // kValues: relative to 1 or the greater value
    double size = 0;                     // of the first scene: the diagonal of the box around it
    Tolerance tolerance;                 // as used
    std::vector<std::string> unread;     // what could not be compared because its data cannot be read

    bool IsSame() const;
};

}  // namespace zr::compare
