// SPDX-License-Identifier: MIT
#include "kernix/format16.h"

namespace kernix {

std::u16string Format16(const char16_t* format, va_list arguments) {
    std::u16string out;
    const auto putNumber = [&](const std::string& digits) { out.append(digits.begin(), digits.end()); };
    for (const char16_t* c = format; *c != 0; ++c) {
        if (*c != u'%') {
            out.push_back(*c);
            continue;
        }
        switch (c[1]) {
            case u'd':
                putNumber(std::to_string(va_arg(arguments, int)));
                break;
            case u'u':
                putNumber(std::to_string(va_arg(arguments, unsigned)));
                break;
            case u's': {
                const auto* text = va_arg(arguments, const char16_t*);
                out += text != nullptr ? text : u"";
                break;
            }
            case u'%':
                out.push_back(u'%');
                break;
            default:
                out.push_back(u'%');
                continue;
        }
        ++c;
    }
    return out;
}

}  // namespace kernix
