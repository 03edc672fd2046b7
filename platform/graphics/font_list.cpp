// SPDX-License-Identifier: MIT
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/graphics/font_face.h"
#include "platform/graphics/font_text.h"
#include "platform/windows/gdi.h"

namespace {

using PatternPtr = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;
using ObjectSetPtr = std::unique_ptr<FcObjectSet, decltype(&FcObjectSetDestroy)>;
using FontSetPtr = std::unique_ptr<FcFontSet, decltype(&FcFontSetDestroy)>;

// A face of a large family also has names within a family of four styles; those come last.
std::u16string LastEnglishName(FcPattern* font, const char* object, const char* language) {
    std::u16string found;
    FcChar8* name = nullptr;
    FcChar8* spoken = nullptr;
    for (int i = 0; FcPatternGetString(font, object, i, &name) == FcResultMatch; ++i) {
        const bool isEnglish = FcPatternGetString(font, language, i, &spoken) != FcResultMatch ||
                               FcStrCmpIgnoreCase(spoken, reinterpret_cast<const FcChar8*>("en")) == 0;
        if (found.empty() || isEnglish) found = platform::ToUtf16(name);
    }
    return found;
}

template <std::size_t size>
void Copy(const std::u16string& text, char16_t (&buffer)[size]) {
    text.copy(buffer, size - 1);
}

ENUMLOGFONTEXW Describe(FcPattern* font, const std::u16string& family) {
    ENUMLOGFONTEXW described{};
    const std::u16string style = LastEnglishName(font, FC_STYLE, FC_STYLELANG);
    Copy(family, described.elfLogFont.lfFaceName);
    Copy(style, described.elfStyle);
    Copy(family + u" " + style, described.elfFullName);
    double weight = FC_WEIGHT_REGULAR;
    int slant = FC_SLANT_ROMAN;
    FcPatternGetDouble(font, FC_WEIGHT, 0, &weight);
    FcPatternGetInteger(font, FC_SLANT, 0, &slant);
    described.elfLogFont.lfWeight = FcWeightToOpenType(static_cast<int>(weight));
    described.elfLogFont.lfItalic = slant != FC_SLANT_ROMAN;
    return described;
}

using Families = std::map<std::u16string, std::vector<ENUMLOGFONTEXW>>;

Families InstalledFamilies() {
    const PatternPtr pattern(FcPatternCreate(), FcPatternDestroy);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
    FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);
    const ObjectSetPtr objects(FcObjectSetBuild(FC_FAMILY, FC_FAMILYLANG, FC_STYLE, FC_STYLELANG, FC_WEIGHT,
                                                FC_SLANT, static_cast<char*>(nullptr)),
                               FcObjectSetDestroy);
    const FontSetPtr fonts(FcFontList(nullptr, pattern.get(), objects.get()), FcFontSetDestroy);
    Families families;
    if (!fonts) return families;
    for (int i = 0; i < fonts->nfont; ++i) {
        const std::u16string family = LastEnglishName(fonts->fonts[i], FC_FAMILY, FC_FAMILYLANG);
        if (!family.empty() && family.size() < LF_FACESIZE)
            families[family].push_back(Describe(fonts->fonts[i], family));
    }
    for (auto& [family, styles] : families) {
        std::sort(styles.begin(), styles.end(), [](const ENUMLOGFONTEXW& a, const ENUMLOGFONTEXW& b) {
            return std::pair(a.elfLogFont.lfWeight, a.elfLogFont.lfItalic) <
                   std::pair(b.elfLogFont.lfWeight, b.elfLogFont.lfItalic);
        });
    }
    return families;
}

}  // namespace

int AddFontResourceExW(LPCWSTR file, DWORD flags, LPVOID) {
    return file && flags == FR_PRIVATE ? platform::FontFace::AddFile(file) : 0;
}

int EnumFontFamiliesExW(HDC dc, LOGFONTW* record, FONTENUMPROCW visit, LPARAM user, DWORD flags) {
    if (!dc || !record || !visit || flags != 0) return 0;
    int last = 1;
    const auto report = [&](const ENUMLOGFONTEXW& font) {
        return last = visit(&font.elfLogFont, nullptr, TRUETYPE_FONTTYPE, user);
    };
    const Families families = InstalledFamilies();
    const std::u16string wished = record->lfFaceName;
    if (wished.empty()) {
        for (const auto& [family, styles] : families) {
            if (report(styles.front()) == 0) break;
        }
        return last;
    }
    const auto found = families.find(wished);
    if (found == families.end()) return last;
    for (const ENUMLOGFONTEXW& font : found->second) {
        if (report(font) == 0) break;
    }
    return last;
}
