// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// While one lives, a signal that would end the process waits; it ends it when the last one goes. For steps
// that belong together and take no time.
class HoldFatalSignals {
public:
    HoldFatalSignals();
    ~HoldFatalSignals();
    HoldFatalSignals(const HoldFatalSignals&) = delete;
    HoldFatalSignals& operator=(const HoldFatalSignals&) = delete;
};

// A signal handler: removes the temporary files of this process and ends it as the signal does. Installed by
// the first temporary file for every signal that has no other handler; a program that handles one itself may
// hand it on here.
extern "C" void EndBySignal(int signal);

// For the handler of a user's wish to stop: leaves the process a moment to end by itself, then removes its
// temporary files, writes the line to standard error and ends it with the status. That reaches every loop,
// also one in a library, and no memory is given back piece by piece. Nothing happens once the work is done:
// when a transaction is committed, until BeginWork.
void EndSoon(int status, const char* line);

// The work begins anew, or is done.
void BeginWork();
void EndWork();

}  // namespace zr
