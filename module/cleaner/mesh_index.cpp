// SPDX-License-Identifier: MIT
#include "module/cleaner/mesh_index.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <string_view>

namespace zrt {

using vl::zr::Mesh;
using vl::zr::Node;

namespace {

// Equal pointers mean equal content, which avoids reading what meshes share.
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

// The place of a node as four numbers that are nearly the same for equal transforms: the translation, and a
// mixture of all the rest, so that any difference shows. Each number lies in a cell several times wider than
// two equal ones can be apart.
struct Number {
    double value;
    double reach;  // how far away an equal transform's number can be
    double cellsPerUnit;
};

constexpr unsigned kCellAxes = 4;

// Without a common factor, so that no turn or scale leaves the mixture unchanged.
constexpr double kMixture[9] = {1.0, 0.618, 0.755, -0.857, 0.914, -0.683, 0.541, -0.786, 0.967};

// Powers of two make the products exact; every step is monotone, so that rounding cannot move an equal number
// out of the range of Around.
constexpr double kTranslationCells = 65536;
constexpr double kMixtureCells = 4096;

std::array<Number, kCellAxes> Place(Node* node) {
    vl::Matrix4<double> world;
    node->GetWorldMatrix(&world, 1);
    std::array<Number, kCellAxes> place;
    Number mixed{0, 0, kMixtureCells};
    double size = 0;
    for (unsigned i = 0; i < 9; ++i) {
        const double term = kMixture[i] * world.m[i / 3][i % 3];
        mixed.value += term;
        mixed.reach += std::abs(kMixture[i]) * 2 * kTransformTolerance;
        size += std::abs(term);
    }
    // The sum is rounded, differently for an equal transform. Numbers so large that this could reach past the
    // neighbouring cell are not mixed in.
    mixed.reach += size * 16 * std::numeric_limits<double>::epsilon();
    if (!(mixed.reach * kMixtureCells < 0.5)) mixed = {0, 0, kMixtureCells};
    for (unsigned axis = 0; axis < 3; ++axis)
        place[axis] = {world.m[3][axis], 2 * kTransformTolerance, kTranslationCells};
    place[3] = mixed;
    return place;
}

double CellOf(double value, double cellsPerUnit) {
    return std::floor(value * cellsPerUnit + 0.5);
}

struct CellRange {
    double home;
    double first;
    double last;
};

CellRange Around(const Number& number) {
    const auto cell = [&](double value) { return CellOf(value, number.cellsPerUnit); };
    return {cell(number.value), cell(number.value - number.reach), cell(number.value + number.reach)};
}

std::uint64_t HashContent(const Mesh& mesh) {
    std::uint64_t hash = 0;
    const MeshKey key(mesh);
    MixBytes(hash, &key, sizeof key);
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
    return hash;
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

std::size_t ContentHashes::ArraysHash::operator()(const Arrays& arrays) const {
    std::uint64_t hash = 0;
    MixBytes(hash, &arrays.key, sizeof arrays.key);
    for (const void* pointer : arrays.pointers) Mix(hash, vl::ToWord(pointer));
    return static_cast<std::size_t>(hash);
}

std::uint64_t ContentHashes::Of(const Mesh& mesh) {
    // A small mesh is hashed again sooner than it is found.
    constexpr std::uint32_t kSmall = 64;
    if (mesh.m_nVertices <= kSmall && mesh.m_nFaces <= kSmall && mesh.m_nSecondary <= kSmall)
        return HashContent(mesh);
    const Arrays arrays{MeshKey(mesh),
                        mesh.m_nFaceSize,
                        mesh.m_nSecondarySize,
                        {mesh.m_pPositions, mesh.m_pFaceCounts, mesh.m_pFaceAttributes, mesh.m_ppFaces,
                         mesh.m_pSecondaryCounts, mesh.m_ppSecondary}};
    const auto [known, isNew] = m_hashes.try_emplace(arrays, 0);
    if (isNew) known->second = HashContent(mesh);
    return known->second;
}

bool MeshIndex::FindOrAdd(Node* node, Mesh* mesh, std::uint64_t content) {
    const std::array<Number, kCellAxes> place = Place(node);
    std::uint64_t home = content;
    std::array<CellRange, kCellAxes> around;
    unsigned split = 0;  // the axes whose range lies in two cells
    for (unsigned axis = 0; axis < kCellAxes; ++axis) {
        around[axis] = Around(place[axis]);
        Mix(home, std::bit_cast<std::uint64_t>(around[axis].home));
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
            return TransformsEqual(node, candidate.second.node) && GeometryEqual(mesh, candidate.second.mesh);
        });
        if (found) return true;
        choice = (choice - 1) & split;
    } while (choice != split);

    m_entries.emplace(home, Entry{node, mesh});
    return false;
}

}  // namespace zrt
