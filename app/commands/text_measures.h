// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "app/commands/json_object.h"
#include "app/operations/text/text_drawing.h"

namespace zr {

// What --metrics prints.
JsonObject MetricsJson(const TextDrawing& drawing);
// The measures as a table for people, each with its unit.
std::vector<std::pair<std::string, std::string>> MeasuresOf(const TextDrawing& drawing);

}  // namespace zr
