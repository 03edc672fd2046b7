// SPDX-License-Identifier: MIT
#include "module/keyframe/times_above.h"

#include "module/keyframe/record.h"
#include "tests/module/keyframe/scene_kit.h"
#include "tests/module/test_host.h"

namespace {

using namespace scene_kit;

TEST_F(HostTest, TimesAboveAreThoseOfTheRecordAndItsAncestors) {
    std::mt19937 random(11);
    for (int run = 0; run < 200; ++run) {
        const auto tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        std::vector<ExportNode*> records;
        for (int i = 0; i < 12; ++i) {
            ExportNode* parent =
                records.empty() || random() % 4 == 0 ? nullptr : records[random() % records.size()];
            records.push_back(record_tree::Add(*tool, parent, NF_GEOMETRY));
            float time = 0;
            for (unsigned keys = random() % 4; keys > 0; --keys) {
                time += static_cast<float>(random() % 3 + 1);
                zrt::AddKey<ExportPositionKey>(records.back()->pPosKeys)->fTime = time;
            }
        }
        zrt::TimesAbove times;
        std::shuffle(records.begin(), records.end(), random);
        for (const ExportNode* record : records) EXPECT_EQ(times.Of(record), zrt::KeyTimes(record, true));
    }
}

}  // namespace
