// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "gltf/decoder.h"
#include "gltf/document.h"

namespace zr {

// Decodes data compressed by meshopt or Draco. Data that cannot be decoded stays unavailable and causes a
// warning.
class CompressedData : public gltf::Decoder {
public:
    // Store everything uncompressed in the loaded document, quantized vertex data as floats.
    bool makePlain = false;

    void Decode(gltf::Document& document) const override;
};

// Decode and supply the content of compressed views and primitives; return the places of those that cannot be
// decoded.
std::vector<std::string> DecodeMeshopt(gltf::Document& document);
std::vector<std::string> DecodeDraco(gltf::Document& document);

// Stores supplied content in the document's own buffers, converts vertex data that requires
// KHR_mesh_quantization to floats, and removes the compressed forms and their extensions. Data that could not
// be decoded stays as it is. Throws gltf::Error.
void MakePlain(gltf::Document& document);

}  // namespace zr
