// SPDX-License-Identifier: MIT
#pragma once

namespace zr::gltf {

class Document;

// Makes the content of compressed views and accessors known while a document is read, through
// Document::SupplyView, SupplyAccessor and WithholdAccessor. This library knows no codec itself: who wants
// compressed content gives a decoder (LoadOptions).
class Decoder {
public:
    virtual ~Decoder() = default;

    // Indices, byte ranges, types and counts have been checked; what is supplied is checked afterwards like
    // what is stored. May throw Error.
    virtual void Decode(Document& document) const = 0;
};

}  // namespace zr::gltf
