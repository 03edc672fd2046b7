// SPDX-License-Identifier: MIT
#include "app/services/settings_file.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

#include "base/error.h"
#include "base/file.h"
#include "base/text.h"
#include "host/text.h"

namespace zr {

namespace {

// Far larger than any settings file; anything beyond is the wrong file or an endless device.
constexpr std::size_t kMaxSize = 1 << 20;

std::string Folded(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), vl::FoldCase<char>);
    return text;
}

std::optional<double> ParseNumber(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return {};
    return value;
}

std::string_view Stripped(std::string_view text) {
    constexpr std::string_view kBlank = " \t\r";
    const std::size_t first = text.find_first_not_of(kBlank);
    return first == text.npos ? "" : text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

// A semicolon begins a comment at the start of a line or after a blank.
std::string_view WithoutComment(std::string_view text) {
    for (std::size_t at = text.find(';'); at != text.npos; at = text.find(';', at + 1))
        if (at == 0 || text[at - 1] == ' ' || text[at - 1] == '\t') return text.substr(0, at);
    return text;
}

}  // namespace

SettingsFile::SettingsFile(const std::filesystem::path& file) {
    const FileContent content = ReadFile(file, kMaxSize);
    std::string_view text(reinterpret_cast<const char*>(content.data.get()), content.size);
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());

    const std::string name = PathToUtf8(file);
    constexpr std::size_t kShown = 40;  // characters of a faulty setting; the file may be anything
    std::string section;
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t size = text.find('\n');
        const std::string_view line = Stripped(WithoutComment(text.substr(0, size)));
        text.remove_prefix(std::min(size, text.size() - 1) + 1);
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == '[' && line.find(']') != line.npos) {
            section = line.substr(1, line.find(']') - 1);
            continue;
        }
        const std::size_t equals = line.find_first_of("=:");
        if (equals == line.npos) throw Error(name, "", Join("line ", number, " is not a setting"));
        const std::string_view key = Stripped(line.substr(0, equals)),
                               value = Stripped(line.substr(equals + 1));
        const std::optional<double> wanted = ParseNumber(value);
        if (!wanted) {
            throw Error(name, "",
                        Join("[", section.substr(0, kShown), "] ", key.substr(0, kShown),
                             " is not a number: ", value.substr(0, kShown)));
        }
        m_values[Folded(Join(section, "\\", key))] = *wanted;
    }
}

std::optional<double> SettingsFile::Find(const char* section, const char* key) const {
    const std::string path = section != nullptr && *section != '\0' ? std::string(section) + '\\' + key : key;
    const auto found = m_values.find(Folded(path));
    return found != m_values.end() ? std::optional<double>(found->second) : std::nullopt;
}

int SettingsFile::GetInt(const char* section, const char* key, int fallback) {
    const std::optional<double> value = Find(section, key);
    const double limit = -static_cast<double>(std::numeric_limits<int>::min());
    return value && *value > -limit - 1 && *value < limit ? static_cast<int>(*value) : fallback;
}

float SettingsFile::GetFloat(const char* section, const char* key, float fallback) {
    const std::optional<double> value = Find(section, key);
    return value && std::abs(*value) <= std::numeric_limits<float>::max() ? static_cast<float>(*value)
                                                                          : fallback;
}

}  // namespace zr
