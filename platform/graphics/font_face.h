// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "platform/windows/gdi.h"

struct FT_FaceRec_;
struct FT_Outline_;

namespace platform {

// One font file opened for outlines, in font units. Lives until the process (or the library that holds
// this code) ends. Loading is serialised, so threads may share a face.
class FontFace {
public:
    // The face for the record, opened at the first request and kept open. Null when there is none.
    static FontFace* Find(const LOGFONTW& font);

    // Adds the fonts of a file to those that Find knows, ahead of the system's. Returns how many.
    static int AddFile(const std::u16string& file);

    ~FontFace();
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    const std::u16string& Family() const { return m_family; }

    int UnitsPerEm() const { return m_unitsPerEm; }

    // Height of a line's cell, ascent plus descent, in font units.
    int CellHeight() const { return m_cellHeight; }

    // 0 when the font lacks the character.
    unsigned GlyphIndex(char16_t character);

    // Loads a glyph and hands its outline and advance, both in font units, to `visit` while the face is
    // held. False when the glyph has no outline form.
    template <class Visit>
    bool VisitGlyph(unsigned glyph, Visit&& visit) {
        const std::lock_guard lock(m_mutex);
        int advance = 0;
        const FT_Outline_* outline = Load(glyph, advance);
        if (outline) visit(*outline, advance);
        return outline != nullptr;
    }

private:
    struct Match;

    explicit FontFace(FT_FaceRec_* face, const Match& match);

    static Match BestMatch(const LOGFONTW& font);

    // Null on failure; valid until the next load.
    const FT_Outline_* Load(unsigned glyph, int& advance);

    std::mutex m_mutex;
    FT_FaceRec_* m_face;
    std::u16string m_family;
    int m_unitsPerEm;
    int m_cellHeight;
    // How much the face is slanted (x per y), and its strokes thickened (in font units), where it lacks the
    // requested style.
    double m_shear;
    int m_embolden;
};

}  // namespace platform
