// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <unordered_map>

#include "app/scene/document_changes.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Curves that replace the keys of a track: by key type for a transform track, the first one for a track of
// numbers. nullopt keeps the keys; a curve without keys removes them.
using TrackCurves = std::array<std::optional<Curve>, 3>;
using ReplacedKeys = std::unordered_map<const vl::zr::Track*, TrackCurves>;

// Keys for a node that the scene does not animate, by key type.
struct AddedKeys {
    std::size_t node;  // in the document; past its last node for a new one
    const kernix::AnimationModel* animation;
    std::array<Curve, 3> curves;
};

// The changes made to the scene since it was loaded, with the replaced keys instead of the scene's and the
// added ones besides.
DocumentChanges ChangesOf(const LoadedScene& loaded, ReplacedKeys replaced = {},
                          std::vector<AddedKeys> added = {});

}  // namespace zr
