// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

namespace zr {

// Concatenates the parts, integers in decimal: Join("/nodes/", 3, "/mesh").
template <typename... Parts>
std::string Join(const Parts&... parts) {
    std::string joined;
    const auto add = [&joined](const auto& part) {
        if constexpr (std::integral<std::decay_t<decltype(part)>>)
            joined += std::to_string(part);
        else
            joined += std::string_view(part);
    };
    (add(parts), ...);
    return joined;
}

// "1 animation", "2 animations", "2 meshes".
std::string Counted(std::size_t count, std::string_view noun);
// "1 face differs", "2 faces differ".
std::string Counted(std::size_t count, std::string_view one, std::string_view many);

// The number with so many significant digits at most, whatever the locale: "0.25", "1e+20".
std::string Short(double number, int digits = 6);

// The first character of a UTF-8 text that is not empty.
struct FirstCharacter {
    char32_t code = 0;
    std::size_t size = 0;  // bytes; 0: the text does not begin with a character
};
FirstCharacter FirstCharacterOf(std::string_view text);

// Whether a file's name ends in `ending` (".glb"); the case of ASCII letters does not matter.
bool HasEnding(std::string_view name, std::string_view ending);

// The text as one line that is safe to show on a terminal: control characters, line separators, characters
// that change the writing direction and bytes that are not UTF-8 become escapes ("\n", "\x1B", "\u202E").
// Idempotent.
std::string Printable(std::string_view text);

}  // namespace zr
