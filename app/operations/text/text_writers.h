// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "app/operations/text/text_geometry.h"
#include "base/file_transaction.h"
#include "gltf/document.h"

namespace zr {

enum class TextFormat { kSvg, kDxf, kGltf, kJson, kObj, kStl };

// Writes a file, which gets its name at the transaction's Commit. kObj requires a mesh, kStl a solid; kSvg
// does not support solids. Throws Error, also for a coordinate that is not finite.
void WriteText(const TextGeometry& geometry, TextFormat format, const std::filesystem::path& target,
               FileTransaction& files);

// The same as values: an SVG picture, of flat geometry only, and a glTF scene.
std::string TextPicture(const TextGeometry& geometry);
gltf::Document TextScene(const TextGeometry& geometry);

}  // namespace zr
