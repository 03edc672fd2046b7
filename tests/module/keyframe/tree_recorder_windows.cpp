// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tests/module/keyframe/tree_recorder.h"

// A window off the screen, of a class of its own.
class TreeRecorder::Control {
public:
    explicit Control(TreeRecorder& owner) {
        static const ATOM windowClass = Register();
        m_window = CreateWindowA(MAKEINTATOM(windowClass), "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                                 nullptr);
        SetPropA(m_window, kOwner, &owner);
    }
    ~Control() { DestroyWindow(m_window); }

    HWND m_window;

private:
    static constexpr char kOwner[] = "owner";

    static ATOM Register() {
        WNDCLASSA windowClass{};
        windowClass.lpfnWndProc = Procedure;
        windowClass.lpszClassName = "TreeRecorder";
        return RegisterClassA(&windowClass);
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message < TV_FIRST) return DefWindowProcA(window, message, wParam, lParam);
        EXPECT_EQ(message, static_cast<UINT>(TVM_INSERTITEMA));
        auto* owner = static_cast<TreeRecorder*>(GetPropA(window, kOwner));
        return owner->Insert(*reinterpret_cast<const TVINSERTSTRUCTA*>(lParam));
    }
};

TreeRecorder::TreeRecorder() : m_control(std::make_unique<Control>(*this)) {}
TreeRecorder::~TreeRecorder() = default;

HWND TreeRecorder::Handle() const {
    return m_control->m_window;
}
