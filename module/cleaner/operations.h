// SPDX-License-Identifier: MIT
#pragma once

#include "module/cleaner/cleaner.h"

namespace zrt {

// The options of a run, by the control of each in the dialog.
enum CleanerOption : int {
    kOptionMaterials = 1003,
    kOptionMetadata = 1004,
    kOptionModelViews = 1005,
    kOptionLayers = 1006,
    kOptionMeshDupes = 1007,
    kOptionNotes = 1008,
    kOptionEmptyNodes = 1009,
    kOptionAnimations = 1010,
    kOptionEqualMaterials = 1011,
    kOptionEnvironment = 1012,
};

struct Operation {
    int option;        // CleanerOption
    int startMessage;  // string logged before it runs
    int countMessage;  // string logged with its count
    bool checked;      // whether the dialog offers it, checked
    int (CCleanerImpl::*run)(vl::zr::Scene*, vl::Context*, ChangeRecord*);
};

inline constexpr int kOperationCount = 10;

// In the order in which they run.
extern const Operation kOperations[kOperationCount];

}  // namespace zrt
