// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/commands/json_object.h"
#include "app/operations/compare/compare_scenes.h"

namespace zr {

// A line for each aspect that was compared, followed by its differences.
std::string CompareReportText(const compare::CompareResult& result);
JsonObject CompareReportJson(const compare::CompareResult& result);

}  // namespace zr
