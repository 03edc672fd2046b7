// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "gltf/decoder.h"
#include "gltf/document.h"

namespace zr {

// Reads what meshopt and Draco have compressed. What it cannot read stays without data, and is warned of.
class CompressedData : public gltf::Decoder {
public:
    // Documents hold everything plain after loading, quantized vertex data included.
    bool makePlain = false;

    void Decode(gltf::Document& document) const override;
};

// Supplies the content of views and primitives that it can read: the places of those that it cannot.
std::vector<std::string> DecodeMeshopt(gltf::Document& document);
std::vector<std::string> DecodeDraco(gltf::Document& document);

// Writes supplied content into the document's own buffers, and vertex data that only KHR_mesh_quantization
// allows as floats. The compressed forms go with the extensions that name them. Throws gltf::Error.
void MakePlain(gltf::Document& document);

}  // namespace zr
