// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "base/text.h"
#include "gltf/document.h"
#include "gltf/glb.h"
#include "gltf/references.h"
#include "gltf/uri.h"

namespace zr::gltf {
namespace {

namespace fs = std::filesystem;

bool SameFolder(const fs::path& a, const fs::path& b) {
    const auto folder = [](const fs::path& file) {
        return file.has_parent_path() ? file.parent_path() : fs::path(".");
    };
    std::error_code missing;
    return fs::equivalent(folder(a), folder(b), missing);
}

bool HoldsSame(const fs::path& file, Bytes content) {
    std::error_code missing;
    if (fs::file_size(file, missing) != content.size() || missing) return false;
    const FileContent there = ReadFile(file);
    return std::equal(content.begin(), content.end(), there.View().begin(), there.View().end());
}

// The media type of an image by its first bytes; empty when they are none that a view may hold.
std::string_view ImageType(Bytes image) {
    struct Magic {
        std::string_view bytes;
        std::size_t offset;
        std::string_view type;
    };
    static constexpr Magic kMagics[] = {{"\x89PNG", 0, "image/png"},
                                        {"\xFF\xD8\xFF", 0, "image/jpeg"},
                                        {"WEBP", 8, "image/webp"},
                                        {"\xABKTX 20", 0, "image/ktx2"}};
    const std::string_view text(reinterpret_cast<const char*>(image.data()), image.size());
    for (const Magic& magic : kMagics)
        if (text.size() > magic.offset && text.substr(magic.offset).starts_with(magic.bytes))
            return magic.type;
    return {};
}

std::size_t Aligned(std::size_t size) {
    return (size + 3) & ~std::size_t{3};
}

}  // namespace

class Saver {
public:
    Saver(Document& document, const fs::path& target)
        : m_document(document),
          m_tree(document.m_tree),
          m_target(target),
          m_toGlb(target.extension() == ".glb"),
          m_sameFolder(SameFolder(target, document.m_file)) {}

    void Run(const std::function<void()>& beforeCommit) {
        NoteKeptFiles();
        Resources();
        if (m_toGlb) MergeBuffers();
        for (std::size_t i = 0; i < m_document.m_buffers.size(); ++i) PlaceBuffer(i);
        std::string json = WriteJson(m_document.Root(), !m_toGlb);
        if (m_toGlb) {
            std::vector<std::byte> head;
            m_files.Add(m_target, GlbPieces(json, m_bin, m_document.m_isGlb ? m_document.m_rest : Bytes(),
                                            PathToUtf8(m_target), head));
        } else {
            json += '\n';
            m_files.Add(m_target, BytesOf(json));
        }
        beforeCommit();
        m_files.Commit();
    }

private:
    using Origin = Document::Origin;
    using Buffer = Document::Buffer;

    // Names beside the target that new files must not take.
    void NoteKeptFiles() {
        m_taken.insert(m_target.filename());
        for (const Buffer& buffer : m_document.m_buffers)
            if (buffer.origin == Origin::kFile) m_taken.insert(buffer.path);
        for (const Json& image : m_document.Elements(Kind::kImage))
            if (const Json* uri = image.Find("uri"))
                if (const auto path = PathInFolder(uri->String())) m_taken.insert(*path);
    }

    fs::path NewName(const std::string& extension) {
        const std::string stem = PathToUtf8(m_target.stem());
        for (unsigned i = 0;; ++i) {
            fs::path name = PathFromUtf8(i == 0 ? stem + extension : Join(stem, "-", i, extension));
            if (m_taken.insert(name).second) return name;
        }
    }

    // Puts content beside the target, under the name it had where that is free: the name.
    fs::path Place(const fs::path& wished, Bytes content) {
        const fs::path at = m_target.parent_path() / wished;
        std::error_code missing;
        const bool inFolder = *wished.begin() != "..";
        if (inFolder && fs::exists(at, missing) && HoldsSame(at, content)) return wished;
        const bool free = inFolder && !fs::exists(at, missing);
        const fs::path name = free ? wished : NewName(PathToUtf8(wished.extension()));
        m_files.Add(m_target.parent_path() / name, content);
        return name;
    }

