// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "app/operations/text/text_geometry.h"
#include "base/file_transaction.h"

namespace zr {

// One for each format; WriteText selects among them.
void WriteSvg(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files);
void WriteDxf(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files);
void WriteGltf(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files);
void WriteJson(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files);
void WriteObj(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files);
void WriteStl(const TextGeometry& geometry, const std::filesystem::path& target, FileTransaction& files);

}  // namespace zr
