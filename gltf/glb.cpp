// SPDX-License-Identifier: MIT
#include "gltf/glb.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <limits>

#include "base/text.h"
#include "gltf/error.h"

namespace zr::gltf {
namespace {

constexpr std::uint32_t kMagic = 0x46546C67;  // "glTF"
constexpr std::uint32_t kJson = 0x4E4F534A;
constexpr std::uint32_t kBin = 0x004E4942;
constexpr std::size_t kHeader = 12;
constexpr std::size_t kChunkHeader = 8;

std::uint32_t Word(Bytes bytes, std::size_t offset) {
    std::uint32_t word = 0;
    for (std::size_t i = 4; i-- > 0;) word = word << 8 | std::to_integer<std::uint32_t>(bytes[offset + i]);
    return word;
}

std::uint64_t Padding(std::uint64_t size) {
    return (4 - size % 4) % 4;
}

}  // namespace

bool IsGlb(Bytes file) {
    return file.size() >= 4 && Word(file, 0) == kMagic;
}

GlbLayout ReadGlbLayout(Bytes file, std::string_view name) {
    const auto fail = [&](std::size_t offset, std::string_view text) {
        throw Error(ErrorKind::kContainer, name, Join("byte ", offset), text);
    };
    if (file.size() < kHeader) fail(file.size(), "the file ends in the header");
    if (Word(file, 4) != 2)
        throw Error(ErrorKind::kVersion, name, "byte 4",
                    Join("container version ", Word(file, 4), " instead of 2"));
    GlbLayout layout;
    layout.size = Word(file, 8);
    if (layout.size > file.size() || layout.size < kHeader)
        fail(8, Join("the header says ", Counted(layout.size, "byte"), ", the file has ", file.size()));
    file = file.first(layout.size);
    std::size_t offset = kHeader;
    for (int chunk = 0; offset < file.size(); ++chunk) {
        if (file.size() - offset < kChunkHeader) fail(offset, "the file ends in a chunk's header");
        const std::size_t size = Word(file, offset), type = Word(file, offset + 4);
        const std::size_t content = offset + kChunkHeader;
        if (size > file.size() - content)
            fail(offset, Join("a chunk of ", size, " bytes, but only ", file.size() - content, " follow"));
        if ((chunk == 0) != (type == kJson))
            fail(offset, "the first chunk must hold the JSON text, and no other");
        if (chunk == 0) {
            layout.jsonOffset = content;
            layout.jsonSize = size;
        } else if (chunk == 1 && type == kBin) {
            layout.hasBin = true;
            layout.binOffset = content;
            layout.binSize = size;
        } else if (type == kBin) {
            fail(offset, "the binary data must be the second chunk");
        } else if (layout.restSize == 0) {
            layout.restOffset = offset;
        }
        offset = content + size;
        // The last chunk's padding may be missing; every other chunk begins at a multiple of 4.
        if (offset < file.size() && size % 4 != 0) fail(content, "a chunk's size is not a multiple of 4");
        if (layout.restOffset != 0) layout.restSize = offset - layout.restOffset;
    }
    if (layout.jsonOffset == 0) fail(offset, "the JSON chunk is missing");
    return layout;
}

namespace {

// 32-bit numbers as stored in the file.
template <std::size_t Size>
struct Words {
    std::array<std::byte, Size> bytes{};

    explicit Words(std::initializer_list<std::uint64_t> words) {
        std::size_t at = 0;
        for (std::uint64_t word : words)
            for (int i = 0; i < 4; ++i) bytes[at++] = static_cast<std::byte>(word >> (8 * i) & 0xFF);
    }
    operator Bytes() const { return bytes; }
};

}  // namespace

void WriteGlb(OutputFile& file, std::string_view name, const std::function<void()>& writeJson,
              std::span<const Bytes> bin, Bytes rest) {
    file.Write(Words<kHeader + kChunkHeader>({}));  // known when the text is written
    writeJson();
    const std::uint64_t jsonEnd = file.Size();
    file.Write(std::string_view("   ").substr(0, Padding(jsonEnd)));
    const std::uint64_t jsonSize = file.Size() - kHeader - kChunkHeader;

    std::uint64_t binSize = 0;
    for (Bytes piece : bin) binSize += piece.size();
    const std::uint64_t binChunk = bin.empty() ? 0 : kChunkHeader + binSize + Padding(binSize);
    const std::uint64_t total = file.Size() + binChunk + rest.size();
    if (total > std::numeric_limits<std::uint32_t>::max())
        throw Error(ErrorKind::kLimit, name, "", "a binary container cannot hold 4 GiB or more");
    if (!bin.empty()) {
        file.Write(Words<kChunkHeader>({binSize + Padding(binSize), kBin}));
        for (Bytes piece : bin) file.Write(piece);
        file.Write(std::string_view("\0\0\0", 3).substr(0, Padding(binSize)));
    }
    file.Write(rest);
    file.Overwrite(0, Words<kHeader + kChunkHeader>({kMagic, 2, total, jsonSize, kJson}));
}

}  // namespace zr::gltf
