// SPDX-License-Identifier: MIT
#include "gltf/glb.h"

#include <cstdint>
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

void PutWord(std::vector<std::byte>& out, std::uint64_t word) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::byte>(word >> (8 * i) & 0xFF));
}

std::size_t Padding(std::size_t size) {
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
    if (Word(file, 8) != file.size())
        fail(8, Join("the header tells ", Word(file, 8), " bytes, the file has ", file.size()));
    GlbLayout layout;
    std::size_t offset = kHeader;
    for (int chunk = 0; offset < file.size(); ++chunk) {
        if (file.size() - offset < kChunkHeader) fail(offset, "the file ends in a chunk's header");
        const std::size_t size = Word(file, offset), type = Word(file, offset + 4);
        const std::size_t content = offset + kChunkHeader;
        if (size > file.size() - content)
            fail(offset, Join("a chunk of ", size, " bytes, of which ", file.size() - content, " are there"));
        if ((chunk == 0) != (type == kJson))
            fail(offset, "the first chunk, and no other, holds the JSON text");
        if (chunk == 0) {
            layout.jsonOffset = content;
            layout.jsonSize = size;
        } else if (chunk == 1 && type == kBin) {
            layout.hasBin = true;
            layout.binOffset = content;
            layout.binSize = size;
        } else if (type == kBin) {
            fail(offset, "the binary data is not the second chunk");
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

std::vector<Bytes> GlbPieces(std::string_view json, std::span<const Bytes> bin, Bytes rest,
                             std::string_view name, std::vector<std::byte>& head) {
    std::size_t binSize = 0;
    for (Bytes piece : bin) binSize += piece.size();
    const std::size_t jsonPadding = Padding(json.size()), binPadding = Padding(binSize);
    std::size_t total = kHeader + kChunkHeader + json.size() + jsonPadding + rest.size();
    if (!bin.empty()) total += kChunkHeader + binSize + binPadding;
    if (total > std::numeric_limits<std::uint32_t>::max())
        throw Error(ErrorKind::kLimit, name, "", "a binary container cannot hold 4 GiB or more");

    head.clear();
    PutWord(head, kMagic);
    PutWord(head, 2);
    PutWord(head, total);
    PutWord(head, json.size() + jsonPadding);
    PutWord(head, kJson);
    const std::size_t jsonHead = head.size();
    head.resize(head.size() + jsonPadding, std::byte{' '});
    if (!bin.empty()) {
        PutWord(head, binSize + binPadding);
        PutWord(head, kBin);
    }
    const std::size_t binHead = head.size();
    head.resize(head.size() + binPadding);

    const Bytes heads(head);
    std::vector<Bytes> pieces{heads.first(jsonHead), BytesOf(json),
                              heads.subspan(jsonHead, binHead - jsonHead)};
    pieces.insert(pieces.end(), bin.begin(), bin.end());
    pieces.push_back(heads.subspan(binHead));
    pieces.push_back(rest);
    return pieces;
}

}  // namespace zr::gltf
