// SPDX-License-Identifier: MIT
// JSON Pointers (RFC 6901): "/nodes/3/name", with "~1" for "/" and "~0" for "~" in names.
#pragma once

#include <string>
#include <string_view>

#include "gltf/json.h"

namespace zr::gltf {

// The value at the pointer below `root`; null if there is none. The empty pointer is `root` itself.
const Json* AtPointer(const Json& root, std::string_view pointer);

// Appends a member's name to a pointer, with its "/" and escapes.
void AppendStep(std::string& pointer, std::string_view name);

}  // namespace zr::gltf
