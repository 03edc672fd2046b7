// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

#include "module/resources/resource.h"
#include "platform/ui/host_windows.h"
#include "platform/windows.h"

namespace {

class NoDisplayTest : public ::testing::Test {
protected:
    NoDisplayTest() {
        setenv("DISPLAY", ":59999", 1);
        unsetenv("WAYLAND_DISPLAY");
        setenv("LC_ALL", "C.UTF-8", 1);
        unsetenv("QT_QPA_PLATFORM");
    }
};

INT_PTR CALLBACK NeverCalled(HWND, UINT, WPARAM, LPARAM) {
    ADD_FAILURE();
    return 0;
}

class Echo final : public platform::HostControl {
public:
    Echo() : HostControl(17) {}

    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        return static_cast<LRESULT>(message + wParam) + lParam;
    }
};

TEST_F(NoDisplayTest, ControlsOfTheHostNeedNoWindows) {
    Echo control;
    EXPECT_EQ(SendMessageA(control.Handle(), 1, 20, 300), 321);
    EXPECT_EQ(GetWindowLongPtrA(control.Handle(), 0), 17);
    EXPECT_EQ(GetWindowLongPtrA(nullptr, 0), 0);
    EXPECT_FALSE(SetWindowTextW(control.Handle(), u"x"));
    EXPECT_EQ(SendMessageA(nullptr, 1, 0, 0), 0);
}

TEST_F(NoDisplayTest, OpeningAWindowFailsWithALineAndTheProgramGoesOn) {
    std::string error;
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_FALSE(platform::StartUserInterface(error));
        EXPECT_EQ(error, "cannot open a window: no display can be reached");
        EXPECT_EQ(CreateWindowExA(0, "SysTreeView32", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr),
                  nullptr);
        EXPECT_EQ(DialogBoxParamA(nullptr, MAKEINTRESOURCEA(IDD_CLEANER), nullptr, NeverCalled, 0), -1);
    }
    EXPECT_FALSE(platform::RunUntilWindowsClosed());
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

}  // namespace
