// SPDX-License-Identifier: MIT
#pragma once

#include "module/cleaner/cleaner.h"
#include "module/resources/resource.h"

namespace zrt {

// One operation of the cleaner. Its option is the number of its check box in the dialog; its parameter is its
// position among the bool parameters of the method Clean_Scene, which the resource CLEANER_QUERY_INFO names
// and describes.
struct Operation {
    int option;
    int parameter;
    int startMessage;  // string logged before it runs
    int countMessage;  // string logged with its count
    bool checked;      // whether the dialog enables and checks it
    int (CCleanerImpl::*run)(vl::zr::Scene*, vl::Context*, ChangeRecord*);
};

inline constexpr int kOperationCount = 10;

// In the order in which they run.
extern const Operation kOperations[kOperationCount];

}  // namespace zrt
