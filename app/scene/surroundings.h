// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "gltf/references.h"

namespace zr {

// What nodes do to their descendants beyond placing them: hide them, replace them by others, move them as
// physics bodies, exclude them from picking. A node sets its descendants apart from others that look alike
// when it has an extension not known to concern the node alone, or when something else in the document refers
// to it.
class Surroundings {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    explicit Surroundings(const gltf::Document& document);

    // Call for every reference of the document before the first Enter.
    void Note(const gltf::Reference& reference);

    // Call for every node of the scene, parents first. parent: kNone for a root. extensions: the node's, or
    // null. Returns the nearest node that sets this one apart, or kNone. Children of a selector are set apart
    // from each other.
    std::size_t Enter(std::size_t node, std::size_t parent, const gltf::Json* extensions);

    // The place in the document that makes the node set others apart.
    std::string PlaceOf(std::size_t node) const;

private:
    const gltf::Document& m_document;
    std::map<std::size_t, std::string> m_named;  // nodes that something refers to, with its place
    std::vector<std::size_t> m_below;  // by node: itself or the nearest above that sets its children apart
    std::vector<bool> m_isSelector;    // by node
};

}  // namespace zr
