// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "app/operations/text/text_geometry.h"
#include "base/file_transaction.h"
#include "gltf/document.h"

namespace zr {

enum class TextFormat { kSvg, kDxf, kGltf, kJson, kObj, kStl };

// Writes the file for the transaction's Commit. kObj is for meshes, kStl for solids, kSvg for all but solids.
// Throws Error, also for a coordinate that is not finite.
void WriteText(const TextGeometry& geometry, TextFormat format, const std::filesystem::path& target,
               FileTransaction& files);

// The same as values: the picture (SVG) of what is flat, and the scene of any.
std::string TextPicture(const TextGeometry& geometry);
gltf::Document TextScene(const TextGeometry& geometry);

}  // namespace zr