    // Images and other files that elements name by "uri".
    void Resources() {
        for (Json& image : m_document.Elements(Kind::kImage)) Resource(image, m_toGlb && !m_document.m_isGlb);
        Json* extensions = m_document.Root().Find("extensions");
        if (extensions == nullptr) return;
        constexpr std::array<std::array<std::string_view, 2>, 3> kOthers = {
            {{"KHR_audio_emitter", "audio"}, {"MSFT_audio_emitter", "clips"}, {"EXT_lights_ies", "lights"}}};
        for (const auto& [extension, list] : kOthers) {
            Json* holder = extensions->Find(extension);
            Json* items = holder != nullptr ? holder->Find(list) : nullptr;
            if (items == nullptr) continue;
            for (Json& item : items->Items()) Resource(item, false);
        }
    }

    void Resource(Json& element, bool embed) {
        Json* uri = element.Find("uri");
        if (uri == nullptr || !uri->IsString()) return;
        if (IsDataUri(uri->String())) {
            if (!embed) return;
            const auto content = DecodeDataUri(uri->String());
            if (content) Embed(element, *content);
            return;
        }
        const auto path = PathOfUri(uri->String());
        if (!path || (m_sameFolder && !embed)) return;
        const fs::path source = m_document.m_file.parent_path() / *path;
        std::error_code missing;
        // What is not there now was not there for the source either.
        if (!fs::is_regular_file(source, missing)) return;
        const auto known = m_copied.find(*path);
        if (known != m_copied.end()) {
            if (known->second != *path) *uri = m_tree.MakeString(EncodePath(known->second));
            return;
        }
        const FileContent content = ReadFile(source);
        if (embed && Embed(element, content.View())) return;
        if (m_sameFolder) return;
        const fs::path name = Place(*path, content.View());
        m_copied.emplace(*path, name);
        if (name != *path) *uri = m_tree.MakeString(EncodePath(name));
    }

    bool Embed(Json& image, Bytes content) {
        const std::string_view type = ImageType(content);
        if (type.empty()) return false;
        image.EraseMember("uri");
        m_tree.Member(image, "mimeType") = m_tree.MakeString(type);
        m_tree.Member(image, "bufferView") = m_tree.MakeIndex(m_document.AppendView(content, 0, 0));
        return true;
    }

