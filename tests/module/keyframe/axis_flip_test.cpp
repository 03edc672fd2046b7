// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <random>

#include "tests/module/keyframe/scene_kit.h"
#include "tests/module/test_host.h"

namespace {

using scene_kit::Matrix;
using scene_kit::Vector;

class FlipTest : public HostTest {
protected:
    // A record with random values everywhere and a key in every track.
    ExportNode* AddRecord() {
        const auto vector = [this] { return scene_kit::RandomVector(m_random, 0.5f, 2); };
        ExportNode* record = record_tree::Add(*m_tool.Get(), nullptr, NF_GEOMETRY);
        if (m_tool->m_pAllNodes == nullptr) m_tool->m_pAllNodes = g_pHost->CreateArray();
        m_tool->m_pAllNodes->Add(vl::ToWord(record));
        record->vScale = vector();
        record->vPosition = vector();
        record->vPivot = vector();
        record->qRotation = scene_kit::RandomRotation(m_random);
        record->qStretch = scene_kit::RandomRotation(m_random);
        record->mLocal = record_tree::Written(record->vScale, record->qRotation, record->vPosition);
        record->mWorld = scene_kit::RandomMatrix(m_random);
        zrt::AddKey<ExportPositionKey>(record->pPosKeys)->vValue = vector();
        zrt::AddKey<ExportScaleKey>(record->pScaleKeys)->vValue = vector();
        auto* rotation = zrt::AddKey<ExportRotationKey>(record->pRotKeys);
        rotation->qValue = scene_kit::RandomRotation(m_random);
        rotation->aaValue = vl::AngleAxis(rotation->qValue);
        return record;
    }

    Matrix OfKeys(ExportNode* record) {
        ExportPositionKey position;
        ExportScaleKey scale;
        ExportRotationKey rotation;
        m_tool->GetPositionKey(record, 0, &position);
        m_tool->GetScaleKey(record, 0, &scale);
        m_tool->GetRotationKey(record, 0, &rotation);
        return record_tree::Written(scale.vValue, rotation.qValue, position.vValue);
    }

    std::mt19937 m_random{21};
    vl::Ref<ZR_TK> m_tool = vl::Ref<ZR_TK>::Adopt(new ZR_TK);
};

// Exchanging Y and Z of a point before the flipped transform equals exchanging them after the original one:
// for matrices, rest values and keys alike.
TEST_F(FlipTest, EveryPointGoesToItsCounterpart) {
    Matrix exchange;
    exchange.m[0][0] = exchange.m[1][2] = exchange.m[2][1] = exchange.m[3][3] = 1;
    const auto flipped = [&exchange](Matrix m) {
        m.SetMul(exchange, m);
        m.Transform(exchange);
        return m;
    };
    for (int i = 0; i < 100; ++i) {
        ExportNode* record = AddRecord();
        const Matrix local = flipped(record->mLocal);
        const Matrix world = flipped(record->mWorld);
        const Matrix keys = flipped(OfKeys(record));
        const Vector pivot = record->vPivot;
        m_tool->m_pAllNodes->RemoveAll();
        m_tool->m_pAllNodes->Add(vl::ToWord(record));
        m_tool->FlipAxes();
        record_tree::ExpectNear(record->mLocal, local, 0);
        record_tree::ExpectNear(record->mWorld, world, 0);
        record_tree::ExpectNear(record_tree::Written(record->vScale, record->qRotation, record->vPosition),
                                local, 1e-6);
        record_tree::ExpectNear(OfKeys(record), keys, 1e-6);
        EXPECT_EQ(record->vPivot, (Vector{pivot.x, pivot.z, pivot.y}));
    }
}

TEST_F(FlipTest, StepsAndScaleAxesAreUnchanged) {
    ExportNode* record = AddRecord();
    const auto* key = vl::ArrayOf<ExportRotationKey*>(record->pRotKeys)[0];
    const ExportRotationKey before = *key;
    const vl::Quaternion stretch = record->qStretch;
    m_tool->m_dwAnimFlags = vl::tk::kAngleAxisKeys;
    m_tool->FlipAxes();
    EXPECT_EQ(key->qValue, before.qValue);
    EXPECT_EQ(key->aaValue, before.aaValue);
    EXPECT_EQ(record->qStretch, stretch);
}

TEST_F(FlipTest, TwiceRestores) {
    ExportNode* record = AddRecord();
    const ExportNode before = *record;
    const Matrix keys = OfKeys(record);
    m_tool->FlipAxes();
    m_tool->FlipAxes();
    EXPECT_EQ(record->vPosition, before.vPosition);
    EXPECT_EQ(record->vScale, before.vScale);
    EXPECT_EQ(record->vPivot, before.vPivot);
    EXPECT_EQ(record->qRotation, before.qRotation);
    record_tree::ExpectNear(record->mLocal, before.mLocal, 0);
    record_tree::ExpectNear(OfKeys(record), keys, 0);
}

}  // namespace
