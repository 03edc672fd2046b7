// SPDX-License-Identifier: MIT
#include "app/operations/compare/canonical.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "app/operations/compare/content_rules.h"
#include "app/operations/compare/image_bytes.h"
#include "base/text.h"
#include "gltf/accessor.h"

namespace zr::compare {

using gltf::Json;
using gltf::JsonMember;
using gltf::Kind;
using gltf::SchemaNode;

namespace {

std::size_t Hash(const void* bytes, std::size_t size) {
    return std::hash<std::string_view>()({static_cast<const char*>(bytes), size});
}

}  // namespace

const std::string& Canonical::Of(Kind kind, std::size_t index) {
    const auto [known, isNew] = m_known[gltf::Ordinal(kind)].try_emplace(index);
    if (!isNew) return known->second;
    const Json& json = m_document.Elements(kind)[index];
    std::string text;
    if (kind == Kind::kAccessor) {
        if (gltf::HasData(m_document, index)) {
            const std::vector<float> values = gltf::ReadFloats(m_document, index);
            text = Join(values.size(), ":", Hash(values.data(), values.size() * sizeof(float)));
        }
    } else if (kind == Kind::kBufferView) {
        if (const auto bytes = m_document.ViewBytes(index))
            text = Join(bytes->size(), ":", Hash(bytes->data(), bytes->size()));
    } else if (kind == Kind::kImage) {
        const std::vector<std::byte> bytes = ImageBytes(m_document, json);
        const Json* uri = json.Find("uri");
        text = bytes.empty() && uri != nullptr ? std::string(uri->String().substr(0, 200))
                                               : Join(bytes.size(), ":", Hash(bytes.data(), bytes.size()));
    } else {
        Write(json, SchemaOf(kind), "", text);
    }
    return known->second = std::move(text);
}

std::string Canonical::NameOf(const gltf::Target& target) const {
    const auto elements = m_document.Elements(target.kind);
    return target.index < elements.size() ? std::string(gltf::NameOf(elements[target.index])) : std::string();
}

void Canonical::Write(const Json& json, const SchemaNode* schema, std::string_view name, std::string& text) {
    if (json.IsObject()) {
        text += '{';
        WriteMembers(json, schema, text);
        text += '}';
    } else if (json.IsArray() && schema != nullptr) {
        text += '[';
        for (const Json& item : json.Items()) {
            Write(item, schema->isMap ? nullptr : schema->item.get(), name, text);
            text += ',';
        }
        text += ']';
    } else if (schema != nullptr && schema->rule != nullptr && gltf::TargetOf(*schema->rule, json)) {
        const auto target = gltf::TargetOf(*schema->rule, json);
        text += '(' + (IsOwn(target->kind) ? NameOf(*target) : Of(target->kind, target->index)) + ')';
    } else {
        WritePlain(json, text);
    }
}

void Canonical::WriteMembers(const Json& object, const SchemaNode* schema, std::string& text) {
    std::vector<std::pair<std::string_view, std::string>> members;
    for (const JsonMember& member : object.Members()) {
        const std::string_view name = member.Name();
        if (name == "name" && m_names == Names::kIgnore) continue;
        std::string value;
        const SchemaNode* below = Below(schema, "extensions", name);
        if (name.ends_with("Texture") && member.value.Find("index") != nullptr &&
            member.value.Find("index")->Index()) {
            value = '(' + Of(Kind::kTexture, *member.value.Find("index")->Index()) + ')';
            for (const JsonMember& part : member.value.Members()) {
                if (part.Name() == "index" || IsPlainDefault(part.Name(), part.value)) continue;
                value += Join(part.Name(), ":");
                Write(part.value, nullptr, part.Name(), value);
            }
        } else {
            Write(member.value, below, name, value);
        }
        if (!IsDefault(name, value)) members.emplace_back(name, std::move(value));
    }
    std::sort(members.begin(), members.end());
    for (const auto& [name, value] : members) text += Join("\"", name, "\":", value, ",");
}

}  // namespace zr::compare
