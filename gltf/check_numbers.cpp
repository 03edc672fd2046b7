// SPDX-License-Identifier: MIT
#include <cstdint>
#include <cstring>

#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/check.h"
#include "gltf/document.h"

namespace zr::gltf {
namespace {

// Whether `count` rows of floats, `stride` bytes apart, are all finite.
bool AreFinite(const std::byte* row, std::size_t count, std::size_t width, std::size_t stride) {
    constexpr std::uint32_t kExponent = 0x7F800000;
    for (std::size_t i = 0; i < count; ++i, row += stride) {
        bool found = false;
        for (std::size_t k = 0; k < width; ++k) {
            std::uint32_t bits;
            std::memcpy(&bits, row + k * sizeof bits, sizeof bits);
            found |= (bits & kExponent) == kExponent;
        }
        if (found) return false;
    }
    return true;
}

bool IsFinite(const Document& document, const Json& accessor, std::size_t index) {
    const AccessorInfo info = Describe(document, index);
    if (info.component != Component::kFloat || info.count == 0 || accessor.Find("bufferView") == nullptr)
        return true;
    const std::size_t view = IndexMember(accessor, "bufferView");
    const auto bytes = document.ViewBytes(view);
    if (!bytes) return true;
    const std::byte* first = bytes->data() + IndexMember(accessor, "byteOffset");
    const std::size_t width = info.shape.Components(), size = info.ElementSize();
    const std::size_t stride = IndexMember(document.Elements(Kind::kBufferView)[view], "byteStride", size);
    // Without gaps, all elements form one row.
    return stride == size ? AreFinite(first, 1, width * info.count, 0)
                          : AreFinite(first, info.count, width, stride);
}

}  // namespace

void CheckNumbers(Document& document) {
    const auto accessors = document.Elements(Kind::kAccessor);
    std::size_t first = 0, found = 0;
    for (std::size_t i = 0; i < accessors.size(); ++i) {
        if (IsFinite(document, accessors[i], i)) continue;
        if (found++ == 0) first = i;
    }
    if (found == 0) return;
    const std::string others =
        found > 1 ? Join(", as ", found > 2 ? Join("do ", found - 1, " others") : "does another") : "";
    document.Warn(ErrorKind::kNumber, Join("/accessors/", first),
                  Join("holds numbers that are not finite", others));
}

}  // namespace zr::gltf
