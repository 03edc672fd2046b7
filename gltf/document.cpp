// SPDX-License-Identifier: MIT
#include "gltf/document.h"
#include "base/filesystem.h"
#include "base/give_back.h"
#include "base/text.h"

#include <algorithm>
#include <cstring>

#include "gltf/accessor.h"
#include "gltf/check.h"
#include "gltf/glb.h"
#include "gltf/uri.h"

namespace zr::gltf {
namespace {

// Bytes that an element may take in a scene, in tables and reports, apart from what it holds. In a file,
// three are enough.
constexpr std::uint64_t kForEachElement = 1024;

// Whether a text is broken into lines, judged by its beginning.
bool IsIndented(std::string_view text) {
    constexpr std::size_t kLooked = 4096;
    const std::size_t last = text.find_last_not_of(" \r\n");
    return text.substr(0, std::min(kLooked, last)).find('\n') != std::string_view::npos;
}

template <typename Content>
void Renumber(std::map<std::size_t, Content>& supplied, const std::vector<bool>& keep) {
    std::map<std::size_t, Content> renumbered;
    std::size_t index = 0, kept = 0;
    for (auto& [element, content] : supplied) {
        for (; index < element; ++index) kept += index >= keep.size() || keep[index];
        if (element >= keep.size() || keep[element])
            renumbered.emplace_hint(renumbered.end(), kept, std::move(content));
    }
    supplied = std::move(renumbered);
}

}  // namespace

std::size_t IndexMember(const Json& object, std::string_view name, std::size_t otherwise) {
    const Json* member = object.Find(name);
    const auto index = member != nullptr ? member->Index() : std::nullopt;
    return index ? static_cast<std::size_t>(*index) : otherwise;
}

Document::Document(const std::filesystem::path& file, const LoadOptions& options)
    : m_file(file), m_options(options), m_budget(options.maxMemory) {}

Document Document::Load(const std::filesystem::path& file, const LoadOptions& options) {
    Document document(file, options);
    document.Read(document.ReadInput(file, true));
    return document;
}

Document Document::FromBytes(Bytes content, const std::filesystem::path& file, const LoadOptions& options) {
    Document document(file, options);
    FileContent copy{std::make_unique_for_overwrite<std::byte[]>(content.size() + 1), content.size()};
    std::copy(content.begin(), content.end(), copy.data.get());
    if (!document.m_budget.AddInput(copy.size)) document.FailOverBudget("");
    document.m_sourceSize = copy.size;
    document.Read(std::move(copy));
    return document;
}

FileContent Document::ReadInput(const std::filesystem::path& file, bool isNew) {
    std::error_code none;
    // Only input whose size is known in advance raises the default budget, and each file only once.
    const bool raises = isNew && m_options.maxMemory == 0 && fs::is_regular_file(file, none);
    FileContent content = ReadFile(file, raises ? kNoLimit : m_budget.Left());
    if (!(isNew ? m_budget.AddInput(content.size) : m_budget.Take(content.size))) FailOverBudget("");
    if (isNew) m_sourceSize += content.size;
    return content;
}

void Document::FailOverBudget(std::string_view place) const {
    Fail(ErrorKind::kLimit, place,
         Join("needs more memory than the budget of ", m_budget.Total() >> 20, " MiB"));
}

void Document::Claim(std::uint64_t bytes, std::string_view place) {
    if (!m_budget.Take(bytes)) FailOverBudget(place);
}

void Document::Fail(ErrorKind kind, std::string_view place, std::string_view text) const {
    throw Error(kind, PathToUtf8(m_file), place, text);
}

void Document::Warn(ErrorKind kind, std::string_view place, std::string_view text) {
    m_warnings.emplace_back(kind, PathToUtf8(m_file), place, text);
}

void Document::Read(FileContent content) {
    m_content = std::move(content);
    const std::string name = PathToUtf8(m_file);
    char* text = reinterpret_cast<char*>(m_content.data.get());
    std::size_t size = m_content.size;
    std::span<std::byte> bin;
    bool hasBin = false;
    if (size == 0) Fail(ErrorKind::kContainer, "", "the file is empty");
    m_isGlb = IsGlb(m_content.View());
    if (m_isGlb) {
        const GlbLayout layout = ReadGlbLayout(m_content.View(), name);
        text += layout.jsonOffset;
        size = layout.jsonSize;
        hasBin = layout.hasBin;
        bin = m_content.MutableView().subspan(layout.binOffset, layout.binSize);
        m_rest = m_content.View().subspan(layout.restOffset, layout.restSize);
        if (layout.size != m_content.size)
            Warn(ErrorKind::kContainer, Join("byte ", layout.size),
                 Join("the container is followed by ", Counted(m_content.size - layout.size, "byte")));
    }
    m_isIndented = m_isGlb || IsIndented({text, size});
    m_tree.Parse(text, size, name);
    // The tree has its own copy of the text.
    if (m_isGlb)
        GiveBack(std::as_writable_bytes(std::span(text, size)));
    else
        m_content = {};
    Claim(m_tree.Size(), "");
    for (const KindInfo& info : kKindInfo) {
        const Kind kind = static_cast<Kind>(&info - kKindInfo.data());
        Claim(Elements(kind).size() * kForEachElement, Join("/", info.path[info.depth - 1]));
    }
    CheckStructure(*this);
    CheckResources(*this);
    LoadBuffers(bin, hasBin);
    CheckAccessors(*this);
    CheckImages(*this);
    if (m_options.decoder != nullptr) {
        m_options.decoder->Decode(*this);
        if (!m_suppliedViews.empty() || !m_suppliedAccessors.empty()) CheckAccessors(*this);
    }
    CheckHierarchy(*this);
    CheckMeshes(*this);
    CheckAnimations(*this);
    CheckNumbers(*this);
}

void Document::LoadBuffers(std::span<std::byte> bin, bool hasBin) {
    const auto buffers = Elements(Kind::kBuffer);
    for (std::size_t i = 0; i < buffers.size(); ++i) {
        Buffer buffer;
        if (buffers[i].Find("uri") != nullptr) {
            buffer = LoadBuffer(buffers[i], i);
        } else if (i == 0 && hasBin) {
            buffer.origin = Origin::kContainer;
            buffer.bytes = bin;
        }
        const std::size_t length = IndexMember(buffers[i], "byteLength");
        if (buffer.origin != Origin::kNotStored) {
            if (buffer.bytes.size() < length)
                Fail(ErrorKind::kBounds, Join("/buffers/", i, "/byteLength"),
                     Join(length, " bytes, but only ", buffer.bytes.size(), " are stored"));
            buffer.bytes = buffer.bytes.first(length);
        }
        m_buffers.push_back(std::move(buffer));
    }
}

Document::Buffer Document::LoadBuffer(const Json& json, std::size_t index) {
    const std::string place = Join("/buffers/", index, "/uri");
    const std::string_view uri = json.Find("uri")->String();
    Buffer buffer;
    if (IsDataUri(uri)) {
        auto decoded = DecodeDataUri(uri);
        if (!decoded) Fail(ErrorKind::kUri, place, "a malformed data URI");
        buffer.origin = Origin::kText;
        buffer.owned = std::move(*decoded);
        buffer.bytes = buffer.owned;
        Claim(buffer.owned.size(), place);
        return buffer;
    }
    const auto path = FileOf(uri, place);
    if (!path)
        Fail(ErrorKind::kUri, place, Join("\"", uri.substr(0, 80), "\" names no file in the scene's folder"));
    buffer.origin = Origin::kFile;
    buffer.path = *path;
    try {
        const bool isNew =
            std::find(m_bufferFiles.begin(), m_bufferFiles.end(), *path) == m_bufferFiles.end();
        buffer.file = ReadInput(Folder() / *path, isNew);
    } catch (const Error&) {
        throw;
    } catch (const zr::Error& error) {
        Fail(ErrorKind::kFile, place, error.what());
    }
    buffer.bytes = buffer.file.MutableView();
    m_bufferFiles.push_back(*path);
    return buffer;
}

std::span<Json> Document::Elements(Kind kind) {
    Json* at = &m_tree.root;
    std::size_t step = 0;
    for (std::string_view name : Info(kind).Path())
        if ((at = m_tree.Find(*at, name, m_finds[Ordinal(kind)][step++])) == nullptr) return {};
    return at->Items();
}

std::span<const Json> Document::Elements(Kind kind) const {
    const Json* at = &m_tree.root;
    std::size_t step = 0;
    for (std::string_view name : Info(kind).Path())
        if ((at = m_tree.Find(*at, name, m_finds[Ordinal(kind)][step++])) == nullptr) return {};
    return at->Items();
}

std::size_t Document::Append(Kind kind, Json element) {
    Json* at = &m_tree.root;
    for (std::string_view name : Info(kind).Path()) {
        if (!at->IsObject()) *at = JsonTree::MakeObject();
        at = &m_tree.Member(*at, name);
    }
    if (!at->IsArray()) *at = JsonTree::MakeArray();
    m_tree.Append(*at, element);
    if (kind == Kind::kBuffer) m_buffers.emplace_back();
    return at->Items().size() - 1;
}

void Document::UseExtension(std::string_view name, bool required) {
    for (std::string_view list : {"extensionsUsed", "extensionsRequired"}) {
        if (list == "extensionsRequired" && !required) return;
        Json& names = m_tree.Member(m_tree.root, list);
        if (!names.IsArray()) names = JsonTree::MakeArray();
        const auto items = names.Items();
        if (std::none_of(items.begin(), items.end(), [&](const Json& item) { return item.String() == name; }))
            m_tree.Append(names, m_tree.MakeString(name));
    }
}

std::optional<Bytes> Document::BufferBytes(std::size_t buffer) const {
    if (buffer >= m_buffers.size() || m_buffers[buffer].origin == Origin::kNotStored) return std::nullopt;
    return m_buffers[buffer].bytes;
}

std::optional<Bytes> Document::ViewBytes(std::size_t view) const {
    const auto views = Elements(Kind::kBufferView);
    if (view >= views.size()) return std::nullopt;
    if (const auto supplied = m_suppliedViews.find(view); supplied != m_suppliedViews.end())
        return Bytes(supplied->second);
    const auto bytes = BufferBytes(IndexMember(views[view], "buffer"));
    if (!bytes) return std::nullopt;
    return bytes->subspan(IndexMember(views[view], "byteOffset"), IndexMember(views[view], "byteLength"));
}

bool Document::SupplyView(std::size_t view, std::vector<std::byte> bytes) {
    if (bytes.size() != IndexMember(Elements(Kind::kBufferView)[view], "byteLength")) return false;
    m_suppliedViews[view] = std::move(bytes);
    return true;
}

bool Document::SupplyAccessor(std::size_t accessor, std::vector<std::byte> bytes) {
    const AccessorInfo info = Describe(*this, accessor);
    if (bytes.size() != info.count * info.ElementSize()) return false;
    m_suppliedAccessors[accessor] = std::move(bytes);
    return true;
}

std::optional<Bytes> Document::SuppliedBytes(std::size_t accessor) const {
    const auto supplied = m_suppliedAccessors.find(accessor);
    if (supplied == m_suppliedAccessors.end() || !supplied->second) return std::nullopt;
    return Bytes(*supplied->second);
}

bool Document::IsWithheld(std::size_t accessor) const {
    const auto supplied = m_suppliedAccessors.find(accessor);
    return supplied != m_suppliedAccessors.end() && !supplied->second;
}

void Document::RenumberSupplied(Kind kind, const std::vector<bool>& keep) {
    if (kind == Kind::kBufferView) Renumber(m_suppliedViews, keep);
    if (kind == Kind::kAccessor) Renumber(m_suppliedAccessors, keep);
}

void Document::ForgetSupplied() {
    m_suppliedViews.clear();
    m_suppliedAccessors.clear();
}

// Returns the offset of the bytes.
std::size_t Document::AppendToNewBuffer(Bytes bytes) {
    if (!m_newBuffer) {
        m_newBuffer = Append(Kind::kBuffer, JsonTree::MakeObject());
        m_buffers[*m_newBuffer].origin = Origin::kNew;
    }
    Buffer& buffer = m_buffers[*m_newBuffer];
    buffer.owned.resize((buffer.owned.size() + 3) & ~std::size_t{3});
    const std::size_t offset = buffer.owned.size();
    buffer.owned.insert(buffer.owned.end(), bytes.begin(), bytes.end());
    buffer.bytes = buffer.owned;
    Json& json = Elements(Kind::kBuffer)[*m_newBuffer];
    m_tree.Member(json, "byteLength") = m_tree.MakeIndex(buffer.owned.size());
    return offset;
}

std::size_t Document::AppendView(Bytes bytes, unsigned target, unsigned stride) {
    const std::size_t offset = AppendToNewBuffer(bytes);
    Json view = JsonTree::MakeObject();
    m_tree.Member(view, "buffer") = m_tree.MakeIndex(*m_newBuffer);
    m_tree.Member(view, "byteOffset") = m_tree.MakeIndex(offset);
    m_tree.Member(view, "byteLength") = m_tree.MakeIndex(bytes.size());
    if (stride != 0) m_tree.Member(view, "byteStride") = m_tree.MakeIndex(stride);
    if (target != 0) m_tree.Member(view, "target") = m_tree.MakeIndex(target);
    return Append(Kind::kBufferView, view);
}

std::optional<std::size_t> Document::ExtendView(std::size_t index, Bytes bytes) {
    const Json& json = Elements(Kind::kBufferView)[index];
    const std::size_t begin = IndexMember(json, "byteOffset");
    const std::size_t end = begin + IndexMember(json, "byteLength");
    if (IndexMember(json, "buffer") != m_newBuffer || end != m_buffers[*m_newBuffer].owned.size())
        return std::nullopt;
    const std::size_t offset = AppendToNewBuffer(bytes) - begin;
    m_tree.Member(Elements(Kind::kBufferView)[index], "byteLength") = m_tree.MakeIndex(offset + bytes.size());
    return offset;
}

void Document::PackBuffer(std::size_t index, std::span<const BlockMove> blocks) {
    Buffer& buffer = m_buffers[index];
    const std::span<std::byte> bytes = buffer.bytes;
    std::size_t end = 0;
    for (const BlockMove& block : blocks) {
        std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(end),
                  bytes.begin() + static_cast<std::ptrdiff_t>(block.to), std::byte{0});
        std::memmove(bytes.data() + block.to, bytes.data() + block.from, block.size);
        end = block.to + block.size;
    }
    buffer.bytes = bytes.first(end);
    if (!buffer.owned.empty()) {
        buffer.owned.resize(end);
        buffer.bytes = buffer.owned;
    }
    // A data URI is rewritten as one; a container's chunk stays in its container.
    if (buffer.origin == Origin::kFile) buffer.origin = Origin::kNew;
    Json& json = Elements(Kind::kBuffer)[index];
    m_tree.Member(json, "byteLength") = m_tree.MakeIndex(buffer.bytes.size());
    if (buffer.origin == Origin::kText) {
        const std::string_view text(reinterpret_cast<const char*>(buffer.bytes.data()), buffer.bytes.size());
        m_tree.Member(json, "uri") = m_tree.MakeString(EncodeDataUri("application/octet-stream", text));
    } else {
        json.EraseMember("uri");
    }
}

void Document::EraseBuffers(const std::vector<bool>& keep) {
    std::size_t kept = 0;
    std::optional<std::size_t> newBuffer;
    for (std::size_t i = 0; i < m_buffers.size(); ++i) {
        if (!keep[i]) continue;
        if (m_newBuffer == i) newBuffer = kept;
        if (kept != i) m_buffers[kept] = std::move(m_buffers[i]);
        ++kept;
    }
    m_buffers.resize(kept);
    m_newBuffer = newBuffer;
    if (Json* buffers = m_tree.root.Find("buffers")) {
        std::size_t i = 0;
        buffers->FilterItems([&](const Json&) { return keep[i++]; });
        if (kept == 0) m_tree.root.EraseMember("buffers");
    }
}

}  // namespace zr::gltf
