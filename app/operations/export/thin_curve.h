// SPDX-License-Identifier: MIT
#pragma once

#include "app/scene/curves.h"

namespace zr {

// A linear curve without redundant keys: those that the line between the kept keys on both sides meets within
// four float steps of their magnitude, that of the greater of the key and the kept key before it.
// Orientations turn the short way, and no two kept ones with keys between them are nearly a half turn apart.
// Linear in the number of keys.
//
//   30 keys a second of a straight move, each rounded on its own -> the first and the last key
Curve Thinned(const Curve& curve);

}  // namespace zr
