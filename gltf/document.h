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
#include "gltf/members.h"

namespace zr::gltf {

struct LoadOptions {
    bool allowOutside = false;         // files that URIs name may be outside the document's folder
    std::uint64_t maxMemory = 0;       // bytes, a stated Budget; 0: the default one
    const Decoder* decoder = nullptr;  // used while loading; null leaves compressed content unread
};

// A glTF 2.0 document: its JSON tree, edited in place, and its buffers. Content that the program does not
// know is written as it was read. Load checks everything that accessors and scene rely on: types, index
// ranges, byte ranges, the node tree, meshes, skins and animations.
class Document {
public:
    // Throws Error.
    static Document Load(const std::filesystem::path& file, const LoadOptions& options = {});
    // The same from memory; external buffers are looked for beside `file`, which need not exist.
    static Document FromBytes(Bytes content, const std::filesystem::path& file,
                              const LoadOptions& options = {});

    JsonTree& Tree() { return m_tree; }
    Json& Root() { return m_tree.root; }
    const Json& Root() const { return m_tree.root; }
    const std::filesystem::path& File() const { return m_file; }
    [[noreturn]] void Fail(ErrorKind kind, std::string_view place, std::string_view text) const;

    // Charges the document's budget with memory that the content requires beyond the document itself. Throws
    // Error (kLimit, at `place`) when too little is left. Not thread-safe.
    void Claim(std::uint64_t bytes, std::string_view place);
    const zr::Budget& Budget() const { return m_budget; }

    // Bytes of all files of the document as read: its own, buffers, images and the like.
    std::uint64_t SourceSize() const { return m_sourceSize; }

    // Faults that do not prevent use of the document, such as missing files.
    std::span<const Error> Warnings() const { return m_warnings; }
    void Warn(ErrorKind kind, std::string_view place, std::string_view text);

    // The file that a URI at `place` names, relative to the document's folder; it may be missing. Nothing for
    // data URIs and for URIs that name no local file (another scheme, malformed). Throws Error (kUri) when
    // the file lies outside that folder, links followed, or is not a regular file.
    std::optional<std::filesystem::path> FileOf(std::string_view uri, std::string_view place) const;
    std::filesystem::path Folder() const;

    // The elements of a kind; empty when the document has none. Valid until an element of the kind is added.
    std::span<Json> Elements(Kind kind);
    std::span<const Json> Elements(Kind kind) const;
    // Adds an element, creating its collection if needed; returns its index.
    std::size_t Append(Kind kind, Json element);
    // Adds the name to extensionsUsed (and extensionsRequired).
    void UseExtension(std::string_view name, bool required);

    // The bytes of a buffer or view; nothing when they are not stored (compressed views are stored only where
    // the document has an uncompressed fallback). Valid until the buffer is replaced or appended to.
    std::optional<Bytes> BufferBytes(std::size_t buffer) const;
    std::optional<Bytes> ViewBytes(std::size_t view) const;

    // Supplies the decoded content of a compressed view or accessor. It can be read like any other content
    // and is never written. A view must get byteLength bytes, an accessor its elements without gaps; content
    // of another size is rejected, and the result is false.
    bool SupplyView(std::size_t view, std::vector<std::byte> bytes);
    bool SupplyAccessor(std::size_t accessor, std::vector<std::byte> bytes);
    // Marks an accessor whose content cannot be decoded, although nothing about its view says so.
    void WithholdAccessor(std::size_t accessor) { m_suppliedAccessors[accessor].reset(); }
    // The content supplied for an accessor; nothing for other accessors.
    std::optional<Bytes> SuppliedBytes(std::size_t accessor) const;
    bool IsSuppliedView(std::size_t view) const { return m_suppliedViews.contains(view); }
    bool IsWithheld(std::size_t accessor) const;
    // To be called by whatever removes elements of a kind: renumbers supplied content and drops that of the
    // elements for which `keep` is false.
    void RenumberSupplied(Kind kind, const std::vector<bool>& keep);
    // Drops all supplied content, once the document itself contains it.
    void ForgetSupplied();

    // Appends bytes, 4-byte aligned, to a new buffer that Save will place; returns the index of the new view.
    // `target` and `stride`: 0 for none.
    std::size_t AppendView(Bytes bytes, unsigned target, unsigned stride);
    // Appends bytes, 4-byte aligned, to a view that AppendView made and returns their offset in it; nullopt,
    // with nothing done, once other bytes stand behind the view.
    std::optional<std::size_t> ExtendView(std::size_t view, Bytes bytes);
    // Moves blocks of a buffer down in place: bytes between them become zeros, bytes after the last one are
    // dropped, and byteLength is updated. Blocks are in order, move down or stay, and do not overlap.
    struct BlockMove {
        std::size_t from;
        std::size_t size;
        std::size_t to;
    };
    void PackBuffer(std::size_t buffer, std::span<const BlockMove> blocks);
    // Removes the buffers for which keep is false. The caller updates the references.
    void EraseBuffers(const std::vector<bool>& keep);

    // Writes the document: a binary container when the name ends in ".glb", else text, with the files it
    // needs beside it under unused names; the files appear when `files` is committed. Files that the document
    // came with stay reachable: left in place in the same folder, copied to another folder, embedded in a
    // container made from text. Buffers that an earlier save placed beside the target and that nothing uses
    // any more are deleted by the commit. The document must not be used afterwards. Returns the bytes of all
    // its files, as SourceSize counts them. Throws Error.
    std::uint64_t Save(const std::filesystem::path& target, FileTransaction& files);
    // The same, committed. beforeCommit is called when everything is written and no file has appeared yet; if
    // it throws, everything is left as it was.
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
    // Reads a file within the budget. `isNew`: it was not read before, so that its size may raise the budget.
    FileContent ReadInput(const std::filesystem::path& file, bool isNew);
    [[noreturn]] void FailOverBudget(std::string_view place) const;
    void LoadBuffers(std::span<std::byte> bin, bool hasBin);
    Buffer LoadBuffer(const Json& json, std::size_t index);
    std::size_t AppendToNewBuffer(Bytes bytes);

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
    Bytes m_rest;  // unknown chunks of a container
    bool m_isGlb = false;
    bool m_isIndented = true;  // the text
};

// Calls visit(Json&) for every object that names a range of a buffer ("buffer", "byteOffset", "byteLength"):
// views and the compressed forms of views.
template <typename Visit>
void ForEachBufferRange(Document& document, Visit visit) {
    for (Json& view : document.Elements(Kind::kBufferView)) {
        visit(view);
        for (const std::string_view name : kMeshopt)
            if (Json* compressed = FindExtension(view, name)) visit(*compressed);
    }
}

// Calls visit(element, place) for every element except buffers that may name a file by "uri": images, sounds,
// light profiles. `place` is its JSON pointer.
void ForEachResource(Document& document,
                     const std::function<void(Json& element, const std::string& place)>& visit);

// A member of a JSON object as an index, or `otherwise` when it is missing.
std::size_t IndexMember(const Json& object, std::string_view name, std::size_t otherwise = 0);

}  // namespace zr::gltf
