// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "platform/ui/host_windows.h"

// A tree control that keeps what is inserted: the texts in their order, and for each the number of its
// parent's line, counted from 1, or 0 for the root. It fails the test on any other message.
class TreeRecorder final : public platform::HostControl {
public:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    const std::vector<std::string>& Texts() const { return m_texts; }
    const std::vector<int>& Parents() const { return m_parents; }

private:
    std::vector<std::string> m_texts;
    std::vector<int> m_parents;
};
