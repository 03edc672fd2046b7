// SPDX-License-Identifier: MIT
#include "app/services/strings.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "platform/windows.h"

namespace zr {
namespace {

constexpr char kResourceType[] = "LNG";
constexpr char kEnglish[] = "ENG";

// Long enough for a caption that refers to any id.
constexpr int kMaxCaption = 16;

constexpr std::pair<std::string_view, const char*> kTables[] = {
    {"en", kEnglish}, {"de", "DE_DE"}, {"fr", "FR_FR"}, {"ja", "JA_JP"}, {"zh", "CN_CN"},
};

// Removes the leading number from the text and returns it; nothing without one or with more than nine digits.
std::optional<int> TakeNumber(std::u16string_view& text) {
    std::size_t length = 0;
    int number = 0;
    while (length < text.size() && length < 9 && text[length] >= u'0' && text[length] <= u'9') {
        number = number * 10 + (text[length++] - u'0');
    }
    text.remove_prefix(length);
    return length > 0 ? std::optional(number) : std::nullopt;
}

void AddLine(std::u16string_view line, StringTable& table) {
    const std::optional<int> id = TakeNumber(line);
    if (!id || line.size() < 3 || !line.starts_with(u"=\"") || !line.ends_with(u'"')) return;
    table.emplace(*id, line.substr(2, line.size() - 3));
}

StringTable ReadTable(HINSTANCE module, std::string_view name) {
    const auto bytes = ReadModuleResource(module, kResourceType, name);
    return bytes ? ParseStringTable(*bytes).value_or(StringTable()) : StringTable();
}

void LocalizeCaption(const ModuleStrings& strings, HWND window) {
    std::array<char16_t, kMaxCaption> buffer;
    const int length = GetWindowTextW(window, platform::Wide(buffer.data()), kMaxCaption);
    std::u16string_view caption(buffer.data(), static_cast<std::size_t>(length));
    if (!caption.starts_with(u'#')) return;
    caption.remove_prefix(1);
    const std::optional<int> id = TakeNumber(caption);
    if (id && caption.empty()) SetWindowTextW(window, platform::Wide(strings.Get(*id)));
}

BOOL CALLBACK LocalizeControl(HWND control, LPARAM strings) {
    LocalizeCaption(*reinterpret_cast<const ModuleStrings*>(strings), control);
    return TRUE;
}

}  // namespace

std::optional<std::string> ReadModuleResource(HINSTANCE module, std::string_view type,
                                              std::string_view name) {
    const HRSRC resource = FindResourceA(module, std::string(name).c_str(), std::string(type).c_str());
    const void* data = LockResource(LoadResource(module, resource));
    if (!data) return std::nullopt;
    return std::string(static_cast<const char*>(data), SizeofResource(module, resource));
}

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

std::string UserLanguage() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) return value;
    }
    return {};
}

ModuleStrings::ModuleStrings(StringTable texts, StringTable english) : m_texts(std::move(texts)) {
    m_texts.merge(english);
}

const char16_t* ModuleStrings::Get(int id) const {
    const auto found = m_texts.find(id);
    return found == m_texts.end() ? u"" : found->second.c_str();
}

void ModuleStrings::LocalizeDialog(HWND dialog) const {
    LocalizeCaption(*this, dialog);
    EnumChildWindows(dialog, LocalizeControl, reinterpret_cast<LPARAM>(this));
}

StringTables::StringTables(std::string_view language) : m_table(LanguageTable(language).value_or(kEnglish)) {}

const ModuleStrings* StringTables::Load(HINSTANCE module) {
    StringTable english = ReadTable(module, kEnglish);
    if (english.empty()) return nullptr;
    m_loaded.push_back(std::make_unique<ModuleStrings>(ReadTable(module, m_table), std::move(english)));
    return m_loaded.back().get();
}

}  // namespace zr
