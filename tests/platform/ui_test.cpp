// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <thread>

#include "module/resources/resource.h"
#include "platform/windows.h"
#include "tests/platform/tree_item.h"
#include "tests/platform/ui_driver.h"

namespace {

using driver::Key;
using driver::Place;
using platform::Wide;
using platform_test::Insert;

constexpr UINT kFirstOwn = 0x8000;

struct Received {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

// Opens the cleaner's template, which this program contains, with a procedure that records what it receives.
class DialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_EQ(driver::Start(), ""); }

    // Runs the dialog; `steps` happens in its event loop, then the dialog ends.
    INT_PTR Run(std::function<void()> steps) {
        driver::WhenDialogOpens([this, steps] {
            steps();
            EndDialog(m_dialog, 42);
        });
        return DialogBoxParamA(nullptr, MAKEINTRESOURCEA(IDD_CLEANER), nullptr, Procedure,
                               reinterpret_cast<LPARAM>(this));
    }

    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
        // The system sends more, from the first moment on.
        const bool isNoted = message == WM_INITDIALOG || message == WM_COMMAND || message == WM_HELP ||
                             message == WM_DESTROY || message > kFirstOwn;
        if (!isNoted) return FALSE;
        if (message == WM_INITDIALOG) {
            s_test = reinterpret_cast<DialogTest*>(lParam);
            s_test->m_dialog = dialog;
        }
        s_test->m_received.push_back({message, wParam, lParam});
        return s_test->m_answer(message);
    }

    static BOOL CALLBACK CountChild(HWND, LPARAM count) { return ++*reinterpret_cast<int*>(count) < 20; }

    std::vector<WPARAM> Commands() const {
        std::vector<WPARAM> commands;
        for (const Received& received : m_received) {
            if (received.message == WM_COMMAND) commands.push_back(received.wParam);
        }
        return commands;
    }

    static DialogTest* s_test;
    HWND m_dialog = nullptr;
    std::vector<Received> m_received;
    std::function<INT_PTR(UINT)> m_answer = [](UINT message) -> INT_PTR { return message == WM_INITDIALOG; };
};

DialogTest* DialogTest::s_test = nullptr;

TEST_F(DialogTest, EndsWithItsResultAndItsHandlesFailAfterwards) {
    HWND button = nullptr;
    EXPECT_EQ(Run([&] { button = GetDlgItem(m_dialog, IDC_PROCESS); }), 42);
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(m_received.front().message, WM_INITDIALOG);
    EXPECT_EQ(m_received.back().message, WM_DESTROY);
    const std::size_t count = m_received.size();
    EXPECT_EQ(SendMessageA(m_dialog, WM_COMMAND, 1, 0), 0);
    PostMessageA(m_dialog, WM_COMMAND, 1, 0);
    driver::ServeEvents();
    EXPECT_EQ(m_received.size(), count);
    EXPECT_FALSE(SetWindowTextW(button, Wide(u"x")));
    EXPECT_FALSE(EndDialog(m_dialog, 1));
}

TEST_F(DialogTest, EndedWhileItOpensIsNeverShown) {
    m_answer = [this](UINT message) -> INT_PTR { return message == WM_INITDIALOG && EndDialog(m_dialog, 7); };
    EXPECT_EQ(DialogBoxParamA(nullptr, MAKEINTRESOURCEA(IDD_CLEANER), nullptr, Procedure,
                              reinterpret_cast<LPARAM>(this)),
              7);
    EXPECT_FALSE(driver::HasDialog());
}

TEST_F(DialogTest, AMissingTemplateIsAFailure) {
    EXPECT_EQ(DialogBoxParamA(nullptr, MAKEINTRESOURCEA(102), nullptr, Procedure, 0), -1);
}

