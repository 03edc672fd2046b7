// SPDX-License-Identifier: MIT
#include "platform/graphics/font_face.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>

#include <map>
#include <tuple>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_TRUETYPE_TABLES_H

#include "platform/graphics/font_text.h"

namespace platform {
namespace {

using PatternPtr = std::unique_ptr<FcPattern, decltype(&FcPatternDestroy)>;

int CountAdded() {
    const FcFontSet* added = FcConfigGetFonts(nullptr, FcSetApplication);
    return added ? added->nfont : 0;
}

bool HasFamily(FcPattern* font, const std::string& family) {
    FcChar8* name = nullptr;
    for (int i = 0; FcPatternGetString(font, FC_FAMILY, i, &name) == FcResultMatch; ++i) {
        if (FcStrCmpIgnoreCase(name, reinterpret_cast<const FcChar8*>(family.c_str())) == 0) return true;
    }
    return false;
}

// The best match among the fonts that the process added when it has the family, else among all fonts.
PatternPtr MatchPattern(FcPattern* pattern, const std::string& family) {
    FcResult result = FcResultNoMatch;
    FcFontSet* added = FcConfigGetFonts(nullptr, FcSetApplication);
    if (added && added->nfont > 0) {
        PatternPtr best(FcFontSetMatch(nullptr, &added, 1, pattern, &result), FcPatternDestroy);
        if (best && HasFamily(best.get(), family)) return best;
    }
    return {FcFontMatch(nullptr, pattern, &result), FcPatternDestroy};
}

// The library and the faces opened from it; the faces are closed first.
struct Library {
    FT_Library library = nullptr;
    std::mutex mutex;
    // By request, so that a repeated one costs one look-up.
    std::map<std::tuple<std::u16string, LONG, bool>, FontFace*> requests;
    int added = 0;  // fonts that the process had added when `requests` began
    // By file and style, so requests that end at one face share it.
    std::map<std::tuple<std::string, int, bool, bool>, std::unique_ptr<FontFace>> faces;

    Library() { FT_Init_FreeType(&library); }
    ~Library() {
        faces.clear();
        FT_Done_FreeType(library);
    }
};

Library& TheLibrary() {
    static Library library;
    return library;
}

}  // namespace

struct FontFace::Match {
    std::string file;
    int index = 0;
    std::u16string family;
    bool slant = false;
    bool embolden = false;
};

FontFace::Match FontFace::BestMatch(const LOGFONTW& font) {
    const PatternPtr pattern(FcPatternCreate(), FcPatternDestroy);
    const std::string wished = ToUtf8(font.lfFaceName);
    if (!wished.empty()) {
        FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(wished.c_str()));
    }
    const LONG weight = font.lfWeight > 0 ? font.lfWeight : FW_NORMAL;
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, FcWeightFromOpenType(weight));
    FcPatternAddInteger(pattern.get(), FC_SLANT, font.lfItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
    FcPatternAddBool(pattern.get(), FC_VARIABLE, FcFalse);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());

    const PatternPtr best = MatchPattern(pattern.get(), wished);
    Match match;
    FcChar8* text = nullptr;
    if (!best || FcPatternGetString(best.get(), FC_FILE, 0, &text) != FcResultMatch) return match;
    match.file = reinterpret_cast<const char*>(text);
    FcPatternGetInteger(best.get(), FC_INDEX, 0, &match.index);

    // A face may have several family names; the one asked for wins.
    for (int i = 0; FcPatternGetString(best.get(), FC_FAMILY, i, &text) == FcResultMatch; ++i) {
        const bool asked = FcStrCmpIgnoreCase(text, reinterpret_cast<const FcChar8*>(wished.c_str())) == 0;
        if (i == 0 || asked) match.family = ToUtf16(text);
        if (asked) break;
    }
    FcMatrix* matrix = nullptr;
    match.slant = FcPatternGetMatrix(best.get(), FC_MATRIX, 0, &matrix) == FcResultMatch && matrix->xy != 0;
    FcBool embolden = FcFalse;
    FcPatternGetBool(best.get(), FC_EMBOLDEN, 0, &embolden);
    match.embolden = embolden != FcFalse;
    return match;
}

