// SPDX-License-Identifier: MIT
#include "tests/module/keyframe/record_tree.h"
#include "tests/module/test_host.h"

namespace {

using namespace record_tree;

class TimeMapping : public HostTest {
protected:
    TimeMapping() {
        m_record = Add(m_tool, nullptr, 0);
        m_tool.m_pAllNodes = g_pHost->CreateArray();
        m_tool.m_pAllNodes->Add(vl::ToWord(m_record));
        m_tool.m_fStartTime = 10;
        m_tool.m_fEndTime = 40;
    }

    template <typename Key>
    static std::vector<float> Times(vl::Array* track) {
        std::vector<float> times;
        for (const Key* key : vl::ArrayOf<Key*>(track)) times.push_back(key->fTime);
        return times;
    }

    void AddPositions(std::initializer_list<float> times) {
        for (const float time : times) {
            auto* key = zrt::AddKey<ExportPositionKey>(m_record->pPosKeys);
            key->fTime = time;
            key->vValue.x = time;
        }
    }

    void ExpectRange(float start, float end) {
        EXPECT_FLOAT_EQ(m_tool.GetStartTime(), start);
        EXPECT_FLOAT_EQ(m_tool.GetEndTime(), end);
    }

    ZR_TK m_tool;
    ExportNode* m_record;
};

TEST_F(TimeMapping, RescalesFromTheStart) {
    AddPositions({20});
    m_tool.m_dwAnimFlags = vl::tk::kRescaleTime;
    m_tool.m_fRescale = 0.5f;
    m_tool.RemapTime();
    ExpectRange(0, 15);
    EXPECT_EQ(Times<ExportPositionKey>(m_record->pPosKeys), (std::vector<float>{5}));
    EXPECT_FLOAT_EQ(m_tool.MapTime(30), 10);
}

TEST_F(TimeMapping, FitsToALength) {
    m_tool.m_dwAnimFlags = vl::tk::kSetLength;
    m_tool.m_fRescale = 60;
    m_tool.RemapTime();
    EXPECT_FLOAT_EQ(m_tool.m_fTimeScale, 2);
    ExpectRange(0, 60);
}

TEST_F(TimeMapping, ARangeWithoutLengthCollapses) {
    AddPositions({5, 7});
    m_tool.m_fEndTime = 10;
    m_tool.m_dwAnimFlags = vl::tk::kSetLength;
    m_tool.RemapTime();
    ExpectRange(0, 0);
    EXPECT_EQ(Times<ExportPositionKey>(m_record->pPosKeys), (std::vector<float>{0, 0}));
}

TEST_F(TimeMapping, ReversesOrderAndTimes) {
    AddPositions({10, 20, 40});
    zrt::AddKey<ExportScaleKey>(m_record->pScaleKeys)->fTime = 25;
    m_tool.m_dwAnimFlags = vl::tk::kReverseTime;
    m_tool.RemapTime();
    ExpectRange(0, 30);
    EXPECT_EQ(Times<ExportPositionKey>(m_record->pPosKeys), (std::vector<float>{0, 20, 30}));
    EXPECT_EQ(vl::ArrayOf<ExportPositionKey*>(m_record->pPosKeys)[0]->vValue.x, 40);
    // A single key applies to the whole range.
    EXPECT_EQ(Times<ExportScaleKey>(m_record->pScaleKeys), (std::vector<float>{0}));
}

TEST_F(TimeMapping, ReversedStepsBeginWithTheTotal) {
    const std::uint32_t version = g_nHostVersion;
    for (const bool oldHost : {false, true}) {
        g_nHostVersion = oldHost ? 145 : 146;
        zrt::DestroyTrack<ExportRotationKey>(m_record->pRotKeys);
        const vl::AngleAxis steps[] = {{0, 0, 1, 0.25f}, {0, 0, 1, 0.5f}, {0, 0, 1, 0.75f}};
        for (int i = 0; i < 3; ++i) {
            auto* key = zrt::AddKey<ExportRotationKey>(m_record->pRotKeys);
            key->fTime = static_cast<float>(10 + 15 * i);
            key->aaValue = steps[i];
        }
        m_tool.m_fStartTime = 10;
        m_tool.m_fEndTime = 40;
        m_tool.m_fRescale = 1;
        m_tool.m_dwAnimFlags = vl::tk::kReverseTime | vl::tk::kAngleAxisKeys;
        m_tool.RemapTime();
        const vl::ArrayOf<ExportRotationKey*> keys(m_record->pRotKeys);
        EXPECT_EQ(Times<ExportRotationKey>(m_record->pRotKeys), (std::vector<float>{0, 15, 30}));
        EXPECT_NEAR(keys[0]->aaValue.angle, 1.5f, 1e-6);
        EXPECT_NEAR(keys[0]->aaValue.z, -1, 1e-6);
        const float sign = oldHost ? -1.0f : 1.0f;
        EXPECT_EQ(keys[1]->aaValue, (vl::AngleAxis{0 * sign, 0 * sign, sign, 0.75f}));
        EXPECT_EQ(keys[2]->aaValue, (vl::AngleAxis{0, 0, sign, 0.5f}));
    }
    g_nHostVersion = version;
}

}  // namespace
