// SPDX-License-Identifier: MIT
#include "app/operations/decode/compressed_data.h"

namespace zr {

// Without codecs, compressed data stays as it is.
std::vector<std::string> DecodeMeshopt(gltf::Document&) {
    return {};
}

std::vector<std::string> DecodeDraco(gltf::Document&) {
    return {};
}

}  // namespace zr
