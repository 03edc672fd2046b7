// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

// The version of the output of --json. It increases when a member is removed or changes its meaning, not when
// one is added.
inline constexpr int kJsonSchemaVersion = 1;

class JsonArray;

// A JSON object built member by member, in order. Invalid UTF-8 becomes U+FFFD; a number that is not finite
// becomes null.
class JsonObject {
public:
    JsonObject& Set(std::string_view name, std::string_view value);
    JsonObject& Set(std::string_view name, const std::string& value) {
        return Set(name, std::string_view(value));
    }
    JsonObject& Set(std::string_view name, const char* value) { return Set(name, std::string_view(value)); }
    JsonObject& Set(std::string_view name, double value);
    JsonObject& Set(std::string_view name, float value);
    JsonObject& Set(std::string_view name, const JsonObject& value);
    JsonObject& Set(std::string_view name, const JsonArray& value);
    JsonObject& Set(std::string_view name, const std::vector<std::string>& values);
    template <std::integral T>
    JsonObject& Set(std::string_view name, T value) {
        if constexpr (std::same_as<T, bool>) return SetText(name, value ? "true" : "false");
        return SetText(name, std::to_string(value));
    }
    // Adds all members of the other object.
    JsonObject& Append(const JsonObject& other);

    std::string Text() const { return "{" + m_members + "}"; }
    // Indented, ending in a newline.
    std::string PrettyText() const;

private:
    JsonObject& SetText(std::string_view name, std::string_view json);

    std::string m_members;
};

class JsonArray {
public:
    void Append(const JsonObject& item) { AppendText(item.Text()); }
    void Append(std::string_view text);

    std::string Text() const { return "[" + m_items + "]"; }

private:
    void AppendText(std::string_view json);

    std::string m_items;
};

}  // namespace zr
