// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <span>

#include "app/services/font_file.h"
#include "base/error.h"

// The names in a font file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        zr::ReadFontNames(std::as_bytes(std::span(data, size)), "fuzz.ttf");
    } catch (const zr::Error&) {
    }
    return 0;
}
