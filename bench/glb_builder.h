// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <span>
#include <string>

namespace zr::bench {

// A binary glTF file put together element by element as text. One scene, one buffer, one view for each
// accessor.
class GlbBuilder {
public:
    // Adds an element to a collection of the root ("nodes"): its index.
    std::size_t Add(const char* collection, const std::string& element);
    void AddRoot(std::size_t node);

    // Floats under an accessor type ("VEC3"); bounds are written for VEC3 where asked for, and for SCALAR.
    std::size_t AddFloats(const char* type, std::span<const float> values, bool bounds = false);
    std::size_t AddIndices(std::span<const std::uint16_t> values);

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
