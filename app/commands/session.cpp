// SPDX-License-Identifier: MIT
#include "app/commands/session.h"

#include <csignal>

#include "app/services/strings.h"

namespace zr {
namespace {

vl::Context* g_interrupted = nullptr;

static_assert(std::atomic<unsigned char>::is_always_lock_free, "the signal handler sets the flag");

// A second Ctrl-C ends the program at once.
extern "C" void OnInterrupt(int) {
    g_interrupted->m_bBreak.store(1, std::memory_order_relaxed);
    std::signal(SIGINT, SIG_DFL);
}

}  // namespace

Session::Session() : m_context(vl::Ref<vl::Context>::Adopt(kernix::CreateContext())) {
    g_interrupted = m_context.Get();
    std::signal(SIGINT, OnInterrupt);
}

Session::~Session() {
    std::signal(SIGINT, SIG_DFL);
}

Host& Session::GetHost() {
    if (!m_host) {
        m_host = std::make_unique<Host>(m_language.empty() ? UserLanguage() : m_language);
        m_host->LoadModule();
    }
    return *m_host;
}

}  // namespace zr