    // Brings what a container can hold into its one chunk, which is the first buffer.
    void MergeBuffers() {
        auto& buffers = m_document.m_buffers;
        const auto isOwn = [](const Buffer& b) {
            return b.origin == Origin::kContainer || b.origin == Origin::kNew;
        };
        // A container keeps the files of its own that it came with, unless one stands where the chunk
        // belongs.
        const bool all = !m_document.m_isGlb || (!buffers.empty() && buffers[0].origin != Origin::kContainer);
        std::vector<std::size_t> merged;
        for (std::size_t i = 0; i < buffers.size(); ++i)
            if (isOwn(buffers[i]) || (all && buffers[i].origin != Origin::kNotStored)) merged.push_back(i);
        const bool noneOwn =
            std::none_of(merged.begin(), merged.end(), [&](std::size_t i) { return isOwn(buffers[i]); });
        if (merged.empty() || (m_document.m_isGlb && noneOwn)) return;
        if (merged != std::vector<std::size_t>{0} && OpaqueReferences(m_document).kinds.Has(Kind::kBuffer)) {
            // An unknown extension may count the buffers: only the first can become the chunk.
            if (merged[0] != 0) return;
            merged.resize(1);
        }
        std::vector<std::size_t> offset(buffers.size(), 0), renumbered(buffers.size(), 0);
        std::vector<bool> keep(buffers.size(), true);
        std::size_t size = 0;
        for (std::size_t i : merged) {
            const std::size_t padding = Aligned(size) - size;
            if (padding != 0) m_bin.push_back(Bytes(kZeros).first(padding));
            offset[i] = size += padding;
            size += buffers[i].bytes.size();
            m_bin.push_back(buffers[i].bytes);
            keep[i] = i == merged[0];
        }
        // The chunk moves to the front.
        std::size_t next = 1;
        for (std::size_t i = 0; i < buffers.size(); ++i) {
            const bool isMerged = std::find(merged.begin(), merged.end(), i) != merged.end();
            if (!isMerged) renumbered[i] = next++;
        }
        ForEachBufferRange(m_document, [&](Json& range) {
            const std::size_t buffer = IndexMember(range, "buffer");
            if (renumbered[buffer] != buffer) *range.Find("buffer") = m_tree.MakeIndex(renumbered[buffer]);
            if (offset[buffer] != 0)
                m_tree.Member(range, "byteOffset") =
                    m_tree.MakeIndex(IndexMember(range, "byteOffset") + offset[buffer]);
        });
        const auto jsons = m_document.Elements(Kind::kBuffer);
        Json& json = jsons[merged[0]];
        json.EraseMember("uri");
        if (merged.size() > 1) m_tree.Member(json, "byteLength") = m_tree.MakeIndex(size);
        // The pieces of the chunk are views into the buffers, whose storage must outlive the renumbering.
        m_keptAlive.reserve(merged.size());
        for (std::size_t i : merged) m_keptAlive.push_back(std::move(buffers[i]));
        buffers[merged[0]] = {};
        std::rotate(jsons.begin(), jsons.begin() + static_cast<std::ptrdiff_t>(merged[0]),
                    jsons.begin() + static_cast<std::ptrdiff_t>(merged[0]) + 1);
        std::rotate(buffers.begin(), buffers.begin() + static_cast<std::ptrdiff_t>(merged[0]),
                    buffers.begin() + static_cast<std::ptrdiff_t>(merged[0]) + 1);
        std::rotate(keep.begin(), keep.begin() + static_cast<std::ptrdiff_t>(merged[0]),
                    keep.begin() + static_cast<std::ptrdiff_t>(merged[0]) + 1);
        m_document.EraseBuffers(keep);
    }

    void PlaceBuffer(std::size_t index) {
        const Buffer& buffer = m_document.m_buffers[index];
        Json& json = m_document.Elements(Kind::kBuffer)[index];
        if (buffer.origin == Origin::kFile && !m_sameFolder) {
            const fs::path name = Place(buffer.path, buffer.bytes);
            if (name != buffer.path) *json.Find("uri") = m_tree.MakeString(EncodePath(name));
        }
        if (buffer.origin != Origin::kContainer && buffer.origin != Origin::kNew) return;
        if (IsSelfContained()) {
            const std::string_view text(reinterpret_cast<const char*>(buffer.bytes.data()),
                                        buffer.bytes.size());
            m_tree.Member(json, "uri") = m_tree.MakeString(EncodeDataUri("application/octet-stream", text));
            return;
        }
        const fs::path name = NewName(".bin");
        m_files.Add(m_target.parent_path() / name, buffer.bytes);
        m_tree.Member(json, "uri") = m_tree.MakeString(EncodePath(name));
    }

    // A text document that came with all its buffers in it goes out so.
    bool IsSelfContained() const {
        bool found = false;
        for (const Buffer& buffer : m_document.m_buffers) {
            if (buffer.origin == Origin::kFile) return false;
            found = found || buffer.origin == Origin::kText;
        }
        return found && !m_document.m_isGlb;
    }

    static constexpr std::array<std::byte, 4> kZeros{};

    Document& m_document;
    JsonTree& m_tree;
    fs::path m_target;
    bool m_toGlb;
    bool m_sameFolder;
    std::set<fs::path> m_taken;
    std::map<fs::path, fs::path> m_copied;
    std::vector<Bytes> m_bin;
    std::vector<Buffer> m_keptAlive;
    FileTransaction m_files;
};

void Document::Save(const std::filesystem::path& target, const std::function<void()>& beforeCommit) {
    if (target.extension() != ".glb" && target.extension() != ".gltf")
        throw Error(ErrorKind::kFile, PathToUtf8(target), "", "a scene's name ends in .gltf or .glb");
    Saver(*this, target).Run(beforeCommit);
}

}  // namespace zr::gltf
