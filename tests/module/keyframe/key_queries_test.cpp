// SPDX-License-Identifier: MIT
#include <cmath>
#include <limits>
#include <map>
#include <random>

#include "host/settings_store.h"
#include "tests/module/keyframe/record_tree.h"
#include "tests/module/test_host.h"

namespace {

using namespace record_tree;

class KeyQueries : public HostTest {};

template <typename Key>
void AddKeys(vl::Array*& track, std::initializer_list<float> times) {
    for (const float time : times) zrt::AddKey<Key>(track)->fTime = time;
}

std::vector<float> Floats(vl::Array* times) {
    const vl::ArrayOf<float> view(times);
    return {view.begin(), view.end()};
}

std::vector<float> TimesOf(ZR_TK& tool, ExportNode* record, int withAncestors) {
    const auto times = vl::Ref<vl::Array>::Adopt(tool.GetKeyTimes(record, withAncestors));
    return Floats(times.Get());
}

TEST_F(KeyQueries, CountsKeysWorthWriting) {
    ZR_TK tool;
    ExportNode* record = Add(tool, nullptr, NF_GEOMETRY);
    AddKeys<ExportPositionKey>(record->pPosKeys, {0});
    AddKeys<ExportRotationKey>(record->pRotKeys, {0, 1});
    const auto counts = [&] {
        std::vector<int> all;
        for (int track = 0; track <= 4; ++track) all.push_back(tool.GetKeyCount(record, track));
        return all;
    };
    EXPECT_EQ(counts(), (std::vector<int>{0, 0, 2, 0, 0}));
    tool.m_dwAnimFlags = vl::tk::kAtLeastOneKey;
    EXPECT_EQ(counts(), (std::vector<int>{0, 1, 2, 1, 0}));
    tool.m_dwAnimFlags |= vl::tk::kGroupKeysOnly;
    EXPECT_EQ(counts(), (std::vector<int>{0, 0, 0, 0, 0}));
    record->dwFlags |= NF_GROUP;
    EXPECT_EQ(counts(), (std::vector<int>{0, 1, 2, 1, 0}));
    EXPECT_EQ(tool.GetKeyCount(nullptr, 1), -1);
}

TEST_F(KeyQueries, MissingKeysAreTheRestPose) {
    ZR_TK tool;
    ExportNode* record = Add(tool, nullptr, 0);
    record->vPosition = {1, 2, 3};
    record->vScale = {4, 5, 6};
    record->qRotation = vl::Quaternion(vl::AngleAxis(0, 1, 0, 0.5f));
    AddKeys<ExportRotationKey>(record->pRotKeys, {7});

    ExportPositionKey position;
    position.fTime = position.fParams[2] = 9;
    EXPECT_EQ(tool.GetPositionKey(record, 0, &position), 1);
    EXPECT_EQ(position.vValue, (vl::Vector3<float>{1, 2, 3}));
    EXPECT_EQ(position.fTime, 0);
    EXPECT_EQ(position.fParams[2], 0);
    ExportScaleKey scale;
    EXPECT_EQ(tool.GetScaleKey(record, -1, &scale), 1);
    EXPECT_EQ(scale.vValue, (vl::Vector3<float>{4, 5, 6}));

    ExportRotationKey rotation;
    tool.GetRotationKey(record, 0, &rotation);
    EXPECT_EQ(rotation.fTime, 7);
    tool.GetRotationKey(record, 1, &rotation);
    EXPECT_EQ(rotation.fTime, 0);
    EXPECT_EQ(rotation.qValue, record->qRotation);
    EXPECT_EQ(rotation.aaValue, vl::AngleAxis());
    tool.m_dwAnimFlags = vl::tk::kAngleAxisKeys;
    tool.GetRotationKey(record, 1, &rotation);
    EXPECT_NEAR(rotation.aaValue.angle, 0.5f, 1e-6);
    EXPECT_NEAR(rotation.aaValue.y, 1, 1e-6);
}

TEST_F(KeyQueries, KeyTimesIncludeZeroAndAncestors) {
    ZR_TK tool;
    ExportNode* parent = Add(tool, nullptr, 0);
    ExportNode* child = Add(tool, parent, 0);
    EXPECT_TRUE(TimesOf(tool, child, 1).empty());
    AddKeys<ExportPositionKey>(parent->pPosKeys, {-2, 8});
    EXPECT_TRUE(TimesOf(tool, child, 0).empty());
    AddKeys<ExportScaleKey>(child->pScaleKeys, {5, 10});
    AddKeys<ExportRotationKey>(child->pRotKeys, {10});
    EXPECT_EQ(TimesOf(tool, child, 0), (std::vector<float>{0, 5, 10}));
    EXPECT_EQ(TimesOf(tool, child, 1), (std::vector<float>{-2, 0, 5, 8, 10}));
}

// The literal rule: walk from the front, insert before the first greater one.
void AddPlainly(std::vector<float>& times, float time) {
    for (auto it = times.begin(); it != times.end(); ++it) {
        if (*it == time) return;
        if (*it > time) {
            times.insert(it, time);
            return;
        }
    }
    times.push_back(time);
}

// Distinguishes 0.0 from -0.0 too.
void ExpectSameBits(const std::vector<float>& actual, const std::vector<float>& expected) {
    ASSERT_EQ(actual, expected);
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(std::signbit(actual[i]), std::signbit(expected[i])) << i;
    }
}

