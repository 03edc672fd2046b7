// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace zr {

// A progress bar on standard error, shown only on a terminal and only once the work has taken a second. A
// thread of its own keeps the seconds counting. The destructor clears it.
class Progress {
public:
    explicit Progress(std::string title);  // empty: shows nothing
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
    std::jthread m_thread;  // not started when nothing is shown
};

}  // namespace zr
