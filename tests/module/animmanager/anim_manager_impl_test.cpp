// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/module/animmanager/anim_fixture.h"

namespace {

using Change = kernix::ChangeRecordModel::Change;
using vl::zr::kKeyPosition;
using vl::zr::kKeyRotation;
using vl::zr::kKeyScale;

std::vector<Change> Changes(const kernix::ChangeRecordModel& record) {
    std::vector<Change> changes;
    for (const auto& entry : record.GetEntries()) changes.push_back(entry.change);
    return changes;
}

TEST(AnimManager, IsItsOwnTypeAndAnExtension) {
    AnimFixture f;
    EXPECT_STREQ(f.Manager().GetTypeName(), "2AA39A1A-49AB-479a-B293-C222FDF04182");
    EXPECT_TRUE(f.Manager().IsTypeOf("ZR_EXTENSION"));
    EXPECT_EQ(f.Manager().GetRevision(), 1);
    EXPECT_FALSE(f.Manager().Reserved(1, 2, 3));
}

TEST(AnimManager, UsedMeansAViewPlaysIt) {
    AnimFixture f;
    TestAnimation* a = f.AddAnimation(u"A");
    TestAnimation* b = f.AddAnimation(u"B");
    f.Scene().AddViewport(vl::zr::kViewportView, "Empty");
    f.Scene().AddViewport(vl::zr::kViewportModelView, "Model")->AddAnimationReference(a);
    EXPECT_FALSE(f.Manager().IsAnimationUsed(a, nullptr, -1));
    f.Scene().AddViewport(vl::zr::kViewportView, "View")->AddAnimationReference(b);
    EXPECT_FALSE(f.Manager().IsAnimationUsed(a, nullptr, -1));
    f.Scene().AddViewport(vl::zr::kViewportView, "Other")->AddAnimationReference(a);
    EXPECT_TRUE(f.Manager().IsAnimationUsed(a, nullptr, -1));
}

TEST(AnimManager, NamesOfUsersFillTheBuffer) {
    AnimFixture f;
    TestAnimation* a = f.AddAnimation(u"A");
    TestAnimation* unused = f.AddAnimation(u"B");
    f.Scene().AddViewport(vl::zr::kViewportView, "Front")->AddAnimationReference(a);
    kernix::ViewportModel* top = f.Scene().AddViewport(vl::zr::kViewportView, "T\xC3\xB6p");
    top->AddAnimationReference(unused);
    top->AddAnimationReference(a);
    const auto names = [&](TestAnimation* animation, int maxLen) {
        std::u16string buffer(16, u'#');
        f.Manager().IsAnimationUsed(animation, buffer.data(), maxLen);
        return buffer;
    };
    EXPECT_EQ(names(a, 10), u"Front\nT\u00F6p\n######");
    EXPECT_EQ(names(a, 7), u"Front\nT#########");
    EXPECT_EQ(names(a, 13), u"Front\nT\u00F6p\n" + std::u16string(3, u'\0') + u"###");
    EXPECT_EQ(names(a, 0), std::u16string(16, u'#'));
    EXPECT_EQ(names(a, -1), std::u16string(16, u'#'));
    f.Scene().RemoveViewport(top, 1);
    EXPECT_EQ(names(unused, 16), std::u16string(16, u'#'));

    f.Scene().AddViewport(vl::zr::kViewportView, std::string(400, 'x'))->AddAnimationReference(unused);
    std::u16string longName(300, u'#');
    f.Manager().IsAnimationUsed(unused, longName.data(), 300);
    EXPECT_EQ(longName, std::u16string(259, u'x') + u"\n" + std::u16string(40, u'\0'));
}

TEST(AnimManager, AViewThatPlaysItTwiceIsNamedTwice) {
    AnimFixture f;
    TestAnimation* a = f.AddAnimation(u"A");
    kernix::ViewportModel* view = f.Scene().AddViewport(vl::zr::kViewportView, "V");
    view->AddAnimationReference(a);
    view->AddAnimationReference(a);
    char16_t names[8] = {};
    EXPECT_TRUE(f.Manager().IsAnimationUsed(a, names, 8));
    EXPECT_EQ(std::u16string(names), u"V\nV\n");
}

TEST(AnimManager, RemovalTakesTracksAndReferencesAndIsRecorded) {
    AnimFixture f;
    TestNode* node = f.AddNode("node");
    TestAnimation* a = f.AddAnimation(u"A");
    TestAnimation* b = f.AddAnimation(u"B");
    f.AddVectorKeys(node, a, kKeyPosition, {{0, 1}});
    f.AddVectorKeys(node, b, kKeyPosition, {{0, 2}});
    std::vector<kernix::ViewportModel*> viewports;
    for (int kind : {vl::zr::kViewportModelView, vl::zr::kViewportView}) {
        viewports.push_back(f.Scene().AddViewport(kind, "view"));
        for (TestAnimation* animation : {a, a, b, a}) viewports.back()->AddAnimationReference(animation);
    }
    std::vector<int> notified;
    f.Scene().m_onNotify = [&](int code, int x, int y) { notified = {code, x, y}; };
    kernix::ChangeRecordModel record;

    EXPECT_TRUE(f.Manager().RemoveAnimation(&record, a));

    EXPECT_EQ(f.AnimationNames(), (std::vector<std::u16string>{u"B"}));
    EXPECT_EQ(f.Dump(node, a, kKeyPosition), "-");
    EXPECT_EQ(f.Dump(node, b, kKeyPosition), "0:2");
    for (auto* viewport : viewports) {
        const vl::ArrayOf<vl::zr::AnimationReference*> left(viewport->m_pAnimationReferences);
        ASSERT_EQ(left.Count(), 1);
        EXPECT_EQ(left[0]->pAnimation, b);
    }
    EXPECT_EQ(notified, (std::vector<int>{1035, 1, 2}));
    EXPECT_EQ(Changes(record),
              (std::vector<Change>{Change::kAnimationItemRemoval, Change::kAnimationRemoval}));
}

TEST(AnimManager, RefusedRemovalChangesNothing) {
    AnimFixture f;
    TestAnimation* a = f.AddAnimation(u"A");
    a->m_locked = true;
    kernix::ViewportModel* view = f.Scene().AddViewport(vl::zr::kViewportView, "V");
    view->AddAnimationReference(a);
    bool notified = false;
    f.Scene().m_onNotify = [&](int, int, int) { notified = true; };
    kernix::ChangeRecordModel record;
    EXPECT_FALSE(f.Manager().RemoveAnimation(&record, a));
    EXPECT_FALSE(f.Manager().RemoveAnimation(&record, nullptr));
    EXPECT_FALSE(f.Manager().RemoveAnimations(&record, f.ArrayOf({a}).Get()));
    EXPECT_FALSE(f.Manager().RemoveAnimations(&record, f.ArrayOf({}).Get()));
    EXPECT_EQ(view->m_pAnimationReferences->m_nCount, 1);
    EXPECT_EQ(f.AnimationNames().size(), 1U);
    EXPECT_TRUE(record.GetEntries().empty());
    EXPECT_FALSE(notified);
}

// A viewport that keeps every entry, and the scene that shows it.
class StubbornViewport final : public vl::zr::Viewport {
public:
    void RemoveAnimationReference(vl::zr::AnimationReference*) override { ++m_asked; }

