// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <QApplication>
#include <QProgressBar>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <functional>
#include <thread>

#include "module/resources/resource.h"
#include "platform/ui/host_windows.h"
#include "platform/windows.h"

namespace {

struct Received {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

// Opens the cleaner's template, which this program carries, with a procedure that notes what it receives.
class DialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        std::string error;
        ASSERT_TRUE(platform::StartUserInterface(error)) << error;
    }

    // Runs the dialog; `steps` happens in its event loop, then the dialog ends.
    INT_PTR Run(std::function<void()> steps) {
        QTimer::singleShot(0, [this, steps] {
            EXPECT_TRUE(QTest::qWaitForWindowActive(QApplication::activeModalWidget()));
            steps();
            EndDialog(m_dialog, 42);
        });
        return DialogBoxParamA(nullptr, MAKEINTRESOURCEA(IDD_CLEANER), nullptr, Procedure,
                               reinterpret_cast<LPARAM>(this));
    }

    static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_INITDIALOG) {
            s_test = reinterpret_cast<DialogTest*>(lParam);
            s_test->m_dialog = dialog;
        }
        s_test->m_received.push_back({message, wParam, lParam});
        return s_test->m_answer(message);
    }

    std::vector<WPARAM> Commands() const {
        std::vector<WPARAM> commands;
        for (const Received& received : m_received) {
            if (received.message == WM_COMMAND) commands.push_back(received.wParam);
        }
        return commands;
    }

    static QWidget* Control(int id) {
        return QApplication::activeModalWidget()->findChild<QWidget*>(QString::number(id));
    }

    static int FocusedId() {
        const QWidget* focus = QApplication::focusWidget();
        return focus ? focus->objectName().toInt() : -1;
    }

    static void Press(Qt::Key key) {
        QWidget* focus = QApplication::focusWidget();
        QTest::keyClick(focus ? focus : QApplication::activeModalWidget(), key);
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
    QCoreApplication::processEvents();
    EXPECT_EQ(m_received.size(), count);
    EXPECT_FALSE(SetWindowTextW(button, u"x"));
    EXPECT_FALSE(EndDialog(m_dialog, 1));
}

