// SPDX-License-Identifier: MIT
#include <algorithm>
#include <set>

#include "base/filesystem.h"
#include "base/text.h"
#include "gltf/check.h"
#include "gltf/document.h"
#include "gltf/members.h"
#include "gltf/uri.h"

namespace zr::gltf {
namespace {

struct List {
    std::string_view extension;  // of the document
    std::string_view member;
};
constexpr List kLists[] = {
    {"KHR_audio_emitter", "audio"}, {"MSFT_audio_emitter", "clips"}, {"EXT_lights_ies", "lights"}};

std::string Quoted(std::string_view uri) {
    constexpr std::size_t kShown = 80;
    return Join("\"", uri.substr(0, kShown), uri.size() > kShown ? "..." : "", "\"");
}

bool IsInside(const fs::path& file, const fs::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

std::uint64_t SizeOf(const Document& document, const Json& image) {
    if (image.Find("bufferView") != nullptr)
        return IndexMember(document.Elements(Kind::kBufferView)[IndexMember(image, "bufferView")],
                           "byteLength");
    const Json* uri = image.Find("uri");
    if (uri == nullptr || !uri->IsString() || IsDataUri(uri->String())) return 0;
    const auto path = PathOfUri(uri->String());
    std::error_code missing;
    const std::uintmax_t size = path ? fs::file_size(document.Folder() / *path, missing) : 0;
    return missing ? 0 : size;
}

}  // namespace

void ForEachResource(Document& document,
                     const std::function<void(Json& element, const std::string& place)>& visit) {
    const auto images = document.Elements(Kind::kImage);
    for (std::size_t i = 0; i < images.size(); ++i) visit(images[i], Join("/images/", i));
    for (const List& list : kLists) {
        Json* holder = FindExtension(document.Root(), list.extension);
        Json* items = holder != nullptr ? holder->Find(list.member) : nullptr;
        if (items == nullptr) continue;
        for (std::size_t i = 0; i < items->Items().size(); ++i)
            visit(items->Items()[i], Join("/extensions/", list.extension, "/", list.member, "/", i));
    }
}

fs::path Document::Folder() const {
    return m_file.has_parent_path() ? m_file.parent_path() : fs::path(".");
}

std::optional<fs::path> Document::FileOf(std::string_view uri, std::string_view place) const {
    if (IsDataUri(uri)) return std::nullopt;
    auto path = PathOfUri(uri);
    if (!path) return std::nullopt;
    const auto refuse = [&](std::string_view why) { Fail(ErrorKind::kUri, place, Join(Quoted(uri), why)); };
    constexpr std::string_view kOutside = " leads out of the scene's folder";
    if (!m_options.allowOutside && (path->has_root_path() || *path->begin() == "..")) refuse(kOutside);
    const fs::path file = Folder() / *path;
    std::error_code failure;
    const fs::file_status status = fs::status(file, failure);
    if (!fs::exists(status)) return path;
    if (!m_options.allowOutside) {
        const fs::path folder = fs::canonical(Folder(), failure);
        if (failure || !IsInside(fs::canonical(file, failure), folder)) refuse(kOutside);
    }
    // A pipe could block the reader, a device may be endless.
    if (!fs::is_regular_file(status)) refuse(" is not a regular file");
    return path;
}

void CheckResources(Document& document) {
    std::set<fs::path> counted;
    ForEachResource(document, [&](Json& element, const std::string& place) {
        const Json* uri = element.Find("uri");
        if (uri == nullptr || !uri->IsString() || IsDataUri(uri->String())) return;
        const std::string at = place + "/uri";
        const auto path = document.FileOf(uri->String(), at);
        std::error_code failure;
        if (!path)
            document.Warn(ErrorKind::kUri, at,
                          Join(Quoted(uri->String()), " is not a local file and is left as it is"));
        else if (const auto size = fs::file_size(document.Folder() / *path, failure); !failure)
            document.m_sourceSize += counted.insert(*path).second ? size : 0;
        else
            document.Warn(ErrorKind::kFile, at, Join(Quoted(uri->String()), " is missing"));
    });
}

void CheckImages(const Document& document) {
    std::uint64_t total = 0;
    const auto images = document.Elements(Kind::kImage);
    for (std::size_t i = 0; i < images.size(); ++i) {
        total += SizeOf(document, images[i]);
        if (total > document.SourceSize() + document.Budget().Total())
            document.Fail(ErrorKind::kLimit, Join("/images/", i),
                          "more image data than a file of this size may claim");
    }
}

}  // namespace zr::gltf
