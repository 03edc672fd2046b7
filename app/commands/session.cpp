// SPDX-License-Identifier: MIT
#include "app/commands/session.h"

#include <csignal>

#include "app/services/strings.h"
#include "base/fatal_signals.h"

namespace zr {
namespace {

vl::Context* g_interrupted = nullptr;

static_assert(std::atomic<unsigned char>::is_always_lock_free, "the signal handler sets the flag");

// A second Ctrl-C terminates the program at once.
extern "C" void OnInterrupt(int) {
    g_interrupted->m_bBreak.store(1, std::memory_order_relaxed);
    EndSoon(kStoppedStatus, kStoppedLine);
    std::signal(SIGINT, EndBySignal);
}

}  // namespace

Session::Session() : m_context(vl::Ref<vl::Context>::AdoptNew(kernix::CreateContext())) {
    g_interrupted = m_context.Get();
    std::signal(SIGINT, OnInterrupt);
}

Session::~Session() {
    std::signal(SIGINT, SIG_DFL);
}

Host& Session::GetHost() {
    if (!m_host) {
        auto host = std::make_unique<Host>(m_options.language.empty() ? UserLanguage() : m_options.language);
        host->ShowLog(m_options.verbose);
        host->LoadModule();
        m_host = std::move(host);
    }
    return *m_host;
}

void Session::TakeStandardOutput() {
    if (m_options.json) throw UsageError("--json and a result of - cannot both go to standard output");
    if (m_isStandardOutputTaken) throw UsageError("only one result can go to standard output");
    m_isStandardOutputTaken = true;
}

}  // namespace zr
