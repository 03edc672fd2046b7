// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// How far a reduction may change things. Zero: not at all.
struct ReduceTolerance {
    double length = 0;  // scene units: how far a drawn point may move in world space
    // Radians: how far a camera, a light, or an animated node with nothing drawn below it may turn.
    double angle = 0;
    double value = 0;  // morph weights and pointer values
};

}  // namespace zr
