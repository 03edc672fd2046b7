// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "host/settings_store.h"

namespace zr {

// Stored settings from an INI file: the setting "anim\mergekeys" is "mergekeys" in the section "anim",
// whatever the case. A nested section is part of the section's name ("user\anim"). Every value is a number.
class SettingsFile final : public SettingsStore {
public:
    // Throws Error, naming the file and the line or setting, if the file cannot be read, is not an INI file
    // or contains a value that is not a number.
    explicit SettingsFile(const std::filesystem::path& file);

    // section: null or empty for the whole file. A number outside the type's range yields fallback; an int is
    // truncated.
    int GetInt(const char* section, const char* key, int fallback) override;
    float GetFloat(const char* section, const char* key, float fallback) override;

private:
    std::optional<double> Find(const char* section, const char* key) const;

    std::map<std::string, double> m_values;  // by folded section, '\' and name
};

}  // namespace zr
