// SPDX-License-Identifier: MIT
#include "app/operations/text/text_check.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

#include "app/operations/text/text_source.h"
#include "base/text.h"
#include "host/text.h"
#include "kernix/utf.h"

namespace zr {
namespace {

template <class Visit>
void ForEachDistinct(std::u16string_view text, Visit&& visit) {
    std::set<char32_t> seen;
    for (std::size_t at = 0; at < text.size();) {
        const auto [code, units] = CharacterAt(text, at);
        at += units;
        if (code != U'\r' && code != U'\n' && seen.insert(code).second) visit(code);
    }
}

}  // namespace

std::vector<TextShortcoming> CheckStrokeText(std::u16string_view text) {
    std::vector<TextShortcoming> found;
    ForEachDistinct(text, [&](char32_t code) {
        if (code >= 32 && code <= 126) return;
        found.push_back({"the stroke font has no character " + CharacterName(code), "leaving it out"});
    });
    return found;
}

std::vector<TextShortcoming> CheckFontText(std::u16string_view text, const TextFont& wished) {
    std::vector<TextShortcoming> found;
    const SystemFont font(wished);
    const std::u16string family = font.Family();
    const std::string name = Join("\"", kernix::ToUtf8(family), "\"");
    if (!wished.family.empty() && vl::CompareNoCase(family.c_str(), wished.family.c_str()) != 0)
        found.push_back({Join("the font \"", kernix::ToUtf8(wished.family), "\" is not installed"), name});
    ForEachDistinct(text, [&](char32_t code) {
        if (code > 0xFFFF) {
            found.push_back({"characters beyond U+FFFF cannot be drawn: " + CharacterName(code),
                             "two replacement characters"});
            return;
        }
        const auto c = static_cast<char16_t>(code);
        if (!font.Has(c)) {
            found.push_back(
                {Join("the font ", name, " has no character ", CharacterName(code)), "its replacement"});
        }
        if (!font.OutlineSize(c)) {
            throw std::runtime_error(
                Join("the font ", name, " has no outline for ", CharacterName(code), " at this height"));
        }
    });
    return found;
}

std::uint64_t MemoryOf(const TextRequest& request, bool isSolid) {
    // Measured on texts of a hundred thousand letters: bytes for each character, and of its native outline.
    constexpr std::uint64_t kCharacter = 64, kStrokes = 500;
    if (request.style == TextStyle::kStroke) return request.text.size() * kStrokes;
    const std::uint64_t weight = isSolid ? 10 : request.style == TextStyle::kMesh ? 6 : 4;
    const SystemFont font(request.font);
    std::map<char16_t, std::uint64_t> sizes;
    std::uint64_t bytes = 0;
    for (const char16_t c : request.text) {
        const auto [at, isNew] = sizes.try_emplace(c);
        if (isNew) at->second = weight * font.OutlineSize(c).value_or(0);
        bytes += kCharacter + at->second;
    }
    return bytes;
}

bool NeedsShaping(std::u16string_view text) {
    return std::any_of(text.begin(), text.end(), [](char16_t c) {
        return (c >= 0x0590 && c < 0x0900) || (c >= 0xFB1D && c < 0xFE00) || (c >= 0xFE70 && c < 0xFF00);
    });
}

}  // namespace zr
