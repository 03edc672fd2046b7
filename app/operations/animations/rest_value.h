// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "app/scene/curves.h"
#include "gltf/document.h"

namespace zr {

// The rest value of the property that a JSON pointer names, as `width` numbers: its value in the document or,
// if omitted, its default. Nothing when neither is known.
std::optional<std::vector<float>> RestValue(const gltf::Document& document, std::string_view pointer,
                                            std::size_t width);

// The curve of a source that plays from `start` on in a sequence that begins at `from`: it shows `rest` until
// `start`, and again from `next` on, where the next source begins, if one does.
//
//   linear 1@3, 2@4, rest 0, from 0, start 2, next 5   ->   0@0, 0@2-, 1@2, 1@3, 2@4, 2@5-, 0@5
Curve WithRest(const Curve& curve, const std::vector<float>& rest, float from, float start,
               std::optional<float> next);

}  // namespace zr