    int m_asked = 0;
};

class StubbornScene final : public kernix::SceneModel {
public:
    StubbornViewport m_viewport;

protected:
    void CollectViewports(vl::InterfaceArray* out) override { out->Add(&m_viewport); }
};

TEST(AnimManager, AReferenceThatStaysIsTriedOnce) {
    AnimFixture f;
    StubbornScene scene;
    TestAnimation* a = scene.AddAnimation(u"A");
    const auto references = vl::Ref<vl::Array>::Adopt(kernix::CreateArray());
    vl::zr::AnimationReference entries[] = {{a}, {nullptr}, {a}};
    for (auto& entry : entries) references->Add(vl::ToWord(&entry));
    scene.m_viewport.m_pAnimationReferences = references.Get();
    EXPECT_TRUE(f.Manager().RemoveAnimation(nullptr, a));
    EXPECT_EQ(scene.m_viewport.m_asked, 2);
}

TEST(AnimManager, RemovesEveryAnimationOfTheScenesOwnList) {
    AnimFixture f;
    for (const char16_t* name : {u"A", u"B", u"C", u"D"}) f.AddAnimation(name);
    EXPECT_TRUE(f.Manager().RemoveAnimations(nullptr, f.Scene().m_pAnimations));
    EXPECT_TRUE(f.AnimationNames().empty());
}

TEST(AnimMerge, NeedsTwoAnimations) {
    AnimFixture f;
    TestAnimation* a = f.AddAnimation(u"A");
    kernix::ChangeRecordModel record;
    EXPECT_EQ(f.Manager().MergeAnimations(&record, nullptr, true, kMergeAll), nullptr);
    EXPECT_EQ(f.Merge({a}, true, kMergeAll, &record), nullptr);
    EXPECT_EQ(f.AnimationNames().size(), 1U);
    EXPECT_TRUE(record.GetEntries().empty());
}

TEST(AnimMerge, OfTheScenesOwnListLeavesTheResult) {
    AnimFixture f;
    TestNode* node = f.AddNode("node");
    TestNode* laterOnly = f.AddNode("later");
    TestNode* unmoved = f.AddNode("unmoved");
    TestAnimation* a = f.AddAnimation(u"A");
    TestAnimation* b = f.AddAnimation(u"B");
    f.AddVectorKeys(node, a, kKeyPosition, {{0, 1}, {1, 2}});
    f.AddVectorKeys(node, b, kKeyPosition, {{1.02F, 3}});
    f.AddVectorKeys(laterOnly, b, kKeyScale, {{4, 7}});
    kernix::ChangeRecordModel record;

    auto* merged = static_cast<TestAnimation*>(
        f.Manager().MergeAnimations(&record, f.Scene().m_pAnimations, true, kMergeAll));

    EXPECT_EQ(f.AnimationNames(), (std::vector<std::u16string>{u"Merge Result"}));
    EXPECT_EQ(f.Dump(node, merged, kKeyPosition), "0:1 1:2 1.02:3");
    EXPECT_EQ(f.Dump(laterOnly, merged, kKeyScale), "4:7");
    EXPECT_EQ(f.Dump(unmoved, merged, kKeyPosition), "-");
    EXPECT_EQ(Changes(record),
              (std::vector<Change>{Change::kAnimationCreation, Change::kTrackCreation, Change::kTrackCreation,
                                   Change::kAnimationItemRemoval, Change::kAnimationRemoval,
                                   Change::kAnimationItemRemoval, Change::kAnimationItemRemoval,
                                   Change::kAnimationRemoval}));
}

TEST(AnimMerge, KeepsTheChosenKeyTypes) {
    const struct {
        std::uint32_t flags;
        int positions, rotations, scales;
    } cases[] = {{0, 0, 0, 0},
                 {ANIM_MERGE_POSITION, 4, 0, 0},
                 {ANIM_MERGE_ROTATION, 0, 4, 0},
                 {ANIM_MERGE_SCALE, 0, 0, 4},
                 {kMergeAll, 4, 4, 4}};
    for (const auto& c : cases) {
        AnimFixture f;
        TestNode* node = f.AddNode("node");
        std::vector<TestAnimation*> sources;
        for (float start : {0.0F, 2.0F}) {
            sources.push_back(f.AddAnimation(u"source"));
            f.AddVectorKeys(node, sources.back(), kKeyPosition, {{start, 1}, {start + 1, 1}});
            f.AddVectorKeys(node, sources.back(), kKeyScale, {{start, 1}, {start + 1, 1}});
            f.AddRotation(node, sources.back(), start, vl::Quaternion());
            f.AddRotation(node, sources.back(), start + 1, vl::Quaternion());
        }
        auto* track = f.Controller(node)->GetTrack(f.Merge(sources, false, c.flags));
        ASSERT_NE(track, nullptr);
        EXPECT_EQ(f.Controller(node)->GetTrackKeyCount(kKeyPosition, track), c.positions) << c.flags;
        EXPECT_EQ(f.Controller(node)->GetTrackKeyCount(kKeyRotation, track), c.rotations) << c.flags;
        EXPECT_EQ(f.Controller(node)->GetTrackKeyCount(kKeyScale, track), c.scales) << c.flags;
    }
}

TEST(AnimMerge, OtherControllersKeepTheFirstTrack) {
    AnimFixture f;
    TestNode* node = f.AddNode("node");
    TestAnimation* a = f.AddAnimation(u"A");
    TestAnimation* b = f.AddAnimation(u"B");
    TestAnimation* c = f.AddAnimation(u"C");
    kernix::SampledControllerModel* weights = node->AddController("weights");
    kernix::SampledControllerModel* colour = f.Scene().AddMaterial("m", "")->AddController("colour");
    for (auto* controller : {weights, colour}) {
        controller->AddSampledTrack(b)->SetCurve(kernix::StoredCurve({{}, {0, 1}, {5, 6}}));
        controller->AddSampledTrack(c)->SetCurve(kernix::StoredCurve({{}, {2}, {7}}));
    }
    TestAnimation* merged = f.Merge({a, b, c}, false, 0);
    for (auto* controller : {weights, colour}) {
        auto* track = static_cast<kernix::SampledTrack*>(controller->GetTrack(merged));
        ASSERT_NE(track, nullptr);
        EXPECT_EQ(track->GetCurve().values, (std::vector<float>{5, 6}));
    }
}

TEST(AnimMerge, WithoutATransferStreamLaterSourcesStillMerge) {
    AnimFixture f;
    f.m_host.m_hasStreams = false;
    TestNode* node = f.AddNode("node");
    TestAnimation* a = f.AddAnimation(u"A");
    TestAnimation* b = f.AddAnimation(u"B");
    f.AddVectorKeys(node, a, kKeyPosition, {{0, 1}});
    f.AddVectorKeys(node, b, kKeyPosition, {{1, 2}, {2, 3}});
    EXPECT_EQ(f.Dump(node, f.Merge({a, b}), kKeyPosition), "1:2 2:3");
}

}  // namespace
