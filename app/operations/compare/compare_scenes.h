// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <functional>

#include "app/operations/compare/compare_result.h"
#include "gltf/document.h"

namespace zr::compare {

struct CompareOptions {
    // Length 0: a millionth of the scene's size.
    Tolerance tolerance{0, 1e-5, 1e-5};
    std::array<bool, kAspects> aspects{true, true, true, true, true, true};
    // Called periodically with progress from 0 to 1; may throw.
    std::function<void(double done)> progress = [](double) {};
};

// Compares two documents. The order of elements, names of buffers, storage and layout do not matter. Throws
// gltf::Error.
CompareResult CompareScenes(const gltf::Document& a, const gltf::Document& b, const CompareOptions& options);

}  // namespace zr::compare