TEST_F(DialogTest, ControlsLieWhereTheTemplatePutsThem) {
    Run([&] {
        // 216 x 10 units at (12, 12): a quarter of a character's width and an eighth of its height each.
        const Place first = driver::PlaceOf(IDC_UNUSED_MATERIALS);
        const double unitX = driver::Area().width / 240.0;
        const double unitY = driver::Area().height / 180.0;
        EXPECT_NEAR(first.x, 12 * unitX, 1);
        EXPECT_NEAR(first.y, 12 * unitY, 1);
        EXPECT_NEAR(first.width, 216 * unitX, 1);
        EXPECT_NEAR(first.height, 10 * unitY, 1);
        EXPECT_NEAR(unitX * 4 / (unitY * 8), 6.0 / 13.0, 0.12);
        for (const int id : {IDC_PROGRESS, IDC_LOG, IDC_BREAK}) EXPECT_FALSE(driver::IsVisible(id));
        // The frame covers the check boxes and must not take their clicks.
        EXPECT_EQ(driver::ClickedAt(IDC_UNUSED_MATERIALS), IDC_UNUSED_MATERIALS);

        RECT rect;
        ASSERT_TRUE(GetWindowRect(GetDlgItem(m_dialog, IDC_OPTIONS), &rect));
        POINT corner{rect.left, rect.top};
        ASSERT_TRUE(ScreenToClient(m_dialog, &corner));
        const Place options = driver::PlaceOf(IDC_OPTIONS);
        EXPECT_EQ(corner.x, options.x);
        EXPECT_EQ(corner.y, options.y);
        EXPECT_EQ(rect.right - rect.left, options.width);
        EXPECT_TRUE(MoveWindow(GetDlgItem(m_dialog, IDC_LOG), 3, 4, 50, 60, TRUE));
        EXPECT_EQ(driver::PlaceOf(IDC_LOG), (Place{3, 4, 50, 60}));
    });
}

TEST_F(DialogTest, TabVisitsTheTabStopsInTemplateOrder) {
    std::vector<int> visited;
    Run([&] {
        for (int i = 0; i < 14; ++i) {
            visited.push_back(driver::FocusedId());
            driver::Press(Key::kTab);
        }
    });
    EXPECT_EQ(visited, (std::vector<int>{1003, 1004, 1006, 1005, 1007, 1008, 1010, 1009, 1011, 1012, 1001, 2,
                                         9, 1003}));
}

TEST_F(DialogTest, KeysBecomeCommands) {
    Run([&] {
        driver::Press(Key::kEnter);
        EXPECT_EQ(SetFocus(GetDlgItem(m_dialog, IDC_HELP_PAGE)), GetDlgItem(m_dialog, IDC_UNUSED_MATERIALS));
        driver::Press(Key::kSpace);
        driver::Press(Key::kEscape);
        driver::CloseDialog();
        driver::Press(Key::kF1);
        driver::Click(IDC_METADATA);
    });
    EXPECT_EQ(Commands(),
              (std::vector<WPARAM>{IDC_PROCESS, IDC_HELP_PAGE, IDCANCEL, IDCANCEL, IDC_METADATA}));
    EXPECT_EQ(m_received[m_received.size() - 3].message, WM_HELP);
}

TEST_F(DialogTest, TextChecksAndPropertiesComeBack) {
    Run([&] {
        std::array<char16_t, 8> text;
        const HWND box = GetDlgItem(m_dialog, IDC_METADATA);
        EXPECT_EQ(GetWindowTextW(box, Wide(text.data()), 8), 4);
        EXPECT_EQ(std::u16string(text.data()), u"#503");
        EXPECT_EQ(GetWindowTextW(m_dialog, Wide(text.data()), 3), 2);
        EXPECT_EQ(text[2], 0);

        EXPECT_TRUE(SetDlgItemTextW(m_dialog, IDC_LOG, Wide(u"a\r\n\u00e9\r\n")));
        EXPECT_EQ(GetWindowTextW(GetDlgItem(m_dialog, IDC_LOG), Wide(text.data()), 8), 6);
        EXPECT_EQ(std::u16string(text.data()), u"a\r\n\u00e9\r\n");

        EXPECT_EQ(IsDlgButtonChecked(m_dialog, IDC_METADATA), BST_UNCHECKED);
        EXPECT_TRUE(CheckDlgButton(m_dialog, IDC_METADATA, BST_CHECKED));
        EXPECT_EQ(IsDlgButtonChecked(m_dialog, IDC_METADATA), BST_CHECKED);

        EXPECT_EQ(GetPropA(m_dialog, "name"), nullptr);
        EXPECT_TRUE(SetPropA(m_dialog, "name", this));
        EXPECT_EQ(GetPropA(m_dialog, "name"), this);
        EXPECT_EQ(GetPropA(box, "name"), nullptr);
        EXPECT_EQ(RemovePropA(m_dialog, "name"), this);
        EXPECT_EQ(GetPropA(m_dialog, "name"), nullptr);

        const HWND bar = GetDlgItem(m_dialog, IDC_PROGRESS);
        SendMessageA(bar, PBM_SETRANGE, 0, MAKELPARAM(0, 9));
        SendMessageA(bar, PBM_SETPOS, 5, 0);
        EXPECT_EQ(driver::ProgressOf(IDC_PROGRESS).maximum, 9);
        EXPECT_EQ(driver::ProgressOf(IDC_PROGRESS).value, 5);

        int children = 0;
        EnumChildWindows(m_dialog, CountChild, reinterpret_cast<LPARAM>(&children));
        EXPECT_EQ(children, 17);
    });
}

