// SPDX-License-Identifier: MIT
// Small animated scenes, and the poses of their nodes.
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

// The animations "walk", "jump" and "rest" of three nodes: some keys begin late or end early or have no
// counterpart in the other animations, and all interpolations occur.
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

// The distinct times of all transform keys of the animation, ascending.
std::vector<float> KeyTimes(kernix::AnimationModel& animation);

// The greatest difference of a component.
double Difference(const double (&a)[3], const double (&b)[3]);
double Difference(const kernix::Rotation& a, const kernix::Rotation& b);

// Tolerances, since times are floats: for the value at a shifted key, and for the time of a jump, in float
// steps.
struct Rounding {
    double difference = 1e-5;
    int steps = 0;
};

// Expects that `merged` of `after` plays the animations `names` of `before` one after another, `gap` seconds
// apart: that every node has the same pose at each key.
void ExpectPlaysInSequence(LoadedScene& before, const Names& names, LoadedScene& after,
                           const std::string& merged, double gap, const Rounding& rounding = {});

}  // namespace zr::test
