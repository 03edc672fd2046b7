// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "gltf/decoder.h"
#include "gltf/document.h"

namespace zr {

// Reads data compressed by meshopt or Draco. Data that it cannot read stays unavailable and causes a warning.
class CompressedData : public gltf::Decoder {
public:
    // After loading, documents hold everything uncompressed, quantized vertex data included.
    bool makePlain = false;

    void Decode(gltf::Document& document) const override;
};

// Supplies the content of the views and primitives that it can read; returns the places of the others.
std::vector<std::string> DecodeMeshopt(gltf::Document& document);
std::vector<std::string> DecodeDraco(gltf::Document& document);

// Writes supplied content into the document's own buffers, and vertex data that only KHR_mesh_quantization
// allows as floats. Removes the compressed forms and their extensions. Throws gltf::Error.
void MakePlain(gltf::Document& document);

}  // namespace zr
