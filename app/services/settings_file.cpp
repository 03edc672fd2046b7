// SPDX-License-Identifier: MIT
#include "app/services/settings_file.h"

#include <ini.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string_view>

#include "host/text.h"

namespace zr {

namespace {

// Far larger than any settings file; beyond it is the wrong file or an endless device.
constexpr std::size_t kMaxSize = 1 << 20;

std::string Folded(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), vl::FoldCase<char>);
    return text;
}

std::string Read(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string text(kMaxSize + 1, '\0');
    in.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (in.gcount() > static_cast<std::streamsize>(kMaxSize)) {
        throw std::runtime_error(file.string() + ": too large for settings");
    }
    if (in.bad() || !in.eof()) throw std::runtime_error(file.string() + ": cannot be read");
    text.resize(static_cast<std::size_t>(in.gcount()));
    return text;
}

std::optional<double> ParseNumber(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return {};
    return value;
}

struct Parsing {
    std::map<std::string, double>* values;
    std::string wrong;  // the first value that is not a number
};

int KeepValue(void* context, const char* section, const char* name, const char* value) {
    auto& parsing = *static_cast<Parsing*>(context);
    const std::optional<double> number = ParseNumber(value);
    if (number) {
        (*parsing.values)[Folded(std::string(section) + '\\' + name)] = *number;
    } else if (parsing.wrong.empty()) {
        parsing.wrong = std::string(": [") + section + "] " + name + " is not a number: " + value;
    }
    return 1;
}

}  // namespace

SettingsFile::SettingsFile(const std::filesystem::path& file) {
    const std::string text = Read(file);
    Parsing parsing{&m_values, {}};
    if (const int line = ini_parse_string(text.c_str(), KeepValue, &parsing); line != 0) {
        throw std::runtime_error(file.string() + ": line " + std::to_string(line) + " is not a setting");
    }
    if (!parsing.wrong.empty()) throw std::runtime_error(file.string() + parsing.wrong);
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
