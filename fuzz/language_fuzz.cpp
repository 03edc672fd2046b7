// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "kernix/module_strings.h"

// A language table, and the same bytes as the name of a language.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    kernix::LanguageTable(bytes);
    if (auto table = kernix::ParseStringTable(bytes)) {
        const kernix::ModuleStrings strings(*table, {{1, u"one"}, {2, u"two"}});
        for (const auto& [id, text] : *table)
            if (strings.Get(id) != std::u16string(text.c_str())) __builtin_trap();
    }
    return 0;
}
