// SPDX-License-Identifier: MIT
#include "app/services/font_file.h"

#include <cstdint>
#include <optional>

#include "base/error.h"
#include "base/filesystem.h"
#include "platform/windows.h"

namespace zr {
namespace {

constexpr std::uint32_t Tag(const char (&name)[5]) {
    std::uint32_t tag = 0;
    for (int i = 0; i < 4; ++i) tag = tag << 8 | static_cast<unsigned char>(name[i]);
    return tag;
}

constexpr unsigned kFamilyName = 1;
constexpr unsigned kUnicode = 0;  // platforms of names
constexpr unsigned kMacintosh = 1;
constexpr unsigned kWindows = 3;
constexpr unsigned kEnglish = 0x409;
constexpr int kRegular = 400;

// Reads the big-endian numbers of a font; past its end they are 0.
class FontReader {
public:
    explicit FontReader(Bytes font) : m_font(font) {}

    unsigned Word(std::size_t at) const { return Byte(at) << 8 | Byte(at + 1); }
    std::uint32_t Long(std::size_t at) const { return std::uint32_t{Word(at)} << 16 | Word(at + 2); }
    unsigned Byte(std::size_t at) const { return at < m_font.size() ? static_cast<unsigned>(m_font[at]) : 0; }

    // The offset of a table of the first font; nothing if the font lacks it.
    std::optional<std::size_t> Table(std::uint32_t tag) const {
        const std::size_t start = Start();
        const unsigned count = Word(start + 4);
        for (unsigned i = 0; i < count; ++i) {
            const std::size_t record = start + 12 + 16 * std::size_t{i};
            if (Long(record) == tag) return Long(record + 8);
        }
        return std::nullopt;
    }

    bool IsFont() const {
        const std::uint32_t kind = Long(Start());
        return kind == 0x00010000 || kind == Tag("OTTO") || kind == Tag("true");
    }

private:
    std::size_t Start() const { return Long(0) == Tag("ttcf") ? Long(12) : 0; }

    Bytes m_font;
};

// Prefers English names of the Windows platform, then its other names, then those of other platforms.
int Preference(unsigned platform, unsigned language) {
    if (platform == kWindows) return language == kEnglish ? 3 : 2;
    return platform == kUnicode || platform == kMacintosh ? 1 : 0;
}

std::u16string FamilyOf(const FontReader& font, std::size_t names) {
    std::u16string family;
    int best = 0;
    const unsigned count = font.Word(names + 2);
    const std::size_t texts = names + font.Word(names + 4);
    for (unsigned i = 0; i < count; ++i) {
        const std::size_t record = names + 6 + 12 * std::size_t{i};
        const unsigned platform = font.Word(record);
        const int preference = Preference(platform, font.Word(record + 4));
        if (font.Word(record + 6) != kFamilyName || preference <= best) continue;
        best = preference;
        family.clear();
        const std::size_t first = texts + font.Word(record + 10);
        const std::size_t end = first + font.Word(record + 8);
        for (std::size_t at = first; at < end; at += platform == kMacintosh ? 1 : 2)
            family += static_cast<char16_t>(platform == kMacintosh ? font.Byte(at) : font.Word(at));
    }
    return family;
}

}  // namespace

FontFileNames ReadFontNames(Bytes bytes, const std::string& name) {
    const FontReader font(bytes);
    const auto names = font.Table(Tag("name"));
    FontFileNames found{names ? FamilyOf(font, *names) : u"", kRegular, false};
    if (!font.IsFont() || found.family.empty())
        throw Error(name, "", "is not a TrueType or OpenType font with a family name");
    if (const auto style = font.Table(Tag("OS/2"))) {
        const auto weight = static_cast<int>(font.Word(*style + 4));
        if (weight >= 1 && weight <= 1000) found.weight = weight;
        found.isItalic = (font.Word(*style + 62) & 1) != 0;
    }
    return found;
}

FontFileNames AddFontFile(const std::filesystem::path& file) {
    const std::string name = PathToUtf8(file);
    // The system opens the file a second time by its name.
    std::error_code none;
    if (fs::exists(file, none) && !fs::is_regular_file(file, none))
        throw Error(name, "", "is not a regular file");
    FontFileNames names = ReadFontNames(ReadFile(file).View(), name);
    const std::u16string path = std::filesystem::absolute(file).u16string();
    if (AddFontResourceExW(platform::Wide(path.c_str()), FR_PRIVATE, nullptr) == 0)
        throw Error(name, "", "the system does not accept this font");
    return names;
}

}  // namespace zr
