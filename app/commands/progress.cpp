// SPDX-License-Identifier: MIT
#include "app/commands/progress.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "base/process.h"

namespace zr {
namespace {

using namespace std::chrono_literals;

constexpr int kBarWidth = 40;
constexpr auto kPatience = 1s;
constexpr auto kBetweenUpdates = 100ms;

}  // namespace

Progress::Progress(std::string title) : m_title(std::move(title)), m_start(std::chrono::steady_clock::now()) {
    if (m_title.empty() || !IsStandardErrorTerminal()) return;
    m_thread = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

Progress::~Progress() {
    m_thread = {};
    Clear();
}

void Progress::Show(double done) {
    const std::lock_guard lock(m_mutex);
    m_done = std::clamp(done, 0.0, 1.0);
    m_isHidden = false;
}

void Progress::Clear() {
    const std::lock_guard lock(m_mutex);
    if (m_isDrawn) std::fprintf(stderr, "\r\033[K");
    m_isDrawn = false;
    m_isHidden = true;
}

void Progress::Run(const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    m_isOver.wait_for(lock, stop, kPatience, [] { return false; });
    while (!stop.stop_requested()) {
        if (!m_isHidden) Draw();
        m_isOver.wait_for(lock, stop, kBetweenUpdates, [] { return false; });
    }
}

void Progress::Draw() {
    const auto filled = static_cast<std::size_t>(m_done * kBarWidth);
    const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - m_start;
    std::fprintf(stderr, "\r%s [%s] %3.0f %%  %.0f s", m_title.c_str(), bar.c_str(), m_done * 100,
                 passed.count());
    std::fflush(stderr);
    m_isDrawn = true;
}

}  // namespace zr
