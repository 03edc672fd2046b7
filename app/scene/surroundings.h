// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "gltf/references.h"

namespace zr {

// What nodes do to those below them beyond placing them: hide them, replace them by others, move them as
// bodies, keep them from being picked. Whatever an extension of a node could do that is not known to leave
// the nodes below alone, and whatever something else in the document could do by referring to the node, sets
// these apart from others that look alike.
class Surroundings {
public:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    explicit Surroundings(const gltf::Document& document);

    // Takes every reference of the document, before the first Enter.
    void Note(const gltf::Reference& reference);

    // Nodes of the scene, parents first; parent: kNone at the top; extensions: the node's, or null. The
    // nearest node that sets this one apart, or kNone. Children of a selector are set apart from each other.
    std::size_t Enter(std::size_t node, std::size_t parent, const gltf::Json* extensions);

    // Where in the document it is said that the node sets others apart.
    std::string PlaceOf(std::size_t node) const;

private:
    const gltf::Document& m_document;
    std::map<std::size_t, std::string> m_named;  // nodes that something refers to, with its place
    std::vector<std::size_t> m_below;            // by node: the nearest that sets what is below it apart
    std::vector<bool> m_isSelector;              // by node
};

}  // namespace zr
