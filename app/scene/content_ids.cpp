// SPDX-License-Identifier: MIT
#include "app/scene/content_ids.h"

#include <algorithm>

#include "app/gltf/accessor.h"
#include "app/gltf/text.h"

namespace zr {

using gltf::Join;
using gltf::Json;
using gltf::Kind;

ContentIds::ContentIds(const gltf::Document& document)
    : m_document(document),
      m_accessors(document.Elements(Kind::kAccessor).size()),
      m_textures(document.Elements(Kind::kTexture).size()),
      m_views(document.Elements(Kind::kBufferView).size()) {
}

std::uint32_t ContentIds::Text(std::string_view text) {
    const auto [known, isNew] = m_texts.try_emplace(std::string(text), m_next);
    if (isNew) ++m_next;
    return known->second;
}

std::uint32_t ContentIds::View(std::size_t index) {
    std::optional<std::uint32_t>& number = m_views[index];
    if (number) return *number;
    // What cannot be read equals only itself.
    const auto bytes = m_document.ViewBytes(index);
    if (!bytes) return *(number = m_next++);
    const std::string_view content(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    const std::size_t hash = std::hash<std::string_view>{}(content);
    for (auto [at, end] = m_firstViews.equal_range(hash); at != end; ++at) {
        const gltf::Bytes other = *m_document.ViewBytes(at->second);
        if (std::equal(other.begin(), other.end(), bytes->begin(), bytes->end()))
            return *(number = m_views[at->second]);
    }
    m_firstViews.emplace(hash, index);
    return *(number = m_next++);
}

std::string ContentIds::AccessorContent(std::size_t index) const {
    const Json& accessor = m_document.Elements(Kind::kAccessor)[index];
    const gltf::AccessorInfo info = gltf::Describe(m_document, index);
    std::string content = Join(static_cast<std::uint32_t>(info.component), " ", info.shape.rows, "x",
                               info.shape.columns, " ", info.count, info.normalized ? " n " : " ");
    if (!gltf::HasData(m_document, index) ||
        (accessor.Find("bufferView") == nullptr && !accessor.Find("sparse")))
        return content + Join("unread ", index);
    if (info.component == gltf::Component::kUnsignedInt) {
        const auto values = gltf::ReadIntegers(m_document, index);
        return content.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof values[0]);
    }
    // Every other component fits a float exactly, so equal floats are equal bytes.
    const auto values = gltf::ReadFloats(m_document, index);
    return content.append(reinterpret_cast<const char*>(values.data()), values.size() * sizeof values[0]);
}

std::uint32_t ContentIds::Accessor(std::size_t index) {
    std::optional<std::uint32_t>& number = m_accessors[index];
    if (number) return *number;
    const std::string content = AccessorContent(index);
    const std::size_t hash = std::hash<std::string>{}(content);
    for (auto [at, end] = m_firstAccessors.equal_range(hash); at != end; ++at)
        if (AccessorContent(at->second) == content) return *(number = m_accessors[at->second]);
    m_firstAccessors.emplace(hash, index);
    return *(number = m_next++);
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
