// SPDX-License-Identifier: MIT
#pragma once

namespace zr::gltf {

class Document;

// Supplies the content of compressed views and accessors while a document is read, through
// Document::SupplyView, SupplyAccessor and WithholdAccessor. This library has no codecs itself: callers that
// want compressed content pass a decoder (LoadOptions).
class Decoder {
public:
    virtual ~Decoder() = default;

    // Indices, byte ranges, types and counts have been checked; supplied content is then checked like stored
    // content. May throw Error.
    virtual void Decode(Document& document) const = 0;
};

}  // namespace zr::gltf
