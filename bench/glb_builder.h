// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <span>
#include <string>

namespace zr::bench {

// Builds a binary glTF file element by element, as text. One scene, one buffer, one view for each accessor.
class GlbBuilder {
public:
    // Adds an element to a collection of the root ("nodes") and returns its index.
    std::size_t Add(const char* collection, const std::string& element);
    void AddRoot(std::size_t node);

    // Adds an accessor of the type ("VEC3") and returns its index. Bounds are written on request, and always
    // for SCALAR.
    std::size_t AddFloats(const char* type, std::span<const float> values, bool bounds = false);
    std::size_t AddIndices(std::span<const std::uint16_t> values);

    // Throws Error.
    void Write(const std::filesystem::path& file) const;

private:
    std::size_t AddView(const void* data, std::size_t size);

    struct Collection {
        std::string elements;
        std::size_t count = 0;
    };
    std::map<std::string, Collection> m_collections;
    std::string m_roots;
    std::string m_bin;
};

}  // namespace zr::bench