// A thread posts, then sends: with the windows' thread busy meanwhile, the sent message is served first.
TEST_F(DialogTest, SentMessagesOvertakePostedOnes) {
    Run([&] {
        std::thread other([&] {
            PostMessageA(m_dialog, kFirstOwn + 2, 0, 0);
            PostMessageA(m_dialog, kFirstOwn + 3, 0, 0);
            SendMessageA(m_dialog, kFirstOwn + 1, 5, 6);
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        while (m_received.back().message != kFirstOwn + 3) driver::ServeEvents();
        other.join();
    });
    std::vector<UINT> order;
    for (const Received& received : m_received) {
        if (received.message > kFirstOwn) order.push_back(received.message - kFirstOwn);
    }
    EXPECT_EQ(order, (std::vector<UINT>{1, 2, 3}));
}

TEST_F(DialogTest, ThreadsThatSendAllGetAnAnswer) {
    Run([&] {
        std::atomic<int> left = 4;
        std::vector<std::thread> senders;
        for (int i = 0; i < 4; ++i) {
            senders.emplace_back([&] {
                for (int k = 0; k < 500; ++k) SendMessageA(m_dialog, kFirstOwn + 1, 0, 0);
                --left;
            });
        }
        while (left > 0) driver::ServeEvents();
        for (std::thread& sender : senders) sender.join();
        EXPECT_EQ(std::count_if(m_received.begin(), m_received.end(),
                                [](const Received& received) { return received.message == kFirstOwn + 1; }),
                  2000);
    });
}

class TreeTest : public DialogTest {
protected:
    static HWND Create() {
        return CreateWindowExA(WS_EX_CLIENTEDGE, "SYSTREEVIEW32", " title ", WS_VISIBLE | WS_OVERLAPPEDWINDOW,
                               CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr,
                               nullptr, nullptr);
    }
};

TEST_F(TreeTest, ItemsNestInTheirOrder) {
    const HWND tree = Create();
    ASSERT_NE(tree, nullptr);
    const HTREEITEM root = Insert(tree, TVI_ROOT, "root");
    const HTREEITEM first = Insert(tree, root, "b");
    Insert(tree, first, "leaf");
    Insert(tree, root, "a");
    EXPECT_EQ(Insert(tree, reinterpret_cast<HTREEITEM>(std::uintptr_t{99}), "lost"), nullptr);

    const std::vector<driver::TreeWindow> windows = driver::TreeWindows();
    ASSERT_EQ(windows.size(), 1u);
    EXPECT_EQ(windows[0].title, u" title ");
    ASSERT_EQ(windows[0].items.size(), 1u);
    const std::vector<driver::TreeItem>& children = windows[0].items[0].children;
    ASSERT_EQ(children.size(), 2u);
    EXPECT_EQ(children[0].text, u"b");
    EXPECT_EQ(children[0].children.size(), 1u);
    EXPECT_EQ(children[1].text, u"a");

    driver::CloseTreeWindows();
    EXPECT_EQ(Insert(tree, TVI_ROOT, "late"), nullptr);
}

}  // namespace