TEST_F(KeyQueries, TimesAreSortedAsByInsertion) {
    std::mt19937 random(3);
    for (int round = 0; round < 2000; ++round) {
        ZR_TK tool;
        ExportNode* record = Add(tool, nullptr, 0);
        std::vector<float> plain;
        const auto inserted = vl::Ref<vl::Array>::Adopt(g_pHost->CreateArray());
        const auto add = [&](float time) {
            AddPlainly(plain, time);
            tool.AddKeyTime(inserted.Get(), time);
        };
        for (int i = static_cast<int>(random() % 40); i > 0; --i) {
            float time = static_cast<float>(random() % 7) / 2;
            if (random() % 2 != 0) time = -time;
            zrt::AddKey<ExportPositionKey>(record->pPosKeys)->fTime = time;
            add(time);
        }
        if (!plain.empty()) add(0.0f);
        ExpectSameBits(Floats(inserted.Get()), plain);
        ExpectSameBits(TimesOf(tool, record, 0), plain);
    }
}

TEST_F(KeyQueries, NaNTimesDoNoHarm) {
    ZR_TK tool;
    ExportNode* record = Add(tool, nullptr, 0);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    AddKeys<ExportPositionKey>(record->pPosKeys, {3, nan, 1, nan, 2});
    const std::vector<float> times = TimesOf(tool, record, 0);
    ASSERT_EQ(times.size(), 6u);
    EXPECT_EQ(times[3], 3);
    EXPECT_TRUE(std::isnan(times[5]));
}

class Settings final : public SettingsStore {
public:
    int GetInt(const char* section, const char* key, int fallback) override {
        return static_cast<int>(GetFloat(section, key, static_cast<float>(fallback)));
    }
    float GetFloat(const char*, const char* key, float fallback) override {
        const auto found = values.find(key);
        return found != values.end() ? found->second : fallback;
    }
    std::map<std::string, float> values;
};

TEST_F(KeyQueries, SettingsSetBitsAndNeverClearThem) {
    ZR_TK tool;
    tool.m_dwExportFlags = tool.m_dwAnimFlags = 0x1;
    Settings settings;
    tool.LoadSettings(&settings, "");
    EXPECT_EQ(tool.m_dwExportFlags, 0x1u);
    EXPECT_EQ(tool.m_dwAnimFlags, 0x1u);

    settings.values = {{"anim\\mergekeys", 1},
                       {"anim\\reverse", 1},
                       {"anim\\rescale", 1},
                       {"anim\\rescalepercent", 0.25f},
                       {"anim\\setLengthTo", 9}};
    tool.LoadSettings(&settings, "");
    EXPECT_EQ(tool.m_dwExportFlags, 0x400001u);
    EXPECT_EQ(tool.m_dwAnimFlags, 0x281u);
    EXPECT_EQ(tool.m_fRescale, 0.25f);

    settings.values = {{"anim\\rescale", 1}, {"anim\\rescaletype", 0}, {"anim\\setLengthTo", 9}};
    tool.LoadSettings(&settings, "");
    EXPECT_EQ(tool.m_dwAnimFlags, 0x381u);
    EXPECT_EQ(tool.m_fRescale, 9);
}

TEST_F(KeyQueries, AToolWithoutASceneAnswers) {
    ZR_TK tool;
    EXPECT_EQ(tool.GetFrameRate(), 1);
    EXPECT_EQ(tool.TimeToFrame(-3.75f), -3);
    EXPECT_EQ(tool.TimeToFrame(1e30f), std::numeric_limits<int>::max());
    EXPECT_EQ(tool.TimeToFrame(-1e30f), std::numeric_limits<int>::min());
    EXPECT_EQ(tool.HasAnimation(), 0);
    EXPECT_EQ(tool.GetCurrentTime(), 0);
    EXPECT_EQ(tool.AddNode(nullptr, "x"), nullptr);
    EXPECT_EQ(tool.ExtractKeys(), 0);
    EXPECT_EQ(tool.FindNodeRecord(nullptr), nullptr);
}

}  // namespace
