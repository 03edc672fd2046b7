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

}  // namespace zr
