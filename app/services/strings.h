// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/window_types.h"

namespace zr {

// The content of a resource of a loaded module; nothing when it has none of that type and name.
std::optional<std::string> ReadModuleResource(HINSTANCE module, std::string_view type, std::string_view name);

// Texts by number, read from a language table: UTF-16 little-endian with a byte-order mark, lines of the form
//   id="text"
// and lines that are empty or begin with ";". Nothing when the bytes are not such a text; other lines are
// ignored, and the first of several lines with one id counts.
using StringTable = std::map<int, std::u16string>;
std::optional<StringTable> ParseStringTable(std::string_view bytes);

// The language table for a language or locale ("de", "fr_CA.UTF-8"); nothing for one without a table.
std::optional<std::string> LanguageTable(std::string_view language);

// The language that the user's environment asks for: LC_ALL, LC_MESSAGES or LANG, the first that is set.
std::string UserLanguage();

// A module's texts in one language, in English where that language lacks them.
class ModuleStrings {
public:
    ModuleStrings(StringTable texts, StringTable english);

    // Never null; empty when there is no such text. Valid while this object lives. Any thread.
    const char16_t* Get(int id) const;

    // Replaces every caption of the dialog and its controls that is "#" and an id by that text.
    void LocalizeDialog(HWND dialog) const;

private:
    StringTable m_texts;
};

// The texts of the modules that a host has loaded.
class StringTables {
public:
    // language: as for LanguageTable; one without a table means English.
    explicit StringTables(std::string_view language);

    // Null when the module carries no English table. The object lives as long as this one.
    const ModuleStrings* Load(HINSTANCE module);

private:
    std::string m_table;
    std::vector<std::unique_ptr<ModuleStrings>> m_loaded;
};

}  // namespace zr
