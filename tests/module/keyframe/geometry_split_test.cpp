// SPDX-License-Identifier: MIT
#include <cmath>
#include <random>

#include "tests/module/keyframe/record_tree.h"
#include "tests/module/test_host.h"

namespace {

using namespace record_tree;

class GeometrySplit : public HostTest {};

// The literal rule: the siblings are searched for each record.
void SplitPlainly(ZR_TK& tool, ExportNode* record) {
    const auto isMoved = [](const ExportNode* r) { return !r->mLocal.IsIdentity(0); };
    bool splits = false;
    if ((record->dwFlags & NF_GEOMETRY) != 0 && (record->dwFlags & NF_ADDED) == 0) {
        splits = record->pParent == nullptr || isMoved(record);
        if (!splits) {
            for (const ExportNode* other : vl::ArrayOf<ExportNode*>(record->pParent->pChildren)) {
                splits = splits || (other != record && (other->dwFlags & NF_GROUP) == 0 && !isMoved(other));
            }
        }
    }
    if (splits) {
        record->dwFlags = (record->dwFlags & ~1u) | NF_GROUP | NF_ADDED;
        Add(tool, record, NF_GEOMETRY);
        return;
    }
    for (ExportNode* child : vl::ArrayOf<ExportNode*>(record->pChildren)) SplitPlainly(tool, child);
}

void FillRandomly(ZR_TK& tool, unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    constexpr std::uint32_t kFlags[] = {NF_GEOMETRY, NF_GEOMETRY, NF_GEOMETRY | NF_GROUP,
                                        NF_GROUP,    0,           NF_GEOMETRY | NF_ADDED};
    std::vector<ExportNode*> records;
    for (int i = below(30); i >= 0; --i) {
        ExportNode* parent =
            records.empty() || below(8) == 0 ? nullptr : records[records.size() * below(4) / 4];
        records.push_back(Add(tool, parent, kFlags[below(6)], below(3) == 0 ? Moved(1, 0, 0) : Identity()));
    }
}

TEST_F(GeometrySplit, EqualsTheSearchOfSiblings) {
    for (unsigned seed = 0; seed < 3000; ++seed) {
        ZR_TK fast;
        ZR_TK plain;
        FillRandomly(fast, seed);
        FillRandomly(plain, seed);
        fast.GeometrySplit(fast.m_pRoots);
        for (ExportNode* root : vl::ArrayOf<ExportNode*>(plain.m_pRoots)) SplitPlainly(plain, root);
        ASSERT_EQ(Shape(fast.m_pRoots), Shape(plain.m_pRoots)) << "seed " << seed;
    }
}

TEST_F(GeometrySplit, OneOfTwoEqualSiblingsMakesRoom) {
    ZR_TK tool;
    ExportNode* root = Add(tool, nullptr, NF_GROUP);
    Add(tool, root, NF_GEOMETRY);
    Add(tool, root, NF_GEOMETRY);
    tool.GeometrySplit(tool.m_pRoots);
    EXPECT_EQ(Shape(tool.m_pRoots), "4(6(1) 1)");

    ZR_TK lonely;
    Add(lonely, nullptr, NF_GEOMETRY);
    lonely.GeometrySplit(lonely.m_pRoots);
    EXPECT_EQ(Shape(lonely.m_pRoots), "6(1)");
}

// What counts as moved, turned or scaled.
TEST_F(GeometrySplit, Tolerances) {
    const auto splits = [](const vl::Matrix4<double>& local) {
        ZR_TK tool;
        ExportNode* only = Add(tool, Add(tool, nullptr, NF_GROUP), NF_GEOMETRY, local);
        tool.GeometrySplit(tool.m_pRoots);
        return (only->dwFlags & NF_GROUP) != 0;
    };
    const auto turned = [](double angle) {
        vl::Matrix4<double> m = Identity();
        m.RotateY(angle);
        return m;
    };
    const auto scaled = [](float s) {
        vl::Matrix4<double> m = Identity();
        m.Scale(vl::Vector3<float>{1, s, 1});
        return m;
    };
    EXPECT_FALSE(splits(Moved(0, 0.9e-8, 0)));
    EXPECT_TRUE(splits(Moved(0, 0, -1.1e-8)));
    EXPECT_FALSE(splits(turned(0.00099)));
    EXPECT_TRUE(splits(turned(0.00101)));
    EXPECT_FALSE(splits(scaled(1)));
    EXPECT_TRUE(splits(scaled(std::nextafter(1.0f, 2.0f))));
    EXPECT_TRUE(splits(scaled(-1)));
}

}  // namespace
