// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "host/cad_text.h"
#include "host/math.h"

namespace zr {

// A text as geometry, as the writers need it: contours, or triangles when there are no contours.
struct TextGeometry {
    struct Contour {
        std::uint32_t first;  // its points
        std::uint32_t count;
        int letter;  // position in the text, in UTF-16 units
    };

    std::vector<vl::Vector3<float>> points;
    std::vector<Contour> contours;
    std::vector<LetterTriangle> triangles;
    bool isMesh = false;
    double penWidth = 1;  // for pictures of the contours
};

enum class TextFormat { kSvg, kGltf, kJson, kObj };

// Writes the file whole or not at all. kObj is for meshes. Throws gltf::Error.
void WriteText(const TextGeometry& geometry, TextFormat format, const std::filesystem::path& target);

}  // namespace zr
