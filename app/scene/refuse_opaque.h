// SPDX-License-Identifier: MIT
#pragma once

#include "gltf/references.h"

namespace zr {

// Throws gltf::Error (kReference) when the document holds an index that cannot be followed and could name an
// element of `kinds`, so that to remove any of these, which renumbers the others, could break it.
void RefuseOpaque(gltf::Document& document, gltf::KindSet kinds);

// The kinds of which `removal` takes an element.
gltf::KindSet KindsOf(const gltf::Removal& removal);

}  // namespace zr
