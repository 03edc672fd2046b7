// SPDX-License-Identifier: MIT
#include "app/commands/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace zr {
namespace {

using namespace std::chrono_literals;

constexpr int kBarWidth = 40;
constexpr auto kPatience = 1s;
constexpr auto kBetweenUpdates = 100ms;

}  // namespace

Progress::Progress(std::string title)
    : m_title(std::move(title)),
      m_start(std::chrono::steady_clock::now()),
      m_isShown(!m_title.empty() && isatty(STDERR_FILENO) == 1) {}

void Progress::Clear() {
    if (m_visible) std::fprintf(stderr, "\r\033[K");
    m_visible = false;
}

void Progress::Show(double done) {
    const auto now = std::chrono::steady_clock::now();
    if (!m_isShown || now - m_start < kPatience || now - m_shown < kBetweenUpdates) return;
    m_shown = now;
    m_visible = true;
    const double share = std::clamp(done, 0.0, 1.0);
    const auto filled = static_cast<std::size_t>(share * kBarWidth);
    const std::string bar = std::string(filled, '#') + std::string(kBarWidth - filled, '.');
    std::fprintf(stderr, "\r%s [%s] %3.0f %%", m_title.c_str(), bar.c_str(), share * 100);
    std::fflush(stderr);
}

}  // namespace zr
