// SPDX-License-Identifier: MIT
#include "gltf/placed_files.h"

#include <algorithm>

#include "base/filesystem.h"
#include "base/text.h"
#include "gltf/uri.h"

namespace zr::gltf {
namespace {

constexpr std::size_t kLongestName = 255;                        // bytes, on every file system of today
constexpr std::uint64_t kMaxSiblings = std::uint64_t{64} << 20;  // bytes of other scenes to search

bool IsThere(const fs::path& file) {
    std::error_code none;
    return fs::exists(fs::symlink_status(file, none));
}

bool HoldsSame(const fs::path& file, Bytes content) {
    std::error_code none;
    if (!fs::is_regular_file(file, none) || fs::file_size(file, none) != content.size()) return false;
    const FileContent there = ReadFile(file);
    return std::equal(content.begin(), content.end(), there.View().begin(), there.View().end());
}

// A text cut to at most `size` bytes, at a character boundary.
std::string_view Shortened(std::string_view text, std::size_t size) {
    if (text.size() <= size) return text;
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) --size;
    return text.substr(0, size);
}

}  // namespace

PlacedFiles::PlacedFiles(const fs::path& scene, FileTransaction& files)
    : m_scene(scene),
      m_folder(scene.has_parent_path() ? scene.parent_path() : fs::path(".")),
      m_files(files) {}

bool PlacedFiles::IsScene(const fs::path& name) const {
    std::error_code none;
    return name == m_scene.filename() || fs::equivalent(At(name), m_scene, none);
}

bool PlacedFiles::IsFree(const fs::path& name) const {
    return !IsScene(name) && !IsThere(At(name)) && !m_files.Has(At(name));
}

fs::path PlacedFiles::Place(const fs::path& wished, Bytes content) {
    const bool isInFolder = wished.is_relative() && *wished.begin() != "..";
    if (isInFolder && IsFree(wished)) {
        m_files.AddNew(At(wished), content);
        m_placed.emplace(wished, content.size());
        return wished;
    }
    if (isInFolder && !IsScene(wished) && !m_files.Has(At(wished)) && HoldsSame(At(wished), content)) {
        m_placed.emplace(wished, content.size());
        return wished;
    }
    return PlaceNew(PathToUtf8(wished.extension()), content);
}

fs::path PlacedFiles::PlaceNew(std::string_view extension, Bytes content) {
    unsigned& next = m_next[std::string(extension)];
    for (;;) {
        fs::path name = NumberedName(next++, extension);
        if (m_kept.contains(name) || m_placed.contains(name)) continue;
        if (IsFree(name))
            m_files.AddNew(At(name), content);
        else if (IsScene(name) || m_files.Has(At(name)) || !HoldsSame(At(name), content))
            continue;
        m_placed.emplace(name, content.size());
        return name;
    }
}

std::uint64_t PlacedFiles::PlacedSize() const {
    std::uint64_t size = 0;
    for (const auto& [name, bytes] : m_placed) size += bytes;
    return size;
}

fs::path PlacedFiles::NumberedName(unsigned number, std::string_view extension) const {
    std::string end(Shortened(extension, kLongestName / 2));
    if (number != 0) end = Join("-", number, end);
    return PathFromUtf8(Join(Shortened(PathToUtf8(m_scene.stem()), kLongestName - end.size()), end));
}

bool PlacedFiles::IsNumberedName(const fs::path& name) const {
    const std::string text = PathToUtf8(name.stem());
    const std::size_t dash = text.rfind('-');
    const std::string_view digits = dash == std::string::npos ? "" : std::string_view(text).substr(dash + 1);
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    unsigned number = 0;
    if (!digits.empty() && digits.size() < 9 && std::all_of(digits.begin(), digits.end(), isDigit))
        number = static_cast<unsigned>(std::stoul(std::string(digits)));
    const std::string extension = PathToUtf8(name.extension());
    return extension == ".bin" &&
           (name == NumberedName(0, extension) || name == NumberedName(number, extension));
}

void PlacedFiles::Supersede(std::span<const fs::path> oldBuffers) {
    for (const fs::path& name : oldBuffers) {
        if (m_kept.contains(name) || m_placed.contains(name) || !IsNumberedName(name)) continue;
        if (!IsUsedBySibling(name)) m_files.RemoveAfterwards(At(name));
    }
}

// Whether another scene in the folder contains the name in any form that a URI can have. A folder with too
// much to read counts as using it.
bool PlacedFiles::IsUsedBySibling(const fs::path& name) const {
    const std::string plain = PathToUtf8(name), encoded = EncodePath(name);
    std::uint64_t read = 0;
    try {
        std::error_code failure, none;
        for (const fs::path& sibling : fs::NamesIn(m_folder, failure)) {
            const std::string siblingName = PathToUtf8(sibling);
            if (!HasEnding(siblingName, ".gltf") && !HasEnding(siblingName, ".glb")) continue;
            const fs::path file = At(sibling);
            if (!fs::is_regular_file(file, none) || IsScene(sibling)) continue;
            if ((read += fs::file_size(file, none)) > kMaxSiblings) return true;
            const FileContent content = ReadFile(file);
            const std::string_view text(reinterpret_cast<const char*>(content.data.get()), content.size);
            if (text.find(plain) != std::string_view::npos || text.find(encoded) != std::string_view::npos)
                return true;
        }
        return static_cast<bool>(failure);
    } catch (const std::exception&) {
        return true;
    }
}

}  // namespace zr::gltf
