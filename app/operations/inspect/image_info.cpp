// SPDX-License-Identifier: MIT
#include "app/operations/inspect/image_info.h"

namespace zr::inspect {
namespace {

// Bytes beyond the end read as 0.
class Reader {
public:
    explicit Reader(Bytes bytes) : m_bytes(bytes) {}

    std::uint32_t Byte(std::size_t at) const {
        return at < m_bytes.size() ? std::to_integer<std::uint32_t>(m_bytes[at]) : 0;
    }
    std::uint32_t Big(std::size_t at, std::size_t count) const {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < count; ++i) value = value << 8 | Byte(at + i);
        return value;
    }
    std::uint32_t Little(std::size_t at, std::size_t count) const {
        std::uint32_t value = 0;
        for (std::size_t i = count; i-- > 0;) value = value << 8 | Byte(at + i);
        return value;
    }
    bool Has(std::size_t at, std::string_view text) const {
        for (std::size_t i = 0; i < text.size(); ++i)
            if (Byte(at + i) != static_cast<unsigned char>(text[i])) return false;
        return true;
    }
    std::size_t Size() const { return m_bytes.size(); }

private:
    Bytes m_bytes;
};

// The size is in the start-of-frame segment, whose marker depends on the coding process.
ImageInfo Jpeg(const Reader& file) {
    ImageInfo info{"JPEG"};
    for (std::size_t at = 2; at + 9 < file.Size() && file.Byte(at) == 0xFF;) {
        const std::uint32_t marker = file.Byte(at + 1);
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (isFrame) {
            info.height = file.Big(at + 5, 2);
            info.width = file.Big(at + 7, 2);
            break;
        }
        at += 2 + file.Big(at + 2, 2);
    }
    return info;
}

ImageInfo WebP(const Reader& file) {
    if (file.Has(12, "VP8X")) return {"WebP", file.Little(24, 3) + 1, file.Little(27, 3) + 1};
    if (file.Has(12, "VP8L")) {
        const std::uint32_t bits = file.Little(21, 4);
        return {"WebP", (bits & 0x3FFF) + 1, (bits >> 14 & 0x3FFF) + 1};
    }
    return {"WebP", file.Little(26, 2) & 0x3FFF, file.Little(28, 2) & 0x3FFF};
}

}  // namespace

ImageInfo ReadImageInfo(Bytes bytes) {
    const Reader file(bytes);
    if (file.Has(0, "\x89PNG\r\n\x1A\n")) return {"PNG", file.Big(16, 4), file.Big(20, 4)};
    if (file.Has(0, "\xFF\xD8\xFF")) return Jpeg(file);
    if (file.Has(0, "RIFF") && file.Has(8, "WEBP")) return WebP(file);
    if (file.Has(0, "\xABKTX 20\xBB\r\n\x1A\n")) return {"KTX2", file.Little(20, 4), file.Little(24, 4)};
    return {};
}

}  // namespace zr::inspect
