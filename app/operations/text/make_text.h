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
    TextFont font;     // strokes have a font of their own
    double size = 12;  // 12 keeps device units; strokes do not change with it
};

// The text as the module lays it out. Throws std::runtime_error when it cannot be made.
TextGeometry MakeText(Host& host, const TextRequest& request);

}  // namespace zr
