// SPDX-License-Identifier: MIT
// Feeds native outline buffers to the parser of the CAD text.
#include <cstddef>
#include <cstdint>
#include <numbers>

#include "module/cadtext/glyph_outline.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    GlyphOutline outline(std::numbers::pi / 2, 12);
    outline.ParseNativeOutline(data, size);
    return 0;
}
