// SPDX-License-Identifier: MIT
#pragma once

// The user's stored settings, by section and key. A setting that is absent or no number gives fallback.
class SettingsStore {
public:
    virtual int GetInt(const char* section, const char* key, int fallback) = 0;
    virtual float GetFloat(const char* section, const char* key, float fallback) = 0;

protected:
    ~SettingsStore() = default;
};
