// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace zr::gltf {

enum class ErrorKind {
    kFile,       // a file that cannot be read or written
    kSyntax,     // text that is not JSON, repeats a member name or is nested deeper than kMaxJsonDepth
    kContainer,  // a binary container whose header or chunks contradict the file
    kVersion,    // a version of the format that this program does not understand
    kUri,        // a URI that is malformed, leads out of the scene's folder or needs a network
    kStructure,  // a property that is missing or has the wrong type or value
    kReference,  // an index that names no element
    kBounds,     // a range outside its view, buffer or file
    kHierarchy,  // nodes that form no tree, joints without a common root
    kAnimation,  // key times or values that make no curve
    kMesh,       // vertex data that does not fit together
    kLimit,      // more than a file of its size may ask for
};

// What went wrong, in which file and where in it. `place` is a JSON pointer ("/accessors/3/bufferView"),
// "byte N" for errors of syntax, or empty when the whole file is meant.
class Error : public std::runtime_error {
public:
    Error(ErrorKind kind, std::string_view file, std::string_view place, std::string_view text);

    ErrorKind Kind() const { return m_kind; }
    const std::string& Place() const { return m_place; }

private:
    ErrorKind m_kind;
    std::string m_place;
};

}  // namespace zr::gltf
