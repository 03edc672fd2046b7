// SPDX-License-Identifier: MIT
#include "gltf/uri.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/file.h"

namespace zr::gltf {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> kDigits = [] {
    std::array<std::int8_t, 256> digits{};
    digits.fill(-1);
    for (std::size_t i = 0; i < kAlphabet.size(); ++i)
        digits[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::int8_t>(i);
    return digits;
}();

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

bool IsLetterOrDigit(char c) {
    const char lower = LowerCase(c);
    return (lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9');
}

bool StartsWith(std::string_view text, std::string_view prefix) {
    if (text.size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i)
        if (LowerCase(text[i]) != prefix[i]) return false;
    return true;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = LowerCase(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::optional<std::string> PercentDecode(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        if (i + 2 >= text.size()) return std::nullopt;
        const int high = HexDigit(text[i + 1]), low = HexDigit(text[i + 2]);
        if (high < 0 || low < 0) return std::nullopt;
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return decoded;
}

std::optional<std::vector<std::byte>> DecodeBase64(std::string_view text) {
    while (text.ends_with('=')) text.remove_suffix(1);
    if (text.size() % 4 == 1) return std::nullopt;
    std::vector<std::byte> bytes;
    bytes.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t bits = 0;
    int count = 0;
    for (char c : text) {
        const int digit = kDigits[static_cast<unsigned char>(c)];
        if (digit < 0) return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        if ((count += 6) >= 8) bytes.push_back(static_cast<std::byte>(bits >> (count -= 8) & 0xFF));
    }
    return bytes;
}

}  // namespace

bool IsDataUri(std::string_view uri) {
    return StartsWith(uri, "data:");
}

std::string_view DataUriType(std::string_view uri) {
    uri.remove_prefix(5);
    return uri.substr(0, uri.find_first_of(",;"));
}

std::optional<std::vector<std::byte>> DecodeDataUri(std::string_view uri) {
    const std::size_t comma = uri.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    const std::string_view content = uri.substr(comma + 1);
    constexpr std::string_view kBase64 = ";base64";
    const std::string_view type = uri.substr(0, comma);
    if (type.size() >= kBase64.size() && StartsWith(type.substr(type.size() - kBase64.size()), kBase64)) {
        if (content.find('%') == std::string_view::npos) return DecodeBase64(content);
        const auto plain = PercentDecode(content);
        return plain ? DecodeBase64(*plain) : std::nullopt;
    }
    const auto plain = PercentDecode(content);
    if (!plain) return std::nullopt;
    const Bytes bytes = BytesOf(*plain);
    return std::vector<std::byte>(bytes.begin(), bytes.end());
}

std::string EncodeDataUri(std::string_view mediaType, std::string_view bytes) {
    std::string uri = "data:" + std::string(mediaType) + ";base64,";
    uri.reserve(uri.size() + bytes.size() / 3 * 4 + 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t bits = 0;
        const std::size_t taken = std::min<std::size_t>(3, bytes.size() - i);
        for (std::size_t k = 0; k < 3; ++k)
            bits = bits << 8 | (k < taken ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k) uri += k <= taken ? kAlphabet[bits >> (18 - 6 * k) & 63] : '=';
    }
    return uri;
}

std::optional<std::filesystem::path> PathOfUri(std::string_view uri) {
    // A colon in the first segment ends a scheme.
    const std::size_t colon = uri.find(':');
    if (colon != std::string_view::npos && colon < uri.find('/')) return std::nullopt;
    const auto decoded = PercentDecode(uri);
    if (!decoded || decoded->empty() || decoded->find('\0') != std::string::npos) return std::nullopt;
    return PathFromUtf8(*decoded).lexically_normal();
}

std::string EncodePath(const std::filesystem::path& path) {
    constexpr std::string_view kPlain = "-._~/!$&'()*+,;=@";
    constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string uri;
    for (char c : PathToUtf8(path)) {
        if (IsLetterOrDigit(c) || kPlain.find(c) != std::string_view::npos ||
            static_cast<signed char>(c) < 0) {
            uri += c;
        } else {
            uri += '%';
            uri += kHex[static_cast<unsigned char>(c) >> 4];
            uri += kHex[static_cast<unsigned char>(c) & 15];
        }
    }
    return uri;
}

}  // namespace zr::gltf
