// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <unordered_map>

#include "app/scene/document_changes.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Curves that replace the keys of tracks: by key type for a transform, the first one for a curve of numbers.
// None keeps the keys; a curve without keys removes them.
using TrackCurves = std::array<std::optional<Curve>, 3>;
using ReplacedKeys = std::unordered_map<const vl::zr::Track*, TrackCurves>;

// Keys for a node that nothing moves in the scene, by key type.
struct AddedKeys {
    std::size_t node;  // in the document; beyond its nodes for a new one
    const kernix::AnimationModel* animation;
    std::array<Curve, 3> curves;
};

// What changed in the scene since it was made from its document, with the replaced keys instead of the
// scene's.
DocumentChanges ChangesOf(const LoadedScene& loaded, ReplacedKeys replaced = {},
                          std::vector<AddedKeys> added = {});

}  // namespace zr
