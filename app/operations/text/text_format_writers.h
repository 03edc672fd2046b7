// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "app/operations/text/text_geometry.h"

namespace zr {

// One for each format; WriteText chooses.
void WriteSvg(const TextGeometry& geometry, const std::filesystem::path& target);
void WriteDxf(const TextGeometry& geometry, const std::filesystem::path& target);
void WriteGltf(const TextGeometry& geometry, const std::filesystem::path& target);
void WriteJson(const TextGeometry& geometry, const std::filesystem::path& target);
void WriteObj(const TextGeometry& geometry, const std::filesystem::path& target);
void WriteStl(const TextGeometry& geometry, const std::filesystem::path& target);

}  // namespace zr
