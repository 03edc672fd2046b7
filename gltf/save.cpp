// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>

#include "base/filesystem.h"
#include "base/text.h"
#include "gltf/document.h"
#include "gltf/glb.h"
#include "gltf/placed_files.h"
#include "gltf/references.h"
#include "gltf/uri.h"

namespace zr::gltf {
namespace {

bool SameFolder(const fs::path& a, const fs::path& b) {
    const auto folder = [](const fs::path& file) {
        return file.has_parent_path() ? file.parent_path() : fs::path(".");
    };
    std::error_code missing;
    return fs::equivalent(folder(a), folder(b), missing);
}

// The media type of an image from its first bytes; empty for types that a view must not hold.
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
    Saver(Document& document, const fs::path& target, FileTransaction& files)
        : m_document(document),
          m_tree(document.m_tree),
          m_target(target),
          m_toGlb(HasEnding(PathToUtf8(target), ".glb")),
          m_sameFolder(SameFolder(target, document.m_file)),
          m_files(files),
          m_names(target, files) {}

    std::uint64_t Run() {
        const std::vector<fs::path> oldBuffers = BuffersOfTarget();
        NoteKeptFiles();
        ForEachResource(m_document,
                        [&](Json& element, const std::string& place) { Resource(element, place); });
        if (m_toGlb) MergeBuffers();
        for (std::size_t i = 0; i < m_document.m_buffers.size(); ++i) PlaceBuffer(i);
        m_names.Supersede(oldBuffers);
        OutputFile& file = m_files.Create(m_target);
        const auto writeJson = [&] {
            WriteJson(m_document.Root(), !m_toGlb && m_document.m_isIndented,
                      [&file](std::string_view piece) { file.Write(piece); });
        };
        if (m_toGlb) {
            WriteGlb(file, PathToUtf8(m_target), writeJson, m_bin,
                     m_document.m_isGlb ? m_document.m_rest : Bytes());
        } else {
            writeJson();
            file.Write("\n");
        }
        std::uint64_t size = file.Size() + m_names.PlacedSize();
        std::error_code none;
        for (const fs::path& name : m_stay) size += fs::file_size(m_target.parent_path() / name, none);
        return size;
    }

private:
    using Origin = Document::Origin;
    using Buffer = Document::Buffer;

    // The buffer files of the scene that is about to be replaced, if it is text.
    std::vector<fs::path> BuffersOfTarget() const {
        std::error_code none;
        // A document from memory need not match its file.
        const std::vector<fs::path>& known = m_document.m_bufferFiles;
        if (!known.empty() && fs::equivalent(m_target, m_document.m_file, none)) return known;
        if (m_toGlb || !fs::is_regular_file(m_target, none)) return {};
        std::vector<fs::path> files;
        try {
            FileContent content = ReadFile(m_target, kMaxOldScene);
            JsonTree tree;
            tree.Parse(reinterpret_cast<char*>(content.data.get()), content.size, "");
            const Json* buffers = tree.root.Find("buffers");
            if (buffers == nullptr) return {};
            for (const Json& buffer : buffers->Items()) {
                const Json* uri = buffer.Find("uri");
                if (uri == nullptr || IsDataUri(uri->String())) continue;
                if (const auto path = PathOfUri(uri->String())) files.push_back(*path);
            }
        } catch (const zr::Error&) {
            // Not a scene, so it has no buffer files.
        }
        return files;
    }

    void NoteKeptFiles() {
        for (const Buffer& buffer : m_document.m_buffers)
            if (buffer.origin == Origin::kFile) m_names.Keep(buffer.path);
        ForEachResource(m_document, [&](Json& element, const std::string& place) {
            const Json* uri = element.Find("uri");
            if (uri == nullptr || !uri->IsString()) return;
            if (const auto path = m_document.FileOf(uri->String(), place)) m_names.Keep(*path);
        });
    }

    void Resource(Json& element, const std::string& place) {
        const bool embed = m_toGlb && !m_document.m_isGlb && place.starts_with("/images/");
        Json* uri = element.Find("uri");
        if (uri == nullptr || !uri->IsString()) return;
        if (IsDataUri(uri->String())) {
            if (!embed) return;
            const auto content = DecodeDataUri(uri->String());
            if (content) Embed(element, *content);
            return;
        }
        const auto path = m_document.FileOf(uri->String(), place);
        if (!path) return;
        const fs::path source = m_document.Folder() / *path;
        std::error_code missing;
        if (!fs::exists(source, missing)) return;
        const bool stays = m_sameFolder && !m_names.IsScene(*path);
        if (stays && !embed) {
            m_stay.insert(*path);
            return;
        }
        if (!embed) return Copy(*uri, *path, std::nullopt);
        const FileContent content = ReadFile(source);
        if (Embed(element, content.View())) return;
        if (stays)
            m_stay.insert(*path);
        else
            Copy(*uri, *path, content.View());
    }

    // Copies a file beside the target; `content`: its bytes, if already read.
    void Copy(Json& uri, const fs::path& path, std::optional<Bytes> content) {
        auto known = m_copied.find(path);
        if (known == m_copied.end()) {
            FileContent read;
            if (!content) content = (read = ReadFile(m_document.Folder() / path)).View();
            known = m_copied.emplace(path, m_names.Place(path, *content)).first;
        }
        if (known->second != path) uri = m_tree.MakeString(EncodePath(known->second));
    }

