// SPDX-License-Identifier: MIT
#include "host/string.h"

#include <algorithm>

#include "host/text.h"
#include "kernix/utf.h"

namespace vl {

String::String() = default;
String::String(const String& other) = default;
String& String::operator=(const String& other) = default;
String::~String() = default;

void String::Set(const char* text) {
    m_text = kernix::ToUtf16(text != nullptr ? text : "");
}

void String::Set(const char16_t* text, int length) {
    if (text == nullptr) {
        m_text.clear();
    } else {
        m_text.assign(text, length < 0 ? Length(text) : static_cast<std::size_t>(length));
    }
}

void String::Get(char* buffer, int size) const {
    kernix::CopyText(kernix::ToUtf8(m_text), buffer, size);
}

void String::Get(char16_t* buffer, int size) const {
    kernix::CopyText(m_text, buffer, size);
}

}  // namespace vl

void AtoW(const char* text, char16_t* out) {
    const std::u16string wide = kernix::ToUtf16(text != nullptr ? text : "");
    std::copy_n(wide.c_str(), wide.size() + 1, out);
}

void AtoWex(const char* text, char16_t* out, int max) {
    kernix::CopyText(kernix::ToUtf16(text != nullptr ? text : ""), out, max + 1);
}
