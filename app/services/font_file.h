// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "base/file.h"

namespace zr {

// What a font file says about its font, or the first font of a collection.
struct FontFileNames {
    std::u16string family;
    int weight;
    bool isItalic;
};

// Throws Error, with the name of the file, unless the bytes are a TrueType or OpenType font with a family
// name.
FontFileNames ReadFontNames(Bytes font, const std::string& name);

// Makes the fonts of a file known to this process, where they take precedence over the system's of the same
// family. Throws Error.
FontFileNames AddFontFile(const std::filesystem::path& file);

}  // namespace zr
