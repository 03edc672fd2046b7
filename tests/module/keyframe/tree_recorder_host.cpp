// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "platform/ui/host_windows.h"
#include "tests/module/keyframe/tree_recorder.h"

class TreeRecorder::Control final : public platform::HostControl {
public:
    explicit Control(TreeRecorder& owner) : m_owner(owner) {}

    LRESULT OnMessage(UINT message, WPARAM, LPARAM lParam) override {
        EXPECT_EQ(message, TVM_INSERTITEMA);
        return m_owner.Insert(*reinterpret_cast<const TVINSERTSTRUCTA*>(lParam));
    }
    LONG_PTR GetValue(int) override { return 0; }

private:
    TreeRecorder& m_owner;
};

TreeRecorder::TreeRecorder() : m_control(std::make_unique<Control>(*this)) {}
TreeRecorder::~TreeRecorder() = default;

HWND TreeRecorder::Handle() const {
    return m_control->Handle();
}
