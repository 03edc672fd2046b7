// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace zr {

// What went wrong, in which file and where in it; what() is one line, "FILE: PLACE: TEXT", whatever the parts
// hold. `place` is a JSON pointer ("/accessors/3/bufferView"), "byte N" for errors of syntax, or empty when
// the whole file is meant.
class Error : public std::runtime_error {
public:
    Error(std::string_view file, std::string_view place, std::string_view text);

    const std::string& Place() const { return m_place; }

private:
    std::string m_place;
};

}  // namespace zr
