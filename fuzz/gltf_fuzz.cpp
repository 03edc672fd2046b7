// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <span>

#include "gltf/accessor.h"
#include "gltf/collect.h"

// Reads a document and all of its accessors, and removes what nothing refers to.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zr::gltf;
    try {
        // The folder does not exist: the document contains its buffers or has none.
        Document document = Document::FromBytes(std::as_bytes(std::span(data, size)), "/nowhere/fuzz.glb");
        for (std::size_t i = 0; i < document.Elements(Kind::kAccessor).size(); ++i)
            if (HasData(document, i)) ReadFloats(document, i);
        CollectGarbage(document, KindSet::All(), true);
        CollectGarbage(document, kDataKinds, false);
    } catch (const Error&) {
    }
    return 0;
}
