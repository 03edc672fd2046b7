// SPDX-License-Identifier: MIT
#include "app/scene/content_ids.h"

#include <algorithm>
#include <functional>

#include "base/text.h"
#include "gltf/accessor.h"

namespace zr {

using gltf::Json;
using gltf::Kind;

namespace {

// The shape of an accessor and the values of its elements as bytes. Nothing when they cannot be read.
std::optional<std::string> AccessorContent(const gltf::Document& document, std::size_t index) {
    const Json& accessor = document.Elements(Kind::kAccessor)[index];
    const bool isStored = accessor.Find("bufferView") != nullptr || accessor.Find("sparse") != nullptr;
    if (!isStored || !gltf::HasData(document, index)) return std::nullopt;
    const gltf::AccessorInfo info = gltf::Describe(document, index);
    std::string content = Join(static_cast<std::uint32_t>(info.component), " ", info.shape.rows, "x",
                               info.shape.columns, " ", info.count, info.normalized ? " n " : " ");
    const auto append = [&](const auto& values) {
        content.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof values[0]);
    };
    // Every other component fits a float exactly, so equal floats are equal bytes.
    if (info.component == gltf::Component::kUnsignedInt)
        append(gltf::ReadIntegers(document, index));
    else
        append(gltf::ReadFloats(document, index));
    return content;
}

}  // namespace

ContentIds::ContentIds(const gltf::Document& document)
    : m_document(document), m_textures(document.Elements(Kind::kTexture).size()) {
    m_accessors.numbers.resize(document.Elements(Kind::kAccessor).size());
    m_views.numbers.resize(document.Elements(Kind::kBufferView).size());
}

std::uint32_t ContentIds::Text(std::string_view text) {
    const auto [known, added] = m_texts.try_emplace(std::string(text), m_next);
    if (added) ++m_next;
    return known->second;
}

// contentOf(index): a text, or nothing for what cannot be read and equals only itself.
template <typename ContentOf>
std::uint32_t ContentIds::Number(Numbered& elements, std::size_t index, ContentOf contentOf) {
    std::optional<std::uint32_t>& number = elements.numbers[index];
    if (number) return *number;
    if (const auto content = contentOf(index)) {
        const std::size_t hash = std::hash<std::string_view>()(*content);
        const auto [begin, end] = elements.firsts.equal_range(hash);
        const auto equal =
            std::find_if(begin, end, [&](const auto& first) { return contentOf(first.second) == content; });
        if (equal != end) return *(number = elements.numbers[equal->second]);
        elements.firsts.emplace(hash, index);
    }
    return *(number = m_next++);
}

std::uint32_t ContentIds::View(std::size_t index) {
    return Number(m_views, index, [&](std::size_t view) -> std::optional<std::string_view> {
        const auto bytes = m_document.ViewBytes(view);
        if (!bytes) return std::nullopt;
        return std::string_view(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    });
}

std::uint32_t ContentIds::Accessor(std::size_t index) {
    return Number(m_accessors, index,
                  [&](std::size_t accessor) { return AccessorContent(m_document, accessor); });
}

// Members in any order, the name aside, with what they refer to in place of indices.
std::uint32_t ContentIds::Resolved(std::string_view kind, const Json& element) {
    std::vector<std::string> parts;
    for (const gltf::JsonMember& member : element.Members()) {
        const std::string_view name = member.Name();
        if (name == "name") continue;
        if (name == "bufferView")
            parts.push_back(Join("view ", View(*member.value.Index())));
        else if (name == "source")
            parts.push_back(
                Join("image ", Resolved("image", m_document.Elements(Kind::kImage)[*member.value.Index()])));
        else if (name == "sampler")
            parts.push_back(
                Join("sampler ", Canonical(m_document.Elements(Kind::kSampler)[*member.value.Index()])));
        else
            parts.push_back(Join(name, "=", gltf::WriteJson(member.value, false)));
    }
    std::sort(parts.begin(), parts.end());
    std::string content(kind);
    for (const std::string& part : parts) content += Join(" ", part, ";");
    return Text(content);
}

std::uint32_t ContentIds::Texture(std::size_t index) {
    if (!m_textures[index])
        m_textures[index] = Resolved("texture", m_document.Elements(Kind::kTexture)[index]);
    return *m_textures[index];
}

std::string ContentIds::Canonical(const Json& value) {
    std::string out;
    Append(value, {}, true, out);
    return out;
}

void ContentIds::Append(const Json& value, std::string_view holder, bool outermost, std::string& out) {
    if (value.IsArray()) {
        out += '[';
        for (const Json& item : value.Items()) {
            Append(item, {}, false, out);
            out += ',';
        }
        out += ']';
    } else if (value.IsObject()) {
        std::vector<const gltf::JsonMember*> members;
        for (const gltf::JsonMember& member : value.Members())
            if (!outermost || member.Name() != "name") members.push_back(&member);
        std::sort(members.begin(), members.end(),
                  [](const auto* a, const auto* b) { return a->Name() < b->Name(); });
        out += '{';
        for (const gltf::JsonMember* member : members) {
            out += Join(member->Name(), ":");
            const auto index = member->value.Index();
            const bool isTexture = holder.ends_with("Texture") && member->Name() == "index" && index &&
                                   *index < m_textures.size();
            if (isTexture)
                out += Join("texture ", Texture(*index));
            else
                Append(member->value, member->Name(), false, out);
            out += ',';
        }
        out += '}';
    } else {
        out += gltf::WriteJson(value, false);
    }
}

}  // namespace zr
