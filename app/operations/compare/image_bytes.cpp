// SPDX-License-Identifier: MIT
#include "app/operations/compare/image_bytes.h"

#include <string_view>

#include "base/error.h"
#include "gltf/members.h"
#include "gltf/uri.h"

namespace zr::compare {

std::vector<std::byte> ImageBytes(const gltf::Document& document, const gltf::Json& image) {
    const auto copy = [](Bytes bytes) { return std::vector<std::byte>(bytes.begin(), bytes.end()); };
    if (image.Find("bufferView") != nullptr) {
        const auto bytes = document.ViewBytes(gltf::IndexMember(image, "bufferView"));
        return bytes ? copy(*bytes) : std::vector<std::byte>();
    }
    const std::string_view uri = image.Find("uri") != nullptr ? image.Find("uri")->String() : "";
    if (gltf::IsDataUri(uri)) return gltf::DecodeDataUri(uri).value_or(std::vector<std::byte>());
    try {
        const auto path = document.FileOf(uri, "");
        return path ? copy(ReadFile(document.Folder() / *path).View()) : std::vector<std::byte>();
    } catch (const Error&) {
        return {};
    }
}

}  // namespace zr::compare
