// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "base/error.h"

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
    kHierarchy,  // nodes that do not form trees, joints without a common root
    kAnimation,  // key times or values that do not form a curve
    kMesh,       // vertex data that does not fit together
    kNumber,     // a number that is not finite
    kLimit,      // more than a file of its size may claim
};

// A fault of a document.
class Error : public zr::Error {
public:
    Error(ErrorKind kind, std::string_view file, std::string_view place, std::string_view text)
        : zr::Error(file, place, text), m_kind(kind) {}

    ErrorKind Kind() const { return m_kind; }

private:
    ErrorKind m_kind;
};

}  // namespace zr::gltf
