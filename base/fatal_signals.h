// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// While an object of this class exists, signals that would end the process wait until the last one is
// destroyed. For short sequences of steps that must not be separated.
class HoldFatalSignals {
public:
    HoldFatalSignals();
    ~HoldFatalSignals();
    HoldFatalSignals(const HoldFatalSignals&) = delete;
    HoldFatalSignals& operator=(const HoldFatalSignals&) = delete;
};

// A signal handler: removes this process's temporary files and ends the process as the signal would. The
// first temporary file installs it for every signal without a handler; a program that handles a signal itself
// may pass it on here.
extern "C" void EndBySignal(int signal);

// For the handler of a request to stop: gives the process a moment to end by itself, then removes its
// temporary files, writes `line` to standard error and exits with `status`. That also interrupts loops inside
// libraries, and no time goes into freeing memory. Does nothing once the work is done: from the commit of a
// transaction until BeginWork.
void EndSoon(int status, const char* line);

// Marks the work as begun, or as done.
void BeginWork();
void EndWork();

}  // namespace zr
