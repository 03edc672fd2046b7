// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "app/operations/text/text_geometry.h"

namespace zr {

enum class TextFormat { kSvg, kDxf, kGltf, kJson, kObj, kStl };

// Writes the file whole or not at all. kObj is for meshes, kStl for solids, kSvg for all but solids. Throws
// Error, also for a coordinate that is not finite.
void WriteText(const TextGeometry& geometry, TextFormat format, const std::filesystem::path& target);

}  // namespace zr
