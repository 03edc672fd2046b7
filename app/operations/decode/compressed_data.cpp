// SPDX-License-Identifier: MIT
#include "app/operations/decode/compressed_data.h"

namespace zr {

void CompressedData::Decode(gltf::Document& document) const {
    std::vector<std::string> unread = DecodeMeshopt(document);
    const std::vector<std::string> primitives = DecodeDraco(document);
    unread.insert(unread.end(), primitives.begin(), primitives.end());
    for (const std::string& place : unread)
        document.Warn(gltf::ErrorKind::kBounds, place, "the compressed data cannot be read");
    if (makePlain) MakePlain(document);
}

}  // namespace zr
