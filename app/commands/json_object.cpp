// SPDX-License-Identifier: MIT
#include "app/commands/json_object.h"

#include <cmath>

#include "gltf/json.h"
#include "kernix/utf.h"

namespace zr {
namespace {

std::string StringText(std::string_view text) {
    gltf::JsonTree tree;
    return gltf::WriteJson(tree.MakeString(kernix::ToUtf8(kernix::ToUtf16(text))), false);
}

template <typename Number>
std::string NumberText(Number value) {
    gltf::JsonTree tree;
    return std::isfinite(value) ? gltf::WriteJson(tree.MakeNumber(value), false) : "null";
}

}  // namespace

JsonObject& JsonObject::SetText(std::string_view name, std::string_view json) {
    if (!m_members.empty()) m_members += ',';
    m_members.append(StringText(name)).append(":").append(json);
    return *this;
}

JsonObject& JsonObject::Set(std::string_view name, std::string_view value) {
    return SetText(name, StringText(value));
}

JsonObject& JsonObject::Set(std::string_view name, double value) {
    return SetText(name, NumberText(value));
}

JsonObject& JsonObject::Set(std::string_view name, float value) {
    return SetText(name, NumberText(value));
}

JsonObject& JsonObject::Set(std::string_view name, const JsonObject& value) {
    return SetText(name, value.Text());
}

JsonObject& JsonObject::Set(std::string_view name, const JsonArray& value) {
    return SetText(name, value.Text());
}

JsonObject& JsonObject::Set(std::string_view name, const std::vector<std::string>& values) {
    JsonArray array;
    for (const std::string& value : values) array.Append(value);
    return Set(name, array);
}

JsonObject& JsonObject::Append(const JsonObject& other) {
    if (!m_members.empty() && !other.m_members.empty()) m_members += ',';
    m_members += other.m_members;
    return *this;
}

std::string JsonObject::PrettyText() const {
    gltf::JsonTree tree;
    return gltf::WriteJson(tree.Build(Text()), true) + "\n";
}

void JsonArray::Append(std::string_view text) {
    AppendText(StringText(text));
}

void JsonArray::AppendText(std::string_view json) {
    if (!m_items.empty()) m_items += ',';
    m_items += json;
}

}  // namespace zr
