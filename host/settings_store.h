// SPDX-License-Identifier: MIT
#pragma once

// The user's stored settings, by section and key ("anim\\reverse"). A setting that is absent or not a number
// yields fallback. The caller of an operation owns the store. The order of functions and fields is the binary
// interface (host/api.h).
class SettingsStore {
public:
    virtual int GetInt(const char* section, const char* key, int fallback) = 0;
    virtual float GetFloat(const char* section, const char* key, float fallback) = 0;

protected:
    ~SettingsStore() = default;
};
