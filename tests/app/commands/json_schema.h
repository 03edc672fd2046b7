// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "gltf/json.h"

namespace zr::test {

// Where and why the value does not fit the schema, or an empty text. Knows the words that the program's own
// schema uses, and fails on any other.
std::string SchemaFault(const gltf::Json& value, const gltf::Json& schema);

}  // namespace zr::test
