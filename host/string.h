// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "host/api.h"

namespace vl {

// A text held by the host. Wide text is UTF-16, narrow text UTF-8. What cannot be converted becomes
// U+FFFD.
class KERNIX_API String {
public:
    String();
    String(const String& other);
    String& operator=(const String& other);
    ~String();

    void Set(const char* text);                  // null is the empty text
    void Set(const char16_t* text, int length);  // -1: up to the terminator

    // Copies at most size characters, the terminator included; a narrow text is never cut inside a
    // character. Nothing is written when buffer is null or size is below 1.
    void Get(char* buffer, int size) const;
    void Get(char16_t* buffer, int size) const;

    const std::u16string& Text() const { return m_text; }

private:
    std::u16string m_text;
};

}  // namespace vl

// Narrow to wide. AtoW writes the whole text and its terminator; AtoWex at most max characters and a
// terminator after them, so the buffer holds max + 1. A null text is the empty one.
KERNIX_API void AtoW(const char* text, char16_t* out);
KERNIX_API void AtoWex(const char* text, char16_t* out, int max);
