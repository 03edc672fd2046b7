// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "host/node.h"
#include "host/object.h"

namespace zrt {

// What two equal meshes have in common at the least; compared as 20 bytes.
struct MeshKey {
    std::uint32_t vertices;
    std::uint32_t faces;
    std::uint32_t secondary;
    std::uint32_t format;
    std::uint8_t hasFaceAttributes;
    std::uint8_t zero[3];

    explicit MeshKey(const vl::zr::Mesh& mesh);
    friend bool operator==(const MeshKey&, const MeshKey&) = default;
};
static_assert(sizeof(MeshKey) == 20);

// Transforms that differ by no more in any element are equal. The single-precision 1e-6.
inline constexpr double kTransformTolerance = 1e-6F;

// Whether the meshes are equal byte for byte: -0 differs from 0, a NaN equals itself. Face and list sizes are
// compared by value, whether an array states them or one for all. False if either mesh is null.
bool GeometryEqual(const vl::zr::Mesh* a, const vl::zr::Mesh* b);

// Whether the nodes' world transforms at rest are equal within kTransformTolerance.
bool TransformsEqual(vl::zr::Node* a, vl::zr::Node* b);

// Hashes of the content of meshes: equal for meshes that GeometryEqual finds equal. The meshes must not
// change while the object lives.
class ContentHashes {
public:
    std::uint64_t Of(const vl::zr::Mesh& mesh);

private:
    // The arrays of a mesh, which many nodes' meshes may share.
    struct Arrays {
        MeshKey key;
        std::uint16_t faceSize;
        std::uint16_t secondarySize;
        const void* pointers[6];
        friend bool operator==(const Arrays&, const Arrays&) = default;
    };
    struct ArraysHash {
        std::size_t operator()(const Arrays& arrays) const;
    };

    std::unordered_map<Arrays, std::uint64_t, ArraysHash> m_hashes;  // of large meshes
};

// The distinct meshes of a scene, each with its node.
//
// The tolerance is not transitive, so meshes cannot be grouped: each is compared with every earlier one that
// may be equal. Those are found by a hash of the content and by the cell of the transform, so that the cost
// stays linear for any number of meshes of one shape at different places, or of one size at one place.
class MeshIndex {
public:
    // Whether an earlier mesh is equal and has an equal transform; otherwise adds the mesh. Node and mesh
    // must not change while the index lives. content: the mesh's ContentHashes::Of.
    bool FindOrAdd(vl::zr::Node* node, vl::zr::Mesh* mesh, std::uint64_t content);

private:
    struct Entry {
        vl::zr::Node* node;
        vl::zr::Mesh* mesh;
    };

    std::unordered_multimap<std::uint64_t, Entry> m_entries;  // by content and cell
};

}  // namespace zrt
