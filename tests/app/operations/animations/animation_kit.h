// SPDX-License-Identifier: MIT
// Small animated scenes, and where their nodes stand.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "app/operations/animations/animation_choice.h"
#include "app/scene/curves.h"
#include "app/scene/loaded_scene.h"
#include "app/services/host.h"
#include "tests/gltf/sample.h"

namespace zr::test {

using Names = std::vector<std::string>;

struct Motion {
    std::size_t node;
    std::string_view path;
    Curve curve;
};
void AddAnimation(gltf::Document& document, std::string_view name, const std::vector<Motion>& motions);

// The animations "walk", "jump" and "rest" of three nodes: keys that begin late or end early, that other
// animations do not have, and that pass in every way.
gltf::Document AnimatedScene();

class AnimationCommandTest : public testing::Test {
protected:
    AnimationCommandTest() { m_host.LoadModule(); }

    LoadedScene Reloaded(LoadedScene& loaded);

    Host m_host{"en"};
    gltf::test::TemporaryFolder m_folder;
};

Names NamesOf(LoadedScene& loaded);

kernix::TransformTrack::Sample Pose(LoadedScene& loaded, std::size_t node, kernix::AnimationModel* animation,
                                    float time);

// Of all the animation's transforms, ascending, each once.
std::vector<float> KeyTimes(kernix::AnimationModel& animation);

// The greatest one of a component.
double Difference(const double (&a)[3], const double (&b)[3]);
double Difference(const kernix::Rotation& a, const kernix::Rotation& b);

// Times are floats: how far a shifted key may be beside its value, and a jump, in floats, beside its time.
struct Rounding {
    double difference = 1e-5;
    int steps = 0;
};

// Every node stands, at each key of each of the animations `names` of `before`, as `merged` of `after` has it
// when these play one after the other, `gap` seconds apart.
void ExpectPlaysInSequence(LoadedScene& before, const Names& names, LoadedScene& after,
                           const std::string& merged, double gap, const Rounding& rounding = {});

}  // namespace zr::test
