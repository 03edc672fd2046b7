// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/api.h"
#include "host/window_types.h"

namespace kernix {

// Texts by number, read from a language table: UTF-16 little-endian with a byte-order mark, lines of the form
//   id="text"
// Lines of any other form, such as comments (";") and empty ones, are skipped; of two lines with the same id
// the first counts. Nothing when the bytes are not such a text.
using StringTable = std::map<int, std::u16string>;
KERNIX_API std::optional<StringTable> ParseStringTable(std::string_view bytes);

// The language table for a language or locale ("de", "fr_CA.UTF-8"); nothing for one without a table.
KERNIX_API std::optional<std::string> LanguageTable(std::string_view language);

// Removes the number at the front of text and returns it; nothing without a digit. Takes at most nine digits.
KERNIX_API std::optional<int> TakeNumber(std::u16string_view& text);

// A module's texts in one language, in English where that language lacks them.
class KERNIX_API ModuleStrings {
public:
    ModuleStrings(StringTable texts, StringTable english);

    // Never null; empty when there is no such text. Valid while this object lives. Any thread.
    const char16_t* Get(int id) const;

private:
    StringTable m_texts;
};

// The texts of the modules that a host has loaded.
class KERNIX_API StringTables {
public:
    // language: as for LanguageTable; one without a table means English.
    explicit StringTables(std::string_view language);

    // Null when the module carries no English table. The object lives as long as this one.
    const ModuleStrings* Load(HINSTANCE module);

private:
    std::string m_table;
    std::vector<std::unique_ptr<ModuleStrings>> m_loaded;
};

}  // namespace kernix
