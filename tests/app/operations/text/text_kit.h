// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/operations/text/text_drawing.h"
#include "tests/app/services/the_host.h"
#include "tests/base/temporary_folder.h"

namespace zr {

inline TextDrawing Draw(std::u16string text, TextStyle style, const DrawingOptions& options = {},
                        const TextFont& font = {u"DejaVu Sans"}) {
    TextRequest request;
    request.text = std::move(text);
    request.style = style;
    request.font = font;
    return MakeDrawing(test::TheHost(), request, options);
}

inline std::u16string PrintableCharacters() {
    std::u16string text;
    for (char16_t c = 32; c <= 126; ++c) text += c;
    return text;
}

using Folder = test::TemporaryFolder;

}  // namespace zr
