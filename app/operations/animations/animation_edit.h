// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/scene/loaded_scene.h"
#include "app/services/host.h"

namespace zr {

using Animations = std::vector<kernix::AnimationModel*>;

// Every controller of the scene's nodes and then of its materials; holder: the node or material it moves, as
// text for people.
void ForEachController(
    LoadedScene& loaded,
    const std::function<void(vl::zr::Controller& controller, const std::string& holder)>& visit);
std::string HolderName(const LoadedScene& loaded, const kernix::NodeModel& node);

// Gives the target's track for an animation the content of a track of the same class; the target may stand in
// another scene.
void CopyTrack(vl::zr::Controller& source, vl::zr::Track* track, vl::zr::Controller& target,
               kernix::AnimationModel* animation);

// The animation's name in double quotes.
std::string Quoted(const kernix::AnimationModel& animation);

// Whether the animation moves anything.
bool HasKeys(const kernix::AnimationModel& animation);

// Removes animations through the module's manager. Those that something in the document refers to stay;
// returns one line for each of these that says why.
std::vector<std::string> RemoveAnimations(Host& host, LoadedScene& loaded, const Animations& animations);

// A viewport that refers to any of the old animations refers to all the new ones too.
void FollowInViewports(kernix::SceneModel& scene, const Animations& old, const Animations& added);

// The channels that the document has but the scene does not play, and why: results made from the scene's
// tracks lack them.
std::vector<std::string> SkippedChannels(const LoadedScene& loaded, const Animations& animations);

}  // namespace zr
