// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/resources/res_file.h"

namespace platform {

// Places and sizes are in dialog units: a quarter of the average character's width, an eighth of its height.
struct DialogPlace {
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::int16_t width = 0;
    std::int16_t height = 0;
};

struct DialogControl {
    std::uint32_t style = 0;
    std::uint32_t exStyle = 0;
    std::uint32_t id = 0;
    DialogPlace place;
    ResourceId windowClass;
    std::u16string caption;
};

struct DialogTemplate {
    std::uint32_t style = 0;
    DialogPlace place;
    std::u16string caption;
    std::u16string fontFace;  // empty without a font
    int fontPoints = 0;
    int fontWeight = 0;
    bool fontItalic = false;
    std::vector<DialogControl> controls;  // in tab order, the first one on top
};

// Reads a compiled dialog resource of the extended form; nothing when it is of another form or damaged.
std::optional<DialogTemplate> ParseDialogTemplate(std::span<const std::byte> resource);

}  // namespace platform
