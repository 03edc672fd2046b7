// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/scene/loaded_scene.h"
#include "app/services/host.h"

namespace zr {

using Animations = std::vector<kernix::AnimationModel*>;

// Visits every controller of the scene's nodes, then of its materials. holder: describes the node or material
// that the controller belongs to.
void ForEachController(
    LoadedScene& loaded,
    const std::function<void(vl::zr::Controller& controller, const std::string& holder)>& visit);

// 'node "Lid"', or 'node 3' for a node without a name.
std::string HolderName(const LoadedScene& loaded, const kernix::NodeModel& node);

// Copies a track into the target's track for an animation, which is added if missing. Both controllers are of
// the same class; the target may belong to another scene.
void CopyTrack(vl::zr::Controller& source, vl::zr::Track* track, vl::zr::Controller& target,
               kernix::AnimationModel* animation);

// The animation's name in double quotes.
std::string Quoted(const kernix::AnimationModel& animation);

// Whether any track of the animation has keys.
bool HasKeys(const kernix::AnimationModel& animation);

// Removes animations through the module's manager. Animations that the document refers to are kept; returns
// one line for each of them, saying why.
std::vector<std::string> RemoveAnimations(Host& host, LoadedScene& loaded, const Animations& animations);

// Makes every viewport that refers to any of the old animations refer to all the new ones too.
void FollowInViewports(kernix::SceneModel& scene, const Animations& old, const Animations& added);

// One line for each channel of the animations that the scene does not play, saying why. Results made from the
// scene's tracks lack these channels.
std::vector<std::string> SkippedChannels(const LoadedScene& loaded, const Animations& animations);

}  // namespace zr
