// SPDX-License-Identifier: MIT
#pragma once

#include "host/math.h"
#include "kernix/math/rotation.h"

namespace kernix {

// vl::AffineParts in double precision.
struct AffineSplit {
    double t[3];
    Rotation q;
    Rotation u;
    double k[3];
    double f;
    bool invertible;
};

AffineSplit SplitAffine(const vl::Matrix4<double>& m);

}  // namespace kernix
