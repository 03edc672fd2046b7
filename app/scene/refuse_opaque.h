// SPDX-License-Identifier: MIT
#pragma once

#include "gltf/references.h"

namespace zr {

// Throws gltf::Error (kReference) when the document contains an index that cannot be followed and could name
// an element of `kinds`, since removing one of these renumbers the others and could break it.
void RefuseOpaque(gltf::Document& document, gltf::KindSet kinds);

// The kinds of the elements that `removal` removes.
gltf::KindSet KindsOf(const gltf::Removal& removal);

}  // namespace zr