FontFace* FontFace::Find(const LOGFONTW& font) {
    Library& library = TheLibrary();
    const std::lock_guard lock(library.mutex);
    if (!library.library) return nullptr;
    // Added fonts, also those that another library of the process added, may change the face for a request.
    if (const int added = CountAdded(); added != library.added) {
        library.requests.clear();
        library.added = added;
    }
    const std::tuple wished(std::u16string(font.lfFaceName), font.lfWeight, font.lfItalic != 0);
    if (const auto known = library.requests.find(wished); known != library.requests.end())
        return known->second;

    const Match match = BestMatch(font);
    if (match.file.empty()) return nullptr;
    auto& face = library.faces[{match.file, match.index, match.slant, match.embolden}];
    if (!face) {
        FT_Face opened = nullptr;
        if (FT_New_Face(library.library, match.file.c_str(), match.index, &opened) != 0) return nullptr;
        if (!FT_IS_SCALABLE(opened) || opened->units_per_EM == 0) {
            FT_Done_Face(opened);
            return nullptr;
        }
        const std::unique_ptr<FT_FaceRec, decltype(&FT_Done_Face)> held(opened, FT_Done_Face);
        face.reset(new FontFace(opened, match));
        FT_Reference_Face(opened);  // the object's own
    }
    return library.requests.emplace(wished, face.get()).first->second;
}

int FontFace::AddFile(const std::u16string& file) {
    Library& library = TheLibrary();
    const std::lock_guard lock(library.mutex);
    const int before = CountAdded();
    const std::string path = ToUtf8(file.c_str());
    FcConfigAppFontAddFile(nullptr, reinterpret_cast<const FcChar8*>(path.c_str()));
    return CountAdded() - before;
}

FontFace::FontFace(FT_Face face, const Match& match)
    : m_face(face),
      m_family(match.family),
      m_unitsPerEm(face->units_per_EM),
      m_cellHeight(face->ascender - face->descender),
      // The slant and the weight that the system's own renderers add to such faces.
      m_shear(match.slant ? 0.25 : 0.0),
      m_embolden(match.embolden ? face->units_per_EM / 24 : 0) {
    if (!face->charmap && face->num_charmaps > 0) FT_Set_Charmap(face, face->charmaps[0]);
    const auto* os2 = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (os2 && os2->usWinAscent + os2->usWinDescent > 0) {
        m_cellHeight = os2->usWinAscent + os2->usWinDescent;
    }
    if (m_cellHeight <= 0) m_cellHeight = m_unitsPerEm;
}

FontFace::~FontFace() {
    FT_Done_Face(m_face);
}

unsigned FontFace::GlyphIndex(char16_t character) {
    const std::lock_guard lock(m_mutex);
    const unsigned glyph = FT_Get_Char_Index(m_face, character);
    if (glyph != 0 || character > 0xFF || !m_face->charmap ||
        m_face->charmap->encoding != FT_ENCODING_MS_SYMBOL) {
        return glyph;
    }
    // Symbol fonts keep their characters in the private area.
    return FT_Get_Char_Index(m_face, 0xF000u + character);
}

const FT_Outline* FontFace::Load(unsigned glyph, int& advance) {
    if (FT_Load_Glyph(m_face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_IGNORE_TRANSFORM) != 0) return nullptr;
    FT_GlyphSlot slot = m_face->glyph;
    if (slot->format != FT_GLYPH_FORMAT_OUTLINE) return nullptr;
    advance = static_cast<int>(slot->metrics.horiAdvance);
    if (m_embolden != 0) {
        FT_Outline_Embolden(&slot->outline, m_embolden);
        if (advance != 0) advance += m_embolden;
    }
    if (m_shear != 0) {
        const FT_Matrix matrix{0x10000, static_cast<FT_Fixed>(m_shear * 0x10000), 0, 0x10000};
        FT_Outline_Transform(&slot->outline, &matrix);
    }
    return &slot->outline;
}

}  // namespace platform
