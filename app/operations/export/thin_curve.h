// SPDX-License-Identifier: MIT
#pragma once

#include "app/scene/curves.h"

namespace zr {

// A straight curve without the keys that it does without: those that the line between the kept keys on both
// sides meets within four float steps of their size, counted at the greater of the key and the kept key
// before it. Orientations turn the short way around, and no two kept ones with keys between lie close to half
// a turn apart. Linear in the keys.
//
//   30 keys a second of a straight move, each rounded on its own -> the first and the last key
Curve Thinned(const Curve& curve);

}  // namespace zr
