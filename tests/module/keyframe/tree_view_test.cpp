// SPDX-License-Identifier: MIT
#include "module/keyframe/tree_view.h"

#include <gtest/gtest.h>

#include <deque>

#include "host/ref.h"
#include "kernix/array.h"
#include "kernix/host_app_base.h"
#include "kernix/scene/plain_objects.h"
#include "kernix/scene/scene_model.h"
#include "module/frame/globals.h"
#include "module/keyframe/keyframe_tool.h"
#include "tests/module/keyframe/tree_recorder.h"
#include "tests/platform/ui_driver.h"

namespace {

using ArrayRef = vl::Ref<vl::Array>;

ArrayRef NewArray(int count = 0) {
    ArrayRef array = ArrayRef::Adopt(kernix::CreateArray());
    for (int i = 0; i < count; ++i) array->Add(0);
    return array;
}

class TreeViewTest : public ::testing::Test {
protected:
    TreeViewTest() { g_pHost = &m_host; }
    ~TreeViewTest() override { g_pHost = nullptr; }

    kernix::HostAppBase m_host;
    vl::Ref<kernix::SceneModel> m_scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
};

TEST_F(TreeViewTest, LabelNamesFlagsKeysAndType) {
    char name[] = "object";
    ExportNode record;
    record.szName = name;
    record.dwFlags = NF_ROOT | NF_GROUP | NF_ADDED;
    EXPECT_EQ(zrt::TreeLabel(record), "object |<[group|add]NULL");
    record.dwFlags = 0;
    EXPECT_EQ(zrt::TreeLabel(record), "object |<[]NULL");
    record.szName = nullptr;
    record.dwFlags = 0xFFFFFFFF;
    EXPECT_EQ(zrt::TreeLabel(record), "[group|add|Pivot|Geometry|POST|camera target|light target]NULL");
}

TEST_F(TreeViewTest, LabelCountsTheTracksThatExist) {
    kernix::NodeModel* node = m_scene->AddNode(nullptr, "box");
    const ArrayRef rotations = NewArray(2);
    const ArrayRef positions = NewArray(5);
    const ArrayRef scales = NewArray(0);
    ExportNode record;
    record.pNode = node;
    record.pController = node->AddTransformController();
    EXPECT_EQ(zrt::TreeLabel(record), "[][Animation:]NULL [box]");
    node->SetObject(vl::Ref<vl::zr::Object3D>::Adopt(kernix::CreateBone()));
    record.pRotKeys = rotations.Get();
    record.pPosKeys = positions.Get();
    EXPECT_EQ(zrt::TreeLabel(record), "[][Animation: r:2 t:5]Bone [box]");
    record.pScaleKeys = scales.Get();
    EXPECT_EQ(zrt::TreeLabel(record), "[][Animation: r:2 t:5 s:0]Bone [box]");
    node->SetObject(vl::Ref<vl::zr::Object3D>::Adopt(kernix::CreateNote()));
    record.pController = nullptr;
    EXPECT_EQ(zrt::TreeLabel(record), "[]Unknown [box]");
}

TEST_F(TreeViewTest, LabelIsBoundedAndEndsWithAWholeCharacter) {
    std::string name(509, 'x');
    name += "\xC3\xA9\xC3\xA9";
    ExportNode record;
    record.szName = name.data();
    EXPECT_EQ(zrt::TreeLabel(record), name.substr(0, 511));
    name.insert(name.begin(), 'x');
    record.szName = name.data();
    EXPECT_EQ(zrt::TreeLabel(record), name.substr(0, 510));
}

TEST_F(TreeViewTest, ItemsNestInTheRecordsOrder) {
    std::deque<ExportNode> records(5);
    char names[] = "a\0b\0c\0d\0e";
    for (std::size_t i = 0; i < records.size(); ++i) records[i].szName = names + 2 * i;
    const ArrayRef roots = NewArray();
    const ArrayRef children = NewArray();
    vl::ArrayOf<ExportNode*>(roots.Get()).Add(&records[0]);
    vl::ArrayOf<ExportNode*>(roots.Get()).Add(&records[4]);
    for (std::size_t i = 1; i < 3; ++i) vl::ArrayOf<ExportNode*>(children.Get()).Add(&records[i]);
    const ArrayRef grandchildren = NewArray();
    vl::ArrayOf<ExportNode*>(grandchildren.Get()).Add(&records[3]);
    records[0].pChildren = children.Get();
    records[1].pChildren = grandchildren.Get();

    TreeRecorder tree;
    zrt::AddTreeItems(tree.Handle(), TVI_ROOT, roots.Get());
    EXPECT_EQ(tree.Texts(), (std::vector<std::string>{"a |<[]NULL", "b |<[]NULL", "d |<[]NULL", "c |<[]NULL",
                                                      "e |<[]NULL"}));
    EXPECT_EQ(tree.Parents(), (std::vector<int>{0, 1, 2, 1, 0}));
}

TEST_F(TreeViewTest, HandlesDeepTrees) {
    constexpr std::size_t kDepth = 200000;
    std::vector<ExportNode> records(kDepth);
    std::vector<ArrayRef> lists;
    for (ExportNode& record : records) {
        lists.push_back(NewArray());
        vl::ArrayOf<ExportNode*>(lists.back().Get()).Add(&record);
    }
    for (std::size_t i = 0; i + 1 < kDepth; ++i) records[i].pChildren = lists[i + 1].Get();
    TreeRecorder tree;
    zrt::AddTreeItems(tree.Handle(), TVI_ROOT, lists.front().Get());
    ASSERT_EQ(tree.Parents().size(), kDepth);
    EXPECT_EQ(tree.Parents().back(), static_cast<int>(kDepth) - 1);
}

TEST_F(TreeViewTest, ToolFillsTheCallersTreeOrAWindowOfItsOwn) {
    ASSERT_EQ(driver::Start(), "");
    const auto tool = vl::Ref<ZR_TK>::Adopt(new ZR_TK);
    EXPECT_EQ(tool->FillTreeView(nullptr, 0), 0);
    EXPECT_TRUE(driver::TreeWindows().empty());

    kernix::NodeModel* parent = m_scene->AddNode(nullptr, "parent");
    m_scene->AddNode(parent, "child");
    tool->m_pScene = m_scene.Get();
    tool->m_dwExportFlags = vl::tk::kKeepAllNodes;
    ASSERT_EQ(tool->BuildHierarchy(), 1);

    TreeRecorder recorder;
    EXPECT_EQ(tool->FillTreeView(recorder.Handle(), 0), 1);
    EXPECT_EQ(recorder.Texts(),
              (std::vector<std::string>{"[group]NULL [parent, 1 child]", "[group]NULL [child]"}));
    EXPECT_TRUE(driver::TreeWindows().empty());

    EXPECT_EQ(tool->FillTreeView(nullptr, 0), 1);
    const std::vector<driver::TreeWindow> windows = driver::TreeWindows();
    ASSERT_EQ(windows.size(), 1u);
    EXPECT_TRUE(windows[0].isVisible);
    EXPECT_EQ(windows[0].title, u" ZR_TK::FillTreeView ");
    ASSERT_EQ(windows[0].items.size(), 1u);
    ASSERT_EQ(windows[0].items[0].children.size(), 1u);
    EXPECT_EQ(windows[0].items[0].children[0].text, u"[group]NULL [child]");
    driver::CloseTreeWindows();
}

TEST_F(TreeViewTest, ProcessShowsTheTreeOnRequestOnly) {
    ASSERT_EQ(driver::Start(), "");
    m_scene->AddNode(nullptr, "node");
    const auto tool = vl::Ref<ZR_TK>::Adopt(new ZR_TK);
    tool->m_pScene = m_scene.Get();
    tool->m_dwExportFlags = vl::tk::kKeepAllNodes;
    for (const int isWanted : {0, 1}) {
        m_host.SetSetting("Features\\ShowTweenkitInfo", isWanted);
        EXPECT_EQ(tool->Process(0), 1);
        EXPECT_EQ(driver::TreeWindows().size(), static_cast<std::size_t>(isWanted));
    }
    driver::CloseTreeWindows();
}

}  // namespace
