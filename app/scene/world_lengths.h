// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "gltf/document.h"

namespace zr {

// Lengths that a document states in the unit of the world, so that no transform of a node reaches them: what
// a lens sees, how far a light reaches, how deep light enters a material. With them goes the intensity of
// lights that fade with the square of the distance.

// Multiplies all of them as a world that becomes `scale` times as large asks for. Throws gltf::Error for one
// that would be too large.
void ScaleLengths(gltf::Document& document, double scale);

// What ScaleLengths multiplies the number at the pointer by; 1 for anything else.
double LengthFactor(const gltf::Document& document, std::string_view pointer, double scale);

// The same for what a channel of an animation drives.
double LengthFactor(const gltf::Document& document, const gltf::Json& channel, double scale);

}  // namespace zr
