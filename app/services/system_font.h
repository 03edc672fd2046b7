// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "app/services/device_context.h"
#include "platform/windows.h"

namespace zr {

// What a text is drawn with.
struct TextFont {
    std::u16string family;  // at most 31 units; empty: the system's own choice
    int height = -12;  // negative: of the em square, positive: of a line's cell, 0: the system's default;
                       // drawn ten times as large
    int weight = 400;  // 1 to 1000, 700 is bold
    bool isItalic = false;
};

inline constexpr std::size_t kLongestFamily = 31;

LOGFONTW RecordOf(const TextFont& font);

// The system's font, ten times as high as asked for, as the module draws with it.
class SystemFont {
public:
    // Throws std::runtime_error when the system has no outline font.
    explicit SystemFont(const TextFont& font);
    ~SystemFont();
    SystemFont(const SystemFont&) = delete;
    SystemFont& operator=(const SystemFont&) = delete;

    std::u16string Family() const;

    bool Has(char16_t c) const;

    // Bytes of the character's outline in native form; nothing when the system has none at this height, not
    // even an empty one.
    std::optional<std::size_t> OutlineSize(char16_t c) const;

    // In device units; 0 for what cannot be drawn.
    int Advance(char16_t c) const;

private:
    DeviceContext m_dc;
    HFONT m_font;
    HGDIOBJ m_previous;
};

}  // namespace zr
