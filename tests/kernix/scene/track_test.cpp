// SPDX-License-Identifier: MIT
// Packed keys, and the same keys as objects.
#include <gtest/gtest.h>

#include <random>

#include "kernix/scene/scene_model.h"

namespace {

using kernix::Curve;
using kernix::kKeyTypes;
using kernix::StoredCurve;
using kernix::TransformTrack;

// Counts its reads.
class Source final : public kernix::CurveSource {
public:
    explicit Source(Curve curve) : m_curve(std::move(curve)) {}
    std::size_t KeyCount(std::uint32_t) const override { return m_curve.times.size(); }
    Curve Read(std::uint32_t id) const override {
        EXPECT_EQ(id, 7U);
        ++m_reads;
        return m_curve;
    }

    mutable int m_reads = 0;

private:
    Curve m_curve;
};

class TrackTest : public testing::Test {
protected:
    TransformTrack& AddTrack() {
        kernix::AnimationModel* animation = m_scene->AddAnimation(u"a");
        return *m_scene->AddNode(nullptr, "n")->AddTransformController()->AddTransformTrack(animation);
    }

    Curve RandomCurve(int keyType, vl::zr::KeyInterpolation interpolation) {
        const std::size_t width = keyType == vl::zr::kKeyRotation ? 4 : 3;
        const std::size_t parts = interpolation == vl::zr::kInterpolationCubic ? 3 : 1;
        std::uniform_real_distribution<float> number(-1, 1);
        Curve curve{interpolation, {0, 0.5F, 2, 2.25F, 5}, {}};
        for (std::size_t i = 0; i < curve.times.size() * width * parts; ++i)
            curve.values.push_back(number(m_random));
        return curve;
    }

    vl::Ref<kernix::SceneModel> m_scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
    std::mt19937 m_random{5};
};

// The greatest difference between the numbers that the tracks yield.
double Difference(const TransformTrack& a, const TransformTrack& b) {
    double greatest = 0;
    for (float time = -0.5F; time < 6; time += 0.125F) {
        const auto left = a.Evaluate(time, {}), right = b.Evaluate(time, {});
        for (int i = 0; i < 3; ++i) {
            greatest = std::max(greatest, std::abs(left.translation[i] - right.translation[i]));
            greatest = std::max(greatest, std::abs(left.scale[i] - right.scale[i]));
        }
        const auto& p = left.rotation;
        const auto& q = right.rotation;
        greatest = std::max(
            {greatest, std::abs(p.x - q.x), std::abs(p.y - q.y), std::abs(p.z - q.z), std::abs(p.w - q.w)});
    }
    return greatest;
}

void OpenAll(TransformTrack& track) {
    for (const int keyType : kKeyTypes) EXPECT_NE(track.Get(keyType, 0), nullptr);
}

TEST_F(TrackTest, KeysAreReadOnFirstUse) {
    const Source source({{}, {1, 2}, {1, 1, 1, 2, 2, 2}});
    TransformTrack& track = AddTrack();
    track.SetCurve(vl::zr::kKeyPosition, StoredCurve(source, 7));
    EXPECT_EQ(track.Count(vl::zr::kKeyPosition), 2);
    EXPECT_EQ(m_scene->IsAnimated(), 1);
    EXPECT_EQ(source.m_reads, 0);
    EXPECT_EQ(track.GetRange(), std::pair(1.0F, 2.0F));
    EXPECT_EQ(track.Evaluate(1.5F, {}).translation[0], 1.5);
    EXPECT_EQ(source.m_reads, 1);
    track.Unload();
    EXPECT_EQ(track.TimeOf(vl::zr::kKeyPosition, 1), 2);
    EXPECT_EQ(source.m_reads, 2);
    EXPECT_TRUE(track.Packed(vl::zr::kKeyPosition)->IsAsStored());
    track.Retime(2, 0);
    EXPECT_FALSE(track.Packed(vl::zr::kKeyPosition)->IsAsStored());
    track.Unload();  // nothing to read these from again
    EXPECT_EQ(track.TimeOf(vl::zr::kKeyPosition, 1), 4);
}

TEST_F(TrackTest, ObjectsAreTheSameKeysUntilTheyAreForgotten) {
    TransformTrack& track = AddTrack();
    track.SetCurve(vl::zr::kKeyPosition, StoredCurve({{}, {1, 2}, {1, 1, 1, 2, 2, 2}}));
    auto* key = static_cast<kernix::PositionKeyModel*>(track.Get(vl::zr::kKeyPosition, 1));
    EXPECT_EQ(key->m_value, (vl::Vector3<float>{2, 2, 2}));
    key->SetValue({8, 0, 0});
    EXPECT_EQ(track.Packed(vl::zr::kKeyPosition), nullptr);
    EXPECT_EQ(track.Evaluate(2, {}).translation[0], 8);
    track.ForgetObjects();
    EXPECT_EQ(track.Evaluate(2, {}).translation[0], 2);

    track.AddPosition(3)->SetValue({9, 0, 0});
    track.ForgetObjects();  // the new key stays
    EXPECT_EQ(track.Count(vl::zr::kKeyPosition), 3);
    EXPECT_EQ(track.Evaluate(3, {}).translation[0], 9);
}

TEST_F(TrackTest, BothFormsStayEqualUnderEveryChange) {
    for (const auto interpolation :
         {vl::zr::kInterpolationLinear, vl::zr::kInterpolationStep, vl::zr::kInterpolationCubic}) {
        TransformTrack& packed = AddTrack();
        TransformTrack& open = AddTrack();
        for (const int keyType : kKeyTypes) {
            const Curve curve = RandomCurve(keyType, interpolation);
            packed.SetCurve(keyType, StoredCurve(curve));
            open.SetCurve(keyType, StoredCurve(curve));
        }
        OpenAll(open);
        EXPECT_EQ(Difference(packed, open), 0) << interpolation;

        packed.Retime(3, 0.25F);
        open.Retime(3, 0.25F);
        EXPECT_EQ(Difference(packed, open), 0) << interpolation;
        if (interpolation != vl::zr::kInterpolationStep) {
            packed.Retime(-1, 16);
            open.Retime(-1, 16);
            EXPECT_LT(Difference(packed, open), 1e-6) << interpolation;
        }
        for (TransformTrack* track : {&packed, &open}) {
            const auto stream = vl::Ref<vl::Stream>::Adopt(vl::Stream::CreateInMemory());
            track->Save(*stream);
            stream->Seek(0, 0);
            TransformTrack& copy = AddTrack();
            ASSERT_TRUE(copy.Load(*stream));
            EXPECT_EQ(copy.Packed(vl::zr::kKeyScale) != nullptr, track == &packed);
            EXPECT_EQ(Difference(copy, *track), 0) << interpolation;
        }
        for (TransformTrack* track : {&packed, &open}) track->Remove(vl::zr::kKeyRotation, 2);
        EXPECT_LT(Difference(packed, open), 1e-6) << interpolation;
    }
}

TEST(Curve, StepsHoldTheirValuesBackwards) {
    Curve curve{vl::zr::kInterpolationStep, {0, 1, 3}, {5, 6, 7}};
    const auto at = [&curve](float time) {
        double value = 0;
        kernix::EvaluateNumbers(curve, time, &value);
        return value;
    };
    curve.Retime(-1, 3);
    EXPECT_EQ(curve.times, (std::vector<float>{0, 2, 3}));
    EXPECT_EQ(at(1), 6);  // was 2
    EXPECT_EQ(at(2.5F), 5);
    EXPECT_EQ(at(3), 5);
}

}  // namespace
