// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <unordered_map>

#include "app/scene/document_changes.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Curves that stand in the place of tracks' keys: by key type for a transform, the first one for a curve of
// numbers. None: the keys stay; a curve without keys: they go.
using TrackCurves = std::array<std::optional<Curve>, 3>;
using ReplacedKeys = std::unordered_map<const vl::zr::Track*, TrackCurves>;

// Keys of a node that nothing moves in the scene, by key type.
struct AddedKeys {
    std::size_t node;  // in the document; behind its nodes for a new one
    const kernix::AnimationModel* animation;
    std::array<Curve, 3> curves;
};

// What changed in the scene since it was made from its document, with the replaced keys in the place of the
// scene's.
DocumentChanges ChangesOf(const LoadedScene& loaded, ReplacedKeys replaced = {},
                          std::vector<AddedKeys> added = {});

}  // namespace zr
