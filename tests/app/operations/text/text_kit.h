// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "app/operations/text/text_drawing.h"

namespace zr {

inline Host& LoadedHost() {
    static Host& host = *[] {
        auto* made = new Host("en");
        made->LoadModule();
        return made;
    }();
    return host;
}

inline TextDrawing Draw(std::u16string text, TextStyle style, const DrawingOptions& options = {},
                        const TextFont& font = {u"DejaVu Sans"}) {
    TextRequest request;
    request.text = std::move(text);
    request.style = style;
    request.font = font;
    return MakeDrawing(LoadedHost(), request, options);
}

inline std::u16string PrintableCharacters() {
    std::u16string text;
    for (char16_t c = 32; c <= 126; ++c) text += c;
    return text;
}

// A folder that ends with the test.
class Folder {
public:
    Folder() : m_path(std::filesystem::temp_directory_path() / ("zr_text_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(m_path);
    }
    ~Folder() { std::filesystem::remove_all(m_path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::filesystem::path operator/(const char* name) const { return m_path / name; }

    std::string Read(const char* name) const {
        std::ifstream file(m_path / name, std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

private:
    std::filesystem::path m_path;
};

}  // namespace zr
