// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/windows.h"

// A tree control that keeps what is inserted: the texts in their order, and for each the number of its
// parent's line, counted from 1, or 0 for the root. It fails the test on any other message.
class TreeRecorder {
public:
    TreeRecorder();
    ~TreeRecorder();

    HWND Handle() const;
    const std::vector<std::string>& Texts() const { return m_texts; }
    const std::vector<int>& Parents() const { return m_parents; }

private:
    class Control;

    LRESULT Insert(const TVINSERTSTRUCTA& insert);

    std::unique_ptr<Control> m_control;
    std::vector<std::string> m_texts;
    std::vector<int> m_parents;
};
