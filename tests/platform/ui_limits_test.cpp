// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QTimer>
#include <QTreeWidget>
#include <thread>

#include "module/resources/resource.h"
#include "platform/ui/host_windows.h"
#include "platform/windows.h"
#include "tests/platform/ui_driver.h"

// Where these windows do less than the system's, and what a host needs of them.
namespace {

class HostWindowsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_EQ(driver::Start(), ""); }

    static HWND CreateTree(const char* windowClass) {
        return CreateWindowExA(0, windowClass, "", WS_VISIBLE | WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                               CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, nullptr,
                               nullptr);
    }
};

TEST_F(HostWindowsTest, OtherClassesAndOtherThreadsOpenNothing) {
    EXPECT_EQ(CreateTree("Button"), nullptr);
    INT_PTR result = 0;
    std::thread([&] {
        const DLGPROC procedure = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
        result = DialogBoxParamA(nullptr, MAKEINTRESOURCEA(IDD_CLEANER), nullptr, procedure, 0);
    }).join();
    EXPECT_EQ(result, -1);
}

TEST_F(HostWindowsTest, NarrowTextIsUtf8AndAnUnknownParentIsRefused) {
    const HWND tree = CreateTree("SYSTREEVIEW32");
    char label[] = "b \xC3\xA9";
    TVINSERTSTRUCTA insert{};
    insert.hParent = TVI_ROOT;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT;
    insert.item.pszText = label;
    const auto parameter = reinterpret_cast<LPARAM>(&insert);
    EXPECT_NE(SendMessageA(tree, TVM_INSERTITEMA, 0, parameter), 0);
    EXPECT_EQ(driver::TreeWindows().at(0).items.at(0).text, u"b \u00E9");
    insert.hParent = reinterpret_cast<HTREEITEM>(std::uintptr_t{99});
    EXPECT_EQ(SendMessageA(tree, TVM_INSERTITEMA, 0, parameter), 0);
    driver::CloseTreeWindows();
}

TEST_F(HostWindowsTest, TheLastClosedWindowEndsTheLoop) {
    ASSERT_NE(CreateTree("SysTreeView32"), nullptr);
    driver::Post(driver::CloseTreeWindows);
    EXPECT_TRUE(platform::RunUntilWindowsClosed());
    EXPECT_FALSE(platform::RunUntilWindowsClosed());
}

}  // namespace
