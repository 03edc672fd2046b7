// SPDX-License-Identifier: MIT
#include "kernix/scene/transform_track.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "host/ref.h"
#include "kernix/scene/scene_model.h"

namespace {

// A cubic from its end values and slopes by repeated interpolation of its control points (P. de Casteljau).
double Cubic(double a, double slopeA, double b, double slopeB, double s, double span) {
    double points[4] = {a, a + slopeA * span / 3, b - slopeB * span / 3, b};
    for (int left = 3; left > 0; --left) {
        for (int i = 0; i < left; ++i) points[i] += (points[i + 1] - points[i]) * s;
    }
    return points[0];
}

class TransformTrackTest : public testing::Test {
protected:
    template <typename Key>
    static void SetCubic(Key* key, const std::array<float, 4>& in, const std::array<float, 4>& out) {
        key->m_params[0] = vl::zr::kInterpolationCubic;
        key->m_tangents = std::make_unique<kernix::Tangents>(kernix::Tangents{in, out});
    }

    vl::Ref<kernix::SceneModel> m_scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
    kernix::NodeModel* m_node = m_scene->AddNode(nullptr, "node");
    kernix::TransformTrack* m_track =
        m_node->AddTransformController()->AddTransformTrack(m_scene->AddAnimation(u"a"));
};

TEST_F(TransformTrackTest, CubicKeysPassThroughTheirTangents) {
    kernix::PositionKeyModel* first = m_track->AddPosition(1);
    kernix::PositionKeyModel* second = m_track->AddPosition(3);
    first->SetValue({1, -2, 3});
    second->SetValue({4, 8, -6});
    SetCubic(first, {9, 9, 9, 9}, {2, 0, -5, 0});
    SetCubic(second, {-1, 7, 3, 0}, {9, 9, 9, 9});
    for (const double s : {0.0, 0.1, 0.25, 0.5, 0.8, 1.0}) {
        const auto sample = m_track->Evaluate(static_cast<float>(1 + 2 * s), {});
        EXPECT_NEAR(sample.translation[0], Cubic(1, 2, 4, -1, s, 2), 1e-6) << s;
        EXPECT_NEAR(sample.translation[1], Cubic(-2, 0, 8, 7, s, 2), 1e-6) << s;
        EXPECT_NEAR(sample.translation[2], Cubic(3, -5, -6, 3, s, 2), 1e-6) << s;
    }
}

TEST_F(TransformTrackTest, CubicRotationsAreOfUnitLength) {
    kernix::RotationKeyModel* first = m_track->AddRotation(0);
    kernix::RotationKeyModel* second = m_track->AddRotation(2);
    first->SetQuaternion({0, 0, 0, 1});
    second->SetQuaternion({0.6F, 0, 0, 0.8F});
    SetCubic(first, {}, {0.5F, 0.25F, 0, 0});
    SetCubic(second, {0.1F, 0, -0.5F, 0}, {});
    for (const double s : {0.0, 0.3, 0.5, 0.9}) {
        const double expected[4] = {Cubic(0, 0.5, 0.6F, 0.1F, s, 2), Cubic(0, 0.25, 0, 0, s, 2),
                                    Cubic(0, 0, 0, -0.5, s, 2), Cubic(1, 0, 0.8F, 0, s, 2)};
        double length = 0;
        for (const double part : expected) length += part * part;
        length = std::sqrt(length);
        const auto rotation = m_track->Evaluate(static_cast<float>(2 * s), {}).rotation;
        EXPECT_NEAR(rotation.x, expected[0] / length, 1e-6) << s;
        EXPECT_NEAR(rotation.y, expected[1] / length, 1e-6) << s;
        EXPECT_NEAR(rotation.z, expected[2] / length, 1e-6) << s;
        EXPECT_NEAR(rotation.w, expected[3] / length, 1e-6) << s;
    }
}

// A track is constant outside its keys, and a part without keys is the one at rest.
TEST_F(TransformTrackTest, HoldsItsEndsAndTheRestPose) {
    m_track->AddPosition(1)->SetValue({1, 0, 0});
    m_track->AddPosition(2)->SetValue({3, 0, 0});
    const kernix::Pose rest{{7, 7, 7}, {0, 0, 1, 0}, {2, 3, 4}};
    EXPECT_EQ(m_track->Evaluate(0, rest).translation[0], 1);
    EXPECT_EQ(m_track->Evaluate(1.5F, rest).translation[0], 2);
    EXPECT_EQ(m_track->Evaluate(9, rest).translation[0], 3);
    EXPECT_EQ(m_track->Evaluate(9, rest).scale[1], 3);
    EXPECT_EQ(m_track->Evaluate(9, rest).rotation.z, 1);
}

}  // namespace
