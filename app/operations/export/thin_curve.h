// SPDX-License-Identifier: MIT
#pragma once

#include "app/scene/curves.h"

namespace zr {

// Drops redundant keys of a linear curve: those within four float steps of the line between the neighbouring
// kept keys, where a step is that of the greater of the key and the kept key before it. Orientations turn
// along the shorter arc; two kept ones with keys between them are never nearly a half turn apart. Takes
// linear time.
//
//   30 keys a second of a straight move, each rounded on its own -> the first and the last key
Curve Thinned(const Curve& curve);

}  // namespace zr
