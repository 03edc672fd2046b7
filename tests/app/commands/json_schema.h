// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "gltf/json.h"

namespace zr::test {

// Where and why the value violates the schema, or an empty text. Supports the keywords that the program's own
// schemas use, and reports any other.
std::string SchemaFault(const gltf::Json& value, const gltf::Json& schema);

}  // namespace zr::test
