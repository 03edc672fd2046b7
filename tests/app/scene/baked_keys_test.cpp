// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <random>

#include "app/scene/curves.h"
#include "kernix/scene/scene_model.h"

namespace zr {
namespace {

Curve RandomCurve(std::mt19937& engine, vl::zr::KeyInterpolation interpolation, std::size_t width) {
    std::uniform_real_distribution<float> number(-2, 2), pause(0.01F, 1);
    Curve curve{interpolation, {}, {}};
    float time = 0;
    const auto add = [&] {
        for (std::size_t i = 0; i < width; ++i) curve.values.push_back(number(engine));
    };
    for (int key = 0; key < 30; ++key) {
        curve.times.push_back(time += pause(engine));
        const std::size_t parts = curve.IsCubic() ? 3 : 1;
        for (std::size_t part = 0; part < parts; ++part) {
            add();
            if (width != 4 || part != parts / 2) continue;
            float* q = curve.values.data() + curve.values.size() - 4;
            const float length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
            for (std::size_t i = 0; i < 4; ++i) q[i] /= length;
        }
    }
    return curve;
}

// Keys side by side are baked piece by piece, key objects by asking the track for each time.
TEST(BakedKeys, AreTheSameFromPackedKeysAndFromObjects) {
    std::mt19937 engine(5);
    const auto scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
    kernix::TransformTrack& track = *scene->AddNode(nullptr, "node")
                                         ->AddTransformController()
                                         ->AddTransformTrack(scene->AddAnimation(u"move"));
    for (const auto interpolation :
         {vl::zr::kInterpolationStep, vl::zr::kInterpolationLinear, vl::zr::kInterpolationCubic}) {
        for (const int keyType : kKeyTypes) {
            const Curve curve = RandomCurve(engine, interpolation, WidthOf(keyType));
            track.SetCurve(keyType, kernix::StoredCurve(curve));
            const Curve packed = BakedKeys(track, keyType);
            track.SetCurve(keyType, {});
            PutKeys(track, keyType, curve);
            track.Positions();
            track.Rotations();
            track.Scales();
            ASSERT_EQ(track.Packed(keyType), nullptr);
            EXPECT_EQ(BakedKeys(track, keyType), packed) << interpolation << ' ' << keyType;
        }
    }
}

// A rotation that passes through no orientation at all shows the way between its keys there.
TEST(BakedKeys, OfARotationAreUnitQuaternions) {
    const auto scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
    kernix::TransformTrack& track = *scene->AddNode(nullptr, "node")
                                         ->AddTransformController()
                                         ->AddTransformTrack(scene->AddAnimation(u"move"));
    track.SetCurve(vl::zr::kKeyRotation,
                   kernix::StoredCurve(
                       Curve{vl::zr::kInterpolationCubic, {0, 1}, {0, 0, 0, 0, 0, 0, 0, 1,  0, 0, 0, 0,  //
                                                                   0, 0, 0, 0, 0, 0, 0, -1, 0, 0, 0, 0}}));
    const Curve baked = BakedKeys(track, vl::zr::kKeyRotation);
    EXPECT_GT(baked.times.size(), 2u);
    for (std::size_t key = 0; key < baked.times.size(); ++key)
        EXPECT_EQ(std::abs(baked.Value(key)[3]), 1.0F) << key;
}

}  // namespace
}  // namespace zr
