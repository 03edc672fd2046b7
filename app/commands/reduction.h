// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/commands/json_object.h"
#include "app/operations/reduce/reduce_keys.h"

namespace zr {

inline constexpr const char* kToleranceType = "LENGTH[,ANGLE[,VALUE]]";

// Reads a tolerance as ReadTolerance does. The angle defaults to 0.05 degrees, length and value to 0. Throws
// UsageError.
ReduceTolerance ReadReduceTolerance(const std::string& text);

// "2646 keys became 612; nothing strays by more than 0.00095 (node "head", animation "run", 0.3 s) or 0.02
// deg"
std::string Describe(const ReduceReport& report);
JsonObject JsonOf(const ReduceReport& report);

}  // namespace zr