TEST_F(DialogTest, EndedWhileItOpensIsNeverShown) {
    m_answer = [this](UINT message) -> INT_PTR { return message == WM_INITDIALOG && EndDialog(m_dialog, 7); };
    EXPECT_EQ(DialogBoxParamA(nullptr, MAKEINTRESOURCEA(IDD_CLEANER), nullptr, Procedure,
                              reinterpret_cast<LPARAM>(this)),
              7);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(DialogTest, NoTemplateOrAnotherThreadIsAFailure) {
    EXPECT_EQ(DialogBoxParamA(nullptr, MAKEINTRESOURCEA(102), nullptr, Procedure, 0), -1);
    INT_PTR result = 0;
    std::thread([&] {
        result = DialogBoxParamA(nullptr, MAKEINTRESOURCEA(IDD_CLEANER), nullptr, Procedure, 0);
    }).join();
    EXPECT_EQ(result, -1);
}

TEST_F(DialogTest, ControlsLieWhereTheTemplatePutsThem) {
    Run([&] {
        const QWidget* dialog = QApplication::activeModalWidget();
        // 216 x 10 units at (12, 12): a quarter of a character's width and an eighth of its height each.
        const QWidget* first = Control(IDC_UNUSED_MATERIALS);
        const double unitX = dialog->width() / 240.0;
        const double unitY = dialog->height() / 180.0;
        EXPECT_NEAR(first->x(), 12 * unitX, 1);
        EXPECT_NEAR(first->y(), 12 * unitY, 1);
        EXPECT_NEAR(first->width(), 216 * unitX, 1);
        EXPECT_NEAR(first->height(), 10 * unitY, 1);
        EXPECT_NEAR(unitX * 4 / (unitY * 8), 6.0 / 13.0, 0.12);
        EXPECT_FALSE(Control(IDC_PROGRESS)->isVisible());
        EXPECT_FALSE(Control(IDC_LOG)->isVisible());
        EXPECT_FALSE(Control(IDC_BREAK)->isVisible());
        // The frame covers the check boxes and must not take their clicks.
        EXPECT_EQ(dialog->childAt(first->geometry().center()), first);

        RECT rect;
        ASSERT_TRUE(GetWindowRect(GetDlgItem(m_dialog, IDC_OPTIONS), &rect));
        POINT corner{rect.left, rect.top};
        ASSERT_TRUE(ScreenToClient(m_dialog, &corner));
        EXPECT_EQ(QPoint(corner.x, corner.y), Control(IDC_OPTIONS)->pos());
        EXPECT_EQ(rect.right - rect.left, Control(IDC_OPTIONS)->width());
        EXPECT_TRUE(MoveWindow(GetDlgItem(m_dialog, IDC_LOG), 3, 4, 50, 60, TRUE));
        EXPECT_EQ(Control(IDC_LOG)->geometry(), QRect(3, 4, 50, 60));
    });
}

TEST_F(DialogTest, TabVisitsTheTabStopsInTemplateOrder) {
    std::vector<int> visited;
    Run([&] {
        for (int i = 0; i < 14; ++i) {
            visited.push_back(FocusedId());
            Press(Qt::Key_Tab);
        }
    });
    EXPECT_EQ(visited, (std::vector<int>{1003, 1004, 1006, 1005, 1007, 1008, 1010, 1009, 1011, 1012, 1001, 2,
                                         9, 1003}));
}

TEST_F(DialogTest, KeysBecomeCommands) {
    Run([&] {
        Press(Qt::Key_Return);
        EXPECT_EQ(SetFocus(GetDlgItem(m_dialog, IDC_HELP_PAGE)), GetDlgItem(m_dialog, IDC_UNUSED_MATERIALS));
        Press(Qt::Key_Return);
        Press(Qt::Key_Escape);
        QApplication::activeModalWidget()->close();
        EnableWindow(GetDlgItem(m_dialog, IDCANCEL), FALSE);
        Press(Qt::Key_Escape);
        Press(Qt::Key_F1);
        QTest::mouseClick(Control(IDC_METADATA), Qt::LeftButton, {}, QPoint(8, 8));
    });
    EXPECT_EQ(Commands(),
              (std::vector<WPARAM>{IDC_PROCESS, IDC_HELP_PAGE, IDCANCEL, IDCANCEL, IDC_METADATA}));
    EXPECT_EQ(m_received[m_received.size() - 3].message, WM_HELP);
}

TEST_F(DialogTest, TextChecksAndPropertiesComeBack) {
    Run([&] {
        std::array<char16_t, 8> text;
        const HWND box = GetDlgItem(m_dialog, IDC_METADATA);
        EXPECT_EQ(GetWindowTextW(box, text.data(), 8), 4);
        EXPECT_STREQ(QString::fromUtf16(text.data()).toUtf8(), "#503");
        EXPECT_EQ(GetWindowTextW(m_dialog, text.data(), 3), 2);
        EXPECT_EQ(text[2], 0);

        EXPECT_TRUE(SetDlgItemTextW(m_dialog, IDC_LOG, u"a\r\n\u00e9\r\n"));
        EXPECT_EQ(GetWindowTextW(GetDlgItem(m_dialog, IDC_LOG), text.data(), 8), 6);
        EXPECT_EQ(std::u16string(text.data()), u"a\r\n\u00e9\r\n");

        EXPECT_EQ(IsDlgButtonChecked(m_dialog, IDC_METADATA), BST_UNCHECKED);
        EXPECT_TRUE(CheckDlgButton(m_dialog, IDC_METADATA, BST_CHECKED));
        EXPECT_EQ(IsDlgButtonChecked(m_dialog, IDC_METADATA), BST_CHECKED);
        EXPECT_FALSE(CheckDlgButton(m_dialog, IDC_PROCESS, BST_CHECKED));

        EXPECT_EQ(GetPropA(m_dialog, "name"), nullptr);
        EXPECT_TRUE(SetPropA(m_dialog, "name", this));
        EXPECT_EQ(GetPropA(m_dialog, "name"), this);
        EXPECT_EQ(GetPropA(box, "name"), nullptr);
        EXPECT_EQ(RemovePropA(m_dialog, "name"), this);
        EXPECT_EQ(GetPropA(m_dialog, "name"), nullptr);

        const HWND bar = GetDlgItem(m_dialog, IDC_PROGRESS);
        SendMessageA(bar, PBM_SETRANGE, 0, MAKELPARAM(0, 9));
        SendMessageA(bar, PBM_SETPOS, 5, 0);
        EXPECT_EQ(qobject_cast<QProgressBar*>(Control(IDC_PROGRESS))->maximum(), 9);
        EXPECT_EQ(qobject_cast<QProgressBar*>(Control(IDC_PROGRESS))->value(), 5);

        int children = 0;
        EnumChildWindows(
            m_dialog, [](HWND, LPARAM count) -> BOOL { return ++*reinterpret_cast<int*>(count) < 20; },
            reinterpret_cast<LPARAM>(&children));
        EXPECT_EQ(children, 17);
    });
}

// A thread posts, then sends: with the windows' thread busy meanwhile, the sent message is served first.
TEST_F(DialogTest, SentMessagesOvertakePostedOnesAndWaitForTheAnswer) {
    m_answer = [](UINT message) -> INT_PTR { return message == 0x8001 ? 99 : message == WM_INITDIALOG; };
    LRESULT answer = 0;
    Run([&] {
        std::thread other([&] {
            PostMessageA(m_dialog, 0x8002, 0, 0);
            PostMessageA(m_dialog, 0x8003, 0, 0);
            answer = SendMessageA(m_dialog, 0x8001, 5, 6);
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        while (m_received.back().message != 0x8003) QCoreApplication::processEvents();
        other.join();
    });
    EXPECT_EQ(answer, 99);
    std::vector<UINT> order;
    for (const Received& received : m_received) {
        if (received.message > 0x8000) order.push_back(received.message);
    }
    EXPECT_EQ(order, (std::vector<UINT>{0x8001, 0x8002, 0x8003}));
}

TEST_F(DialogTest, ThreadsThatSendAllGetTheirOwnAnswer) {
    Run([&] {
        std::atomic<int> left = 4;
        std::vector<std::thread> senders;
        for (int i = 0; i < 4; ++i) {
            senders.emplace_back([&] {
                for (int k = 0; k < 500; ++k) SendMessageA(m_dialog, 0x8001, 0, 0);
                --left;
            });
        }
        while (left > 0) QCoreApplication::processEvents();
        for (std::thread& sender : senders) sender.join();
        EXPECT_EQ(std::count_if(m_received.begin(), m_received.end(),
                                [](const Received& received) { return received.message == 0x8001; }),
                  2000);
    });
}

HTREEITEM Insert(HWND tree, HTREEITEM parent, const char* text) {
    std::string label = text;
    TVINSERTSTRUCTA insert{};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT;
    insert.item.pszText = label.data();
    return reinterpret_cast<HTREEITEM>(
        SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
}

class TreeTest : public DialogTest {
protected:
    static HWND Create() {
        return CreateWindowExA(WS_EX_CLIENTEDGE, "SYSTREEVIEW32", " title ", WS_VISIBLE | WS_OVERLAPPEDWINDOW,
                               CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr,
                               nullptr, nullptr);
    }
};

TEST_F(TreeTest, ItemsNestAndTheLastClosedWindowEndsTheLoop) {
    const HWND tree = Create();
    ASSERT_NE(tree, nullptr);
    const HTREEITEM root = Insert(tree, TVI_ROOT, "root");
    const HTREEITEM first = Insert(tree, root, "b \xC3\xA9");
    Insert(tree, first, "leaf");
    Insert(tree, root, "a");
    EXPECT_EQ(Insert(tree, reinterpret_cast<HTREEITEM>(std::uintptr_t{99}), "lost"), nullptr);

    auto* widget = qobject_cast<QTreeWidget*>(QApplication::topLevelWidgets().value(0));
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->windowTitle(), " title ");
    ASSERT_EQ(widget->topLevelItemCount(), 1);
    const QTreeWidgetItem* item = widget->topLevelItem(0);
    ASSERT_EQ(item->childCount(), 2);
    EXPECT_EQ(item->child(0)->text(0), QString::fromUtf8("b \xC3\xA9"));
    EXPECT_EQ(item->child(0)->childCount(), 1);
    EXPECT_EQ(item->child(1)->text(0), "a");

    QTimer::singleShot(0, widget, &QWidget::close);
    EXPECT_TRUE(platform::RunUntilWindowsClosed());
    EXPECT_EQ(Insert(tree, TVI_ROOT, "late"), nullptr);
    EXPECT_FALSE(platform::RunUntilWindowsClosed());
}

TEST_F(TreeTest, OtherClassesAreNotKnown) {
    EXPECT_EQ(CreateWindowExA(0, "Button", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr), nullptr);
}

}  // namespace
