// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace zr {

// A progress bar on standard error, shown only on a terminal and only for work that has taken a second. It
// counts the seconds by itself, so that it never stands still. Cleared when it ends.
class Progress {
public:
    explicit Progress(std::string title);  // empty: none is shown
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void Show(double done);  // 0 to 1
    // Call before printing something else. Hidden until it is shown again.
    void Clear();

private:
    void Run(const std::stop_token& stop);
    void Draw();

    std::string m_title;
    std::chrono::steady_clock::time_point m_start;
    std::mutex m_mutex;
    std::condition_variable_any m_isOver;
    double m_done = 0;
    bool m_isHidden = false;
    bool m_isDrawn = false;
    std::jthread m_thread;  // none where nothing is shown
};

}  // namespace zr
