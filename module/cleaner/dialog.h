// SPDX-License-Identifier: MIT
#pragma once

#include "platform/windows.h"

namespace zrt {

// What the worker thread tells the dialog: the command of a WM_COMMAND message without a control.
enum DialogCommand : int {
    kCommandEnded = 1281,        // posted as the last thing: the worker ends
    kCommandProgress = 1537,     // sent; parameter: position in the low word, maximum in the high word
    kCommandLog = 1538,          // sent: the log has grown
    kCommandEnvironment = 1539,  // posted: run the call that is handed to the interface thread
};

// Texts of the language tables that the dialog and its log show.
enum DialogText : int {
    kTextClose = 604,
    kTextStarted = 1000,
    kTextBroken = 1001,
    kTextFinished = 1002,
    kTextRecord = 1050,
};

}  // namespace zrt
