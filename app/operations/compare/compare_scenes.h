// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <functional>

#include "app/operations/compare/compare_result.h"
#include "gltf/document.h"

namespace zr::compare {

struct CompareOptions {
    // Length 0: a millionth of the scene's size, or 1e-6 if that is 0.
    Tolerance tolerance{0, 1e-5, 1e-5};
    std::array<bool, kAspects> aspects{true, true, true, true, true, true};
    // Called periodically with progress from 0 to 1; may throw.
    std::function<void(double done)> progress = [](double) {};
};

// Compares two documents, regardless of the order of elements, the names of buffers, and how data is stored
// and laid out. Throws gltf::Error.
CompareResult CompareScenes(const gltf::Document& a, const gltf::Document& b, const CompareOptions& options);

}  // namespace zr::compare
