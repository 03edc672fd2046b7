// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "gltf/document.h"

namespace zr {

// Lengths that a document states in world units, which no transform of a node scales: clipping planes and
// orthographic magnifications, ranges of lights, attenuation distances of materials. Includes the intensity
// of lights that fade with the square of the distance.

// Adjusts all of them to a world that becomes `scale` times as large. Throws gltf::Error for one that would
// be too large.
void ScaleLengths(gltf::Document& document, double scale);

// What ScaleLengths multiplies the number at the pointer by; 1 for anything else.
double LengthFactor(const gltf::Document& document, std::string_view pointer, double scale);

// The same for what a channel of an animation drives.
double LengthFactor(const gltf::Document& document, const gltf::Json& channel, double scale);

}  // namespace zr
