// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

#include "base/file.h"

namespace zr::inspect {

struct ImageInfo {
    std::string_view type;  // "PNG"; empty: none that is known
    std::uint32_t width = 0, height = 0;
};

// What the head of an image file (PNG, JPEG, WebP, KTX2) says.
ImageInfo ReadImageInfo(Bytes file);

}  // namespace zr::inspect
