// SPDX-License-Identifier: MIT
#include "module/cleaner/mesh_index.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <string_view>

namespace zrt {

using vl::zr::Mesh;
using vl::zr::Node;

namespace {

// Equal pointers are equal content, which spares reading what meshes share.
bool SameBytes(const void* a, const void* b, std::size_t size) {
    if (a == b || size == 0) return true;
    return a != nullptr && b != nullptr && std::memcmp(a, b, size) == 0;
}

std::size_t CountAt(const std::uint16_t* counts, std::uint16_t size, std::uint32_t index) {
    return counts != nullptr ? counts[index] : size;
}

void Mix(std::uint64_t& hash, std::uint64_t value) {
    hash ^= value + 0x9E3779B97F4A7C15 + (hash << 6) + (hash >> 2);
}

void MixBytes(std::uint64_t& hash, const void* data, std::size_t size) {
    Mix(hash, std::hash<std::string_view>()({static_cast<const char*>(data), size}));
}

void MixLists(std::uint64_t& hash, const std::uint32_t* const* lists, std::uint32_t number,
              const std::uint16_t* counts, std::uint16_t size) {
    for (std::uint32_t i = 0; i < number; ++i) {
        const std::size_t count = CountAt(counts, size, i);
        Mix(hash, count);
        if (lists != nullptr) MixBytes(hash, lists[i], count * sizeof **lists);
    }
}

// Cells of a grid over numbers of the transform. They are much wider than the tolerance, and their borders
// lie where round numbers do not: mostly a number and all within the tolerance of it are in one cell.
// A width that is a power of two makes the product exact; every step is monotone, so that no rounding
// takes an equal number out of the range of Around.
struct CellRange {
    double first;
    double last;
};

double CellOf(double value) {
    return std::floor(value * 1024.0 + 0.5);
}

CellRange Around(double value) {
    return {CellOf(value - 2 * kTransformTolerance), CellOf(value + 2 * kTransformTolerance)};
}

// The elements of the affine transform: a number for every way in which places can differ.
constexpr unsigned kCellAxes = 12;

std::array<double, kCellAxes> Place(Node* node) {
    vl::Matrix4<double> world;
    node->GetWorldMatrix(&world, 1);
    std::array<double, kCellAxes> place;
    for (std::size_t axis = 0; axis < kCellAxes; ++axis) place[axis] = world.m[axis / 3][axis % 3];
    return place;
}

}  // namespace

MeshKey::MeshKey(const Mesh& mesh)
    : vertices(mesh.m_nVertices),
      faces(mesh.m_nFaces),
      secondary(mesh.m_nSecondary),
      format(mesh.m_nFormat),
      hasFaceAttributes(mesh.m_pFaceAttributes != nullptr ? 1 : 0),
      zero{} {}

bool GeometryEqual(const Mesh* a, const Mesh* b) {
    if (a == nullptr || b == nullptr) return false;
    if (MeshKey(*a) != MeshKey(*b)) return false;
    if ((a->m_ppFaces == nullptr) != (b->m_ppFaces == nullptr)) return false;
    if ((a->m_ppSecondary == nullptr) != (b->m_ppSecondary == nullptr)) return false;
    const std::size_t vertexSize = 3 * sizeof *a->m_pPositions;
    if (!SameBytes(a->m_pPositions, b->m_pPositions, a->m_nVertices * vertexSize)) return false;
    if (!SameBytes(a->m_pFaceAttributes, b->m_pFaceAttributes, a->m_nFaces * sizeof *a->m_pFaceAttributes)) {
        return false;
    }
    for (std::uint32_t i = 0; i < a->m_nFaces; ++i) {
        const std::size_t count = CountAt(a->m_pFaceCounts, a->m_nFaceSize, i);
        if (count != CountAt(b->m_pFaceCounts, b->m_nFaceSize, i)) return false;
        if (a->m_ppFaces != nullptr &&
            !SameBytes(a->m_ppFaces[i], b->m_ppFaces[i], count * sizeof **a->m_ppFaces)) {
            return false;
        }
    }
    if (a->m_ppSecondary == nullptr) return true;
    for (std::uint32_t i = 0; i < a->m_nSecondary; ++i) {
        const std::size_t count = CountAt(a->m_pSecondaryCounts, a->m_nSecondarySize, i);
        if (count != CountAt(b->m_pSecondaryCounts, b->m_nSecondarySize, i)) return false;
        if (!SameBytes(a->m_ppSecondary[i], b->m_ppSecondary[i], count * sizeof **a->m_ppSecondary)) {
            return false;
        }
    }
    return true;
}

bool TransformsEqual(Node* a, Node* b) {
    vl::Matrix4<double> worldA;
    vl::Matrix4<double> worldB;
    a->GetWorldMatrix(&worldA, 1);
    b->GetWorldMatrix(&worldB, 1);
    return worldA.Equal(worldB, kTransformTolerance);
}

std::size_t MeshIndex::ArraysHash::operator()(const Arrays& arrays) const {
    std::uint64_t hash = 0;
    MixBytes(hash, &arrays.key, sizeof arrays.key);
    for (const void* pointer : arrays.pointers) Mix(hash, vl::ToWord(pointer));
    return static_cast<std::size_t>(hash);
}

std::uint64_t MeshIndex::ContentHash(const Mesh& mesh) {
    const Arrays arrays{MeshKey(mesh),
                        mesh.m_nFaceSize,
                        mesh.m_nSecondarySize,
                        {mesh.m_pPositions, mesh.m_pFaceCounts, mesh.m_pFaceAttributes, mesh.m_ppFaces,
                         mesh.m_pSecondaryCounts, mesh.m_ppSecondary}};
    const auto [known, added] = m_hashes.try_emplace(arrays, 0);
    if (!added) return known->second;

    std::uint64_t hash = 0;
    MixBytes(hash, &arrays.key, sizeof arrays.key);
    if (mesh.m_pPositions != nullptr) {
        MixBytes(hash, mesh.m_pPositions, std::size_t{3} * mesh.m_nVertices * sizeof *mesh.m_pPositions);
    }
    if (mesh.m_pFaceAttributes != nullptr) {
        MixBytes(hash, mesh.m_pFaceAttributes, mesh.m_nFaces * sizeof *mesh.m_pFaceAttributes);
    }
    MixLists(hash, mesh.m_ppFaces, mesh.m_nFaces, mesh.m_pFaceCounts, mesh.m_nFaceSize);
    if (mesh.m_ppSecondary != nullptr) {
        MixLists(hash, mesh.m_ppSecondary, mesh.m_nSecondary, mesh.m_pSecondaryCounts, mesh.m_nSecondarySize);
    }
    known->second = hash;
    return hash;
}

bool MeshIndex::FindOrAdd(Node* node, Mesh* mesh) {
    const std::uint64_t content = ContentHash(*mesh);
    const std::array<double, kCellAxes> place = Place(node);

    std::uint64_t home = content;
    std::array<CellRange, kCellAxes> around;
    unsigned split = 0;  // the axes whose range lies in two cells
    for (unsigned axis = 0; axis < kCellAxes; ++axis) {
        Mix(home, std::bit_cast<std::uint64_t>(CellOf(place[axis])));
        around[axis] = Around(place[axis]);
        if (around[axis].first != around[axis].last) split |= 1U << axis;
    }
    // Each choice of one cell on every split axis, as the subsets of their bits.
    unsigned choice = split;
    do {
        std::uint64_t hash = content;
        for (unsigned axis = 0; axis < kCellAxes; ++axis) {
            const CellRange& range = around[axis];
            Mix(hash, std::bit_cast<std::uint64_t>((choice >> axis & 1U) != 0 ? range.last : range.first));
        }
        const auto [begin, end] = m_entries.equal_range(hash);
        const bool found = std::any_of(begin, end, [&](const auto& candidate) {
            return GeometryEqual(mesh, candidate.second.mesh) && TransformsEqual(node, candidate.second.node);
        });
        if (found) return true;
        choice = (choice - 1) & split;
    } while (choice != split);

    m_entries.emplace(home, Entry{node, mesh});
    return false;
}

void MeshIndex::Clear() {
    m_entries.clear();
    m_hashes.clear();
}

}  // namespace zrt
