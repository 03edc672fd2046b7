// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_transaction.h"

namespace zr::gltf {

// Chooses the names of the files written beside a scene, so that none collides with the scene, a file that
// the scene keeps, or any other file. Paths are relative to the scene's folder.
class PlacedFiles {
public:
    PlacedFiles(const std::filesystem::path& scene, FileTransaction& files);

    // Reserves a name that new files must not take: of a file that stays, or one that a file is to get.
    void Keep(const std::filesystem::path& name) { m_kept.insert(name); }

    // Puts content beside the scene and returns its name: `wished` if that is free. A file that already holds
    // the same content is left as it is.
    std::filesystem::path Place(const std::filesystem::path& wished, Bytes content);
    // The same under a name derived from the scene's, with the extension (".bin").
    std::filesystem::path PlaceNew(std::string_view extension, Bytes content);

    // Deletes those buffers of the replaced scene that were placed for it, are no longer used and have no
    // other user in the folder.
    void Supersede(std::span<const std::filesystem::path> oldBuffers);

    // Bytes of all files that were placed.
    std::uint64_t PlacedSize() const;

    bool IsScene(const std::filesystem::path& name) const;

private:
    std::filesystem::path At(const std::filesystem::path& name) const { return m_folder / name; }
    bool IsFree(const std::filesystem::path& name) const;
    std::filesystem::path NumberedName(unsigned number, std::string_view extension) const;
    bool IsNumberedName(const std::filesystem::path& name) const;
    bool IsUsedBySibling(const std::filesystem::path& name) const;

    std::filesystem::path m_scene;
    std::filesystem::path m_folder;
    FileTransaction& m_files;
    std::set<std::filesystem::path> m_kept;
    std::map<std::filesystem::path, std::uint64_t> m_placed;  // bytes, by name
    std::map<std::string, unsigned, std::less<>> m_next;      // the number to try next, by extension
};

}  // namespace zr::gltf
