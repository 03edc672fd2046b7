// SPDX-License-Identifier: MIT
#include "base/posix/temporary_path.h"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <string>

#include "base/fatal_signals.h"

namespace zr {

// Slots are reused and never freed: a signal may arrive while any of them is being read.
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

// Time to report what was done, and to shut down in order where that is quick.
constexpr suseconds_t kPatience = 30'000;  // microseconds

std::atomic<bool> g_isWorkDone{false};
std::atomic<const char*> g_line{nullptr};  // null: no request to stop
std::atomic<int> g_status{0};
static_assert(std::atomic<const char*>::is_always_lock_free, "a signal handler reads it");

void RemoveTemporaryFiles() {
    for (TemporarySlot* slot = g_slots; slot != nullptr; slot = slot->next)
        if (slot->isSet) unlink(slot->path.c_str());
}

void WriteError(const char* text) {
    [[maybe_unused]] const ssize_t ignored = write(STDERR_FILENO, text, std::strlen(text));
}

// Signals are held only while a transaction commits, which is brief and completes the work.
extern "C" void EndNow(int) {
    if (g_isWorkDone || g_holds > 0) return;
    RemoveTemporaryFiles();
    if (isatty(STDERR_FILENO) == 1) WriteError("\r\033[K");
    WriteError(g_line);
    _exit(g_status);
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
        // Writing beyond the file size limit then fails as on a full disk.
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
    RemoveTemporaryFiles();
    signal(number, SIG_DFL);
    raise(number);
}

void EndSoon(int status, const char* line) {
    if (g_isWorkDone) return;
    g_status = status;
    g_line = line;
    struct sigaction action {};
    action.sa_handler = EndNow;
    sigaction(SIGALRM, &action, nullptr);
    const itimerval patience{{0, 0}, {0, kPatience}};
    setitimer(ITIMER_REAL, &patience, nullptr);
}

void BeginWork() {
    g_isWorkDone = false;
}

void EndWork() {
    g_isWorkDone = true;
}

HoldFatalSignals::HoldFatalSignals() {
    InstallHandlers();
    if (g_line != nullptr) EndNow(SIGALRM);
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
