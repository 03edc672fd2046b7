// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/budget.h"
#include "base/file_transaction.h"
#include "gltf/decoder.h"
#include "gltf/error.h"
#include "gltf/json.h"
#include "gltf/kinds.h"

namespace zr::gltf {

struct LoadOptions {
    bool allowOutside = false;         // files that URIs name may stand outside the document's folder
    std::uint64_t maxMemory = 0;       // bytes, a stated Budget; 0: the default one
    const Decoder* decoder = nullptr;  // used while loading; null: compressed content stays unread
};

// A glTF 2.0 document: its JSON tree, edited in place, and its buffers. What the program does not know goes
// out as it came in. After Load all that the accessors and the scene rely on has been checked: types, index
// ranges, byte ranges, the node tree, meshes, skins and animations.
class Document {
public:
    // Throws Error.
    static Document Load(const std::filesystem::path& file, const LoadOptions& options = {});
    // The same from memory; buffers of their own are looked for beside `file`, which need not exist.
    static Document FromBytes(Bytes content, const std::filesystem::path& file,
                              const LoadOptions& options = {});

    JsonTree& Tree() { return m_tree; }
    Json& Root() { return m_tree.root; }
    const Json& Root() const { return m_tree.root; }
    const std::filesystem::path& File() const { return m_file; }
    [[noreturn]] void Fail(ErrorKind kind, std::string_view place, std::string_view text) const;

    // Takes memory that the document's content asks for, beyond what it takes itself, from its budget. Throws
    // Error (kLimit, at `place`) when there is not as much left. One thread at a time.
    void Claim(std::uint64_t bytes, std::string_view place);
    const zr::Budget& Budget() const { return m_budget; }

    // Bytes of all files the document came in: its own, its buffers, images and the like.
    std::uint64_t SourceSize() const { return m_sourceSize; }

    // Faults that do not keep the document from being used: files that it names and that are not there.
    std::span<const Error> Warnings() const { return m_warnings; }
    void Warn(ErrorKind kind, std::string_view place, std::string_view text);

    // The file that a URI at `place` names, relative to the document's folder; it may be missing. Nothing for
    // data URIs and for what names no file here (another scheme, malformed). Throws Error (kUri) unless it
    // stands in that folder, also after following links, and for anything but a regular file.
    std::optional<std::filesystem::path> FileOf(std::string_view uri, std::string_view place) const;
    std::filesystem::path Folder() const;

    // The elements of a kind; empty when the document has none. Held until one of the kind is added.
    std::span<Json> Elements(Kind kind);
    std::span<const Json> Elements(Kind kind) const;
    // Adds an element, with its collection where that is missing; its index.
    std::size_t Append(Kind kind, Json element);
    // Adds the name to extensionsUsed (and extensionsRequired).
    void UseExtension(std::string_view name, bool required);

    // The bytes of a buffer or view; nothing when they are not stored (what compressed views stand for is
    // stored only where the document brings an uncompressed fallback). Held until the buffer is replaced or
    // appended to.
    std::optional<Bytes> BufferBytes(std::size_t buffer) const;
    std::optional<Bytes> ViewBytes(std::size_t view) const;

    // Content that the document holds in compressed form, as the decoder found it. It can be read like any
    // other and is never written. A view's bytes are as many as its byteLength, an accessor's elements stand
    // one after the other without gaps; of another size, they are not taken and the result is false.
    bool SupplyView(std::size_t view, std::vector<std::byte> bytes);
    bool SupplyAccessor(std::size_t accessor, std::vector<std::byte> bytes);
    // The accessor's content could not be made known, though no view says so.
    void WithholdAccessor(std::size_t accessor) { m_suppliedAccessors[accessor].reset(); }
    // Of an accessor that was supplied: its content. Nothing for others.
    std::optional<Bytes> SuppliedBytes(std::size_t accessor) const;
    bool IsSuppliedView(std::size_t view) const { return m_suppliedViews.contains(view); }
    bool IsWithheld(std::size_t accessor) const;
    // Elements of a kind went: those for which keep is false. Called by who removes them.
    void RenumberSupplied(Kind kind, const std::vector<bool>& keep);
    // Supplied content is not known any more, since the document itself has it now.
    void ForgetSupplied();

