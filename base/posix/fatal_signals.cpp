// SPDX-License-Identifier: MIT
#include "base/posix/temporary_path.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <string>

#include "base/fatal_signals.h"

namespace zr {

// Slots are used again and never freed: a signal may come while any of them is read.
struct TemporarySlot {
    std::atomic<bool> isTaken{true};
    std::atomic<bool> isSet{false};  // the path names a file to remove
    std::string path;
    TemporarySlot* next = nullptr;
};

namespace {

std::atomic<TemporarySlot*> g_slots{nullptr};
std::atomic<int> g_holds{0};
std::atomic<int> g_heldSignal{0};
static_assert(std::atomic<TemporarySlot*>::is_always_lock_free && std::atomic<int>::is_always_lock_free &&
                  std::atomic<bool>::is_always_lock_free,
              "a signal handler reads them");

TemporarySlot& TakeSlot() {
    for (TemporarySlot* slot = g_slots; slot != nullptr; slot = slot->next) {
        bool isTaken = false;
        if (slot->isTaken.compare_exchange_strong(isTaken, true)) return *slot;
    }
    auto* const slot = new TemporarySlot;
    slot->next = g_slots;
    while (!g_slots.compare_exchange_weak(slot->next, slot)) {
    }
    return *slot;
}

}  // namespace

void InstallHandlers() {
    static const bool installed = [] {
        for (int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU}) {
            struct sigaction now {};
            if (sigaction(number, nullptr, &now) != 0 || now.sa_handler != SIG_DFL) continue;
            now.sa_handler = EndBySignal;
            now.sa_flags = SA_RESTART;
            sigaction(number, &now, nullptr);
        }
        // Writing beyond the limit of a file's size then fails as on a full disk.
        struct sigaction now {};
        if (sigaction(SIGXFSZ, nullptr, &now) == 0 && now.sa_handler == SIG_DFL) signal(SIGXFSZ, SIG_IGN);
        return true;
    }();
    static_cast<void>(installed);
}

extern "C" void EndBySignal(int number) {
    if (g_holds > 0) {
        g_heldSignal = number;
        return;
    }
    for (TemporarySlot* slot = g_slots; slot != nullptr; slot = slot->next)
        if (slot->isSet) unlink(slot->path.c_str());
    signal(number, SIG_DFL);
    raise(number);
}

HoldFatalSignals::HoldFatalSignals() {
    InstallHandlers();
    ++g_holds;
}

HoldFatalSignals::~HoldFatalSignals() {
    if (--g_holds > 0) return;
    if (const int number = g_heldSignal.exchange(0); number != 0) raise(number);
}

TemporaryPath::TemporaryPath(const std::filesystem::path& path) {
    InstallHandlers();
    m_slot = &TakeSlot();
    m_slot->path = path.native();
    m_slot->isSet = true;
}

TemporaryPath::~TemporaryPath() {
    if (m_slot == nullptr) return;
    unlink(Get());
    Forget();
}

const char* TemporaryPath::Get() const {
    return m_slot->path.c_str();
}

void TemporaryPath::Forget() noexcept {
    m_slot->isSet = false;
    m_slot->isTaken = false;
    m_slot = nullptr;
}

}  // namespace zr
