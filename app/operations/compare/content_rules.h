// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "gltf/document.h"
#include "gltf/schema.h"

namespace zr::compare {

// The schema of an element of the kind.
const gltf::SchemaNode* SchemaOf(gltf::Kind kind);

// The schema of a member of an object that is the value of `parent`; null where none is known.
const gltf::SchemaNode* Below(const gltf::SchemaNode* schema, std::string_view parent, std::string_view name);

// Elements that are compared as themselves, and not as part of what refers to them.
bool IsOwn(gltf::Kind kind);

// Adds a value as text in which numbers are floats.
void WritePlain(const gltf::Json& json, std::string& text);

// Whether a missing member of the name has the value: as WritePlain() has it, or itself.
bool IsDefault(std::string_view name, std::string_view text);
bool IsPlainDefault(std::string_view name, const gltf::Json& json);

}  // namespace zr::compare
