// SPDX-License-Identifier: MIT
#include "kernix/module_strings.h"

#include <algorithm>
#include <utility>

#include "kernix/module_resource.h"

namespace kernix {
namespace {

constexpr char kResourceType[] = "LNG";
constexpr char kEnglish[] = "ENG";

constexpr std::pair<std::string_view, const char*> kTables[] = {
    {"en", kEnglish}, {"de", "DE_DE"}, {"fr", "FR_FR"}, {"ja", "JA_JP"}, {"zh", "CN_CN"},
};

void AddLine(std::u16string_view line, StringTable& table) {
    const std::optional<int> id = TakeNumber(line);
    if (!id || line.size() < 3 || !line.starts_with(u"=\"") || !line.ends_with(u'"')) return;
    table.emplace(*id, line.substr(2, line.size() - 3));
}

StringTable ReadTable(HINSTANCE module, std::string_view name) {
    const auto bytes = ReadModuleResource(module, kResourceType, name);
    return bytes ? ParseStringTable(*bytes).value_or(StringTable()) : StringTable();
}

}  // namespace

std::optional<StringTable> ParseStringTable(std::string_view bytes) {
    std::u16string content;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        content.push_back(static_cast<char16_t>(low | (high << 8)));
    }
    if (content.empty() || content.front() != 0xFEFF) return std::nullopt;
    StringTable table;
    std::u16string_view rest = std::u16string_view(content).substr(1);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(u"\r\n"), rest.size());
        AddLine(rest.substr(0, end), table);
        rest.remove_prefix(std::min(end + 2, rest.size()));
    }
    return table;
}

std::optional<std::string> LanguageTable(std::string_view language) {
    const std::string_view code = language.substr(0, language.find_first_of("_-.@"));
    for (const auto& [known, table] : kTables) {
        if (code == known) return table;
    }
    return std::nullopt;
}

std::optional<int> TakeNumber(std::u16string_view& text) {
    std::size_t length = 0;
    int number = 0;
    while (length < text.size() && length < 9 && text[length] >= u'0' && text[length] <= u'9') {
        number = number * 10 + (text[length++] - u'0');
    }
    text.remove_prefix(length);
    return length > 0 ? std::optional(number) : std::nullopt;
}

ModuleStrings::ModuleStrings(StringTable texts, StringTable english) : m_texts(std::move(texts)) {
    m_texts.merge(english);
}

const char16_t* ModuleStrings::Get(int id) const {
    const auto found = m_texts.find(id);
    return found == m_texts.end() ? u"" : found->second.c_str();
}

StringTables::StringTables(std::string_view language) : m_table(LanguageTable(language).value_or(kEnglish)) {}

const ModuleStrings* StringTables::Load(HINSTANCE module) {
    StringTable english = ReadTable(module, kEnglish);
    if (english.empty()) return nullptr;
    m_loaded.push_back(std::make_unique<ModuleStrings>(ReadTable(module, m_table), std::move(english)));
    return m_loaded.back().get();
}

}  // namespace kernix
