// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "gltf/document.h"

namespace zr {

// The rest value of the property that a JSON pointer names, as `width` numbers: its value in the document or,
// if omitted, its default. Nothing when neither is known.
std::optional<std::vector<float>> RestValue(const gltf::Document& document, std::string_view pointer,
                                            std::size_t width);

}  // namespace zr