    bool Embed(Json& image, Bytes content) {
        const std::string_view type = ImageType(content);
        if (type.empty()) return false;
        image.EraseMember("uri");
        m_tree.Member(image, "mimeType") = m_tree.MakeString(type);
        m_tree.Member(image, "bufferView") = m_tree.MakeIndex(m_document.AppendView(content, 0, 0));
        return true;
    }

    // Moves what a container can hold into its one chunk, which is the first buffer.
    void MergeBuffers() {
        auto& buffers = m_document.m_buffers;
        const auto isOwn = [](const Buffer& b) {
            return b.origin == Origin::kContainer || b.origin == Origin::kNew;
        };
        // A container keeps its external buffers, unless one is where the chunk belongs.
        const bool all = !m_document.m_isGlb || (!buffers.empty() && buffers[0].origin != Origin::kContainer);
        std::vector<std::size_t> merged;
        for (std::size_t i = 0; i < buffers.size(); ++i)
            if (isOwn(buffers[i]) || (all && buffers[i].origin != Origin::kNotStored)) merged.push_back(i);
        if (merged.empty() && all && !buffers.empty() &&
            !OpaqueReferences(m_document).kinds.Has(Kind::kBuffer))
            merged.push_back(AddPlaceholder());
        const bool noneOwn =
            std::none_of(merged.begin(), merged.end(), [&](std::size_t i) { return isOwn(buffers[i]); });
        if (merged.empty() || (m_document.m_isGlb && noneOwn)) return;
        if (merged != std::vector<std::size_t>{0} && OpaqueReferences(m_document).kinds.Has(Kind::kBuffer)) {
            // An unknown extension may refer to buffers by index: only the first can become the chunk.
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
        // The pieces of the chunk point into the buffers, whose storage must outlive the renumbering.
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

    // If the first buffer of a container has no URI, it is the chunk: a buffer that a text document does not
    // store must not become the first.
    std::size_t AddPlaceholder() {
        const std::size_t index = m_document.Append(Kind::kBuffer, JsonTree::MakeObject());
        m_tree.Member(m_document.Elements(Kind::kBuffer)[index], "byteLength") =
            m_tree.MakeIndex(kZeros.size());
        Buffer& buffer = m_document.m_buffers[index];
        buffer.origin = Origin::kNew;
        buffer.owned.resize(kZeros.size());
        buffer.bytes = buffer.owned;
        return index;
    }

    void PlaceBuffer(std::size_t index) {
        const Buffer& buffer = m_document.m_buffers[index];
        Json& json = m_document.Elements(Kind::kBuffer)[index];
        if (buffer.origin == Origin::kFile && (!m_sameFolder || m_names.IsScene(buffer.path)))
            Copy(*json.Find("uri"), buffer.path, buffer.bytes);
        else if (buffer.origin == Origin::kFile)
            m_stay.insert(buffer.path);
        if (buffer.origin != Origin::kContainer && buffer.origin != Origin::kNew) return;
        if (IsSelfContained()) {
            const std::string_view text(reinterpret_cast<const char*>(buffer.bytes.data()),
                                        buffer.bytes.size());
            m_tree.Member(json, "uri") = m_tree.MakeString(EncodeDataUri("application/octet-stream", text));
            return;
        }
        const fs::path name = m_names.PlaceNew(".bin", buffer.bytes);
        m_tree.Member(json, "uri") = m_tree.MakeString(EncodePath(name));
    }

    // A text document that was read with all buffers embedded is written the same way.
    bool IsSelfContained() const {
        bool found = false;
        for (const Buffer& buffer : m_document.m_buffers) {
            if (buffer.origin == Origin::kFile) return false;
            found = found || buffer.origin == Origin::kText;
        }
        return found && !m_document.m_isGlb;
    }

    static constexpr std::array<std::byte, 4> kZeros{};
    static constexpr std::uint64_t kMaxOldScene = std::uint64_t{256} << 20;  // bytes

    Document& m_document;
    JsonTree& m_tree;
    fs::path m_target;
    bool m_toGlb;
    bool m_sameFolder;
    std::map<fs::path, fs::path> m_copied;
    std::set<fs::path> m_stay;
    std::vector<Bytes> m_bin;
    std::vector<Buffer> m_keptAlive;
    FileTransaction& m_files;
    PlacedFiles m_names;
};

std::uint64_t Document::Save(const fs::path& target, FileTransaction& files) {
    const std::string name = PathToUtf8(target);
    if (!HasEnding(name, ".glb") && !HasEnding(name, ".gltf"))
        throw Error(ErrorKind::kFile, name, "", "a scene's name must end in .gltf or .glb");
    return Saver(*this, target, files).Run();
}

std::uint64_t Document::Save(const fs::path& target, const std::function<void()>& beforeCommit) {
    FileTransaction files;
    const std::uint64_t size = Save(target, files);
    beforeCommit();
    files.Commit();
    return size;
}

}  // namespace zr::gltf
