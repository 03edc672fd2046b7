// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string_view>

#include "base/file_transaction.h"

namespace zr::gltf {

// Where the chunks of a binary container lie in its file.
struct GlbLayout {
    std::size_t jsonOffset = 0;
    std::size_t jsonSize = 0;
    std::size_t binOffset = 0;
    std::size_t binSize = 0;
    bool hasBin = false;
    std::size_t restOffset = 0;  // chunks of other types after these two, with their headers
    std::size_t restSize = 0;
    std::size_t size = 0;  // of the container; bytes after it are not part of it
};

bool IsGlb(Bytes file);

// Throws Error (kContainer or kVersion) when header, chunks and file are inconsistent.
GlbLayout ReadGlbLayout(Bytes file, std::string_view name);

// Writes a container to `file`: the text that writeJson writes there, then the chunk of binary data (none
// when `bin` is empty), then `rest`. Throws Error; kLimit when the container would reach 4 GiB. `name` is the
// file's, for messages.
void WriteGlb(OutputFile& file, std::string_view name, const std::function<void()>& writeJson,
              std::span<const Bytes> bin, Bytes rest);

}  // namespace zr::gltf
