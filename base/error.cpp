// SPDX-License-Identifier: MIT
#include "base/error.h"

#include "base/text.h"

namespace zr {
namespace {

std::string Line(std::string_view file, std::string_view place, std::string_view text) {
    std::string line(file);
    if (!line.empty()) line += ": ";
    if (!place.empty()) line.append(place).append(": ");
    line += text;
    return Printable(line);
}

}  // namespace

Error::Error(std::string_view file, std::string_view place, std::string_view text)
    : std::runtime_error(Line(file, place, text)), m_place(place) {}

}  // namespace zr
