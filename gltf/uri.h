// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zr::gltf {

bool IsDataUri(std::string_view uri);

// Content of a data URI, base64 or percent-encoded; nothing when it is malformed.
std::optional<std::vector<std::byte>> DecodeDataUri(std::string_view uri);
// The media type of a data URI ("image/png"), as written.
std::string_view DataUriType(std::string_view uri);
std::string EncodeDataUri(std::string_view mediaType, std::string_view bytes);

// The path that a URI reference names, in normal form: absolute, or relative to its document. Nothing for a
// URI with a scheme or a malformed one.
std::optional<std::filesystem::path> PathOfUri(std::string_view uri);
// The URI reference of a relative path.
std::string EncodePath(const std::filesystem::path& path);

}  // namespace zr::gltf
