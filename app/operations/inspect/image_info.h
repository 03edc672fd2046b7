// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

#include "base/file.h"

namespace zr::inspect {

struct ImageInfo {
    std::string_view type;  // "PNG"; empty: unknown
    std::uint32_t width = 0, height = 0;
};

// Reads the header of an image file (PNG, JPEG, WebP, KTX2). Sizes are pixels; 0: unknown.
ImageInfo ReadImageInfo(Bytes file);

}  // namespace zr::inspect
