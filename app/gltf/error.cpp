// SPDX-License-Identifier: MIT
#include "app/gltf/error.h"

namespace zr::gltf {
namespace {

std::string Line(std::string_view file, std::string_view place, std::string_view text) {
    std::string line(file);
    if (!line.empty()) line += ": ";
    if (!place.empty()) line.append(place).append(": ");
    // Names from the document may hold control characters; the message stays one line.
    for (char c : text) line += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    return line;
}

}  // namespace

Error::Error(ErrorKind kind, std::string_view file, std::string_view place, std::string_view text)
    : std::runtime_error(Line(file, place, text)), m_kind(kind), m_place(place) {
}

}  // namespace zr::gltf
