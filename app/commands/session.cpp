// SPDX-License-Identifier: MIT
#include "app/commands/session.h"

#include <csignal>

#include "app/commands/notes.h"
#include "app/services/strings.h"
#include "base/fatal_signals.h"

namespace zr {
namespace {

vl::Context* g_interrupted = nullptr;

static_assert(std::atomic<unsigned char>::is_always_lock_free, "the signal handler sets the flag");

// A second Ctrl-C ends the program at once.
extern "C" void OnInterrupt(int) {
    g_interrupted->m_bBreak.store(1, std::memory_order_relaxed);
    std::signal(SIGINT, EndBySignal);
}

}  // namespace

Session::Session() : m_context(vl::Ref<vl::Context>::Adopt(kernix::CreateContext())) {
    g_interrupted = m_context.Get();
    std::signal(SIGINT, OnInterrupt);
}

Session::~Session() {
    std::signal(SIGINT, SIG_DFL);
}

gltf::Document Session::LoadDocument(const std::filesystem::path& file) {
    gltf::Document document = gltf::Document::Load(file, m_loadOptions);
    const std::lock_guard lock(m_warningsMutex);
    for (const gltf::Error& warning : document.Warnings()) m_warnings.emplace_back(warning.what());
    return document;
}

int Session::Run() {
    if (!m_run) return 2;
    const int status = m_run();
    PrintNotes("warning", m_warnings);
    return status;
}

Host& Session::GetHost() {
    if (!m_host) {
        m_host = std::make_unique<Host>(m_language.empty() ? UserLanguage() : m_language);
        m_host->LoadModule();
    }
    return *m_host;
}

}  // namespace zr
