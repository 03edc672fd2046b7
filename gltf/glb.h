// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/file.h"

namespace zr::gltf {

// Where the chunks of a binary container stand in its file.
struct GlbLayout {
    std::size_t jsonOffset = 0;
    std::size_t jsonSize = 0;
    std::size_t binOffset = 0;
    std::size_t binSize = 0;
    bool hasBin = false;
    std::size_t restOffset = 0;  // chunks of other types after these two, with their headers
    std::size_t restSize = 0;
};

bool IsGlb(Bytes file);

// Throws Error (kContainer or kVersion) when header, chunks and file do not fit together.
GlbLayout ReadGlbLayout(Bytes file, std::string_view name);

// The pieces of a container in file order. `head` receives the headers and padding the pieces refer to.
// `bin` empty: no BIN chunk. Throws Error (kLimit) from 4 GiB on.
std::vector<Bytes> GlbPieces(std::string_view json, std::span<const Bytes> bin, Bytes rest,
                             std::string_view name, std::vector<std::byte>& head);

}  // namespace zr::gltf