    // Stores bytes that the document did not have, 4-byte aligned, in a buffer that Save places: the view's
    // index. `target` 0: none stated. `stride` 0: none stated.
    std::size_t AppendView(Bytes bytes, unsigned target, unsigned stride);
    // Moves blocks of a buffer's bytes down in place: what lies between them becomes zeros, what lies behind
    // the last one goes, and byteLength follows. In order; a block moves down or stays, none meets another.
    struct BlockMove {
        std::size_t from;
        std::size_t size;
        std::size_t to;
    };
    void PackBuffer(std::size_t buffer, std::span<const BlockMove> blocks);
    // Takes out the buffers for which keep is false. The caller mends the references.
    void EraseBuffers(const std::vector<bool>& keep);

    // Writes the document: a binary container when the name ends in ".glb", else text, with the files it
    // needs beside it under names that nothing has; the files appear when `files` is committed. Files of its
    // own that the document came with are found from there too: kept in the same folder, copied into another
    // one, taken into a container made from text. Buffers that an earlier save placed beside the target and
    // that nothing uses any more go with the commit. The document is spent afterwards. Returns the bytes of
    // all its files, as SourceSize counts them. Throws Error.
    std::uint64_t Save(const std::filesystem::path& target, FileTransaction& files);
    // The same, committed. beforeCommit is called when all is written and no file has appeared yet; what it
    // throws leaves everything as it was.
    std::uint64_t Save(
        const std::filesystem::path& target, const std::function<void()>& beforeCommit = [] {});

private:
    enum class Origin {
        kNotStored,
        kContainer,  // the BIN chunk
        kFile,       // a file of its own
        kText,       // a data URI
        kNew,        // made or changed since loading
    };
    struct Buffer {
        Origin origin = Origin::kNotStored;
        std::filesystem::path path;  // of kFile, relative to the document
        FileContent file;
        std::vector<std::byte> owned;
        std::span<std::byte> bytes;  // in one of these, or in the container
    };
    friend class Saver;
    friend void CheckResources(Document& document);

    Document(const std::filesystem::path& file, const LoadOptions& options);

    void Read(FileContent content);
    // A file, as far as the budget goes.
    FileContent ReadInput(const std::filesystem::path& file);
    [[noreturn]] void FailOverBudget(std::string_view place) const;
    void LoadBuffers(std::span<std::byte> bin, bool hasBin);
    Buffer LoadBuffer(const Json& json, std::size_t index);

    std::filesystem::path m_file;
    LoadOptions m_options;
    zr::Budget m_budget;
    std::uint64_t m_sourceSize = 0;
    std::vector<Error> m_warnings;
    std::vector<std::filesystem::path> m_bufferFiles;  // that the document came with, relative to it
    FileContent m_content;
    JsonTree m_tree;
    std::array<std::array<JsonFind, KindInfo::kMaxDepth>, kKinds> m_finds;  // of the collections
    std::vector<Buffer> m_buffers;
    std::optional<std::size_t> m_newBuffer;
    std::map<std::size_t, std::vector<std::byte>> m_suppliedViews;
    std::map<std::size_t, std::optional<std::vector<std::byte>>> m_suppliedAccessors;
    Bytes m_rest;  // chunks of a container that are not known
    bool m_isGlb = false;
    bool m_isIndented = true;  // the text
};

// Calls visit(Json&) for every object that names a range of a buffer ("buffer", "byteOffset", "byteLength"):
// views and the compressed forms of views.
template <typename Visit>
void ForEachBufferRange(Document& document, Visit visit) {
    for (Json& view : document.Elements(Kind::kBufferView)) {
        visit(view);
        Json* extensions = view.Find("extensions");
        if (extensions == nullptr) continue;
        for (std::string_view name : {"EXT_meshopt_compression", "KHR_meshopt_compression"})
            if (Json* compressed = extensions->Find(name)) visit(*compressed);
    }
}

// Calls visit(element, place) for every element that may name a file of its own by "uri", buffers apart:
// images, sounds, light profiles. `place` is its JSON pointer.
void ForEachResource(Document& document,
                     const std::function<void(Json& element, const std::string& place)>& visit);

// A member of a JSON object as an index, or `otherwise` when it is missing.
std::size_t IndexMember(const Json& object, std::string_view name, std::size_t otherwise = 0);

}  // namespace zr::gltf
