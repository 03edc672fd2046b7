// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/commands/json_object.h"
#include "app/operations/clean/clean_scene.h"

namespace zr {

// The outcome of cleaning one scene.
struct CleanReport {
    std::string scene;
    std::string output;  // empty: nothing was written
    std::uintmax_t bytesBefore = 0;
    std::uintmax_t bytesAfter = 0;  // 0: nothing was written
    CleanResult result;
};

// For people: a line for each step that removed something; withNames adds the names of what was removed,
// explain what stayed and why.
std::string CleanReportText(const CleanReport& report, bool withNames, bool explain);

// The same for programs.
JsonObject CleanReportJson(const CleanReport& report, bool explain);

// What the cleaner left alone because an extension could refer to it, one line each.
std::vector<std::string> CleanRefusals(const CleanReport& report);

}  // namespace zr
