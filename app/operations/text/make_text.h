// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/operations/text/text_geometry.h"
#include "app/services/host.h"
#include "app/services/system_font.h"

namespace zr {

enum class TextStyle { kStroke, kOutline, kMesh };

struct TextRequest {
    std::u16string text;
    TextStyle style = TextStyle::kOutline;
    TextFont font;     // ignored for strokes, which have their own font
    double size = 12;  // 12: coordinates in device units; ignored for strokes
};

// Makes the geometry of a text as the module lays it out. Throws std::runtime_error if the module fails.
TextGeometry MakeText(Host& host, const TextRequest& request);

}  // namespace zr
