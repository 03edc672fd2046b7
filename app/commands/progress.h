// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace zr {

// A progress bar on standard error, shown only on a terminal and only for work that has taken a second.
// Cleared when it ends.
class Progress {
public:
    explicit Progress(std::string title);  // empty: none is shown
    ~Progress() { Clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(double done);  // 0 to 1
    // Call before printing something else.
    void Clear();

private:
    std::string m_title;
    std::chrono::steady_clock::time_point m_start;
    std::chrono::steady_clock::time_point m_shown;
    bool m_isShown;
    bool m_visible = false;
};

}  // namespace zr
