// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zr::gltf {

// Kinds of element that other parts of a document refer to by index.
enum class Kind : std::uint8_t {
    kScene,
    kNode,
    kMesh,
    kCamera,
    kLight,  // of KHR_lights_punctual
    kSkin,
    kMaterial,
    kAnimation,
    kTexture,
    kImage,
    kSampler,
    kAccessor,
    kBufferView,
    kBuffer,
    kVariant,  // of KHR_materials_variants
    kCount
};

inline constexpr std::size_t kKinds = static_cast<std::size_t>(Kind::kCount);

constexpr std::size_t Ordinal(Kind kind) {
    return static_cast<std::size_t>(kind);
}

struct KindInfo {
    static constexpr std::size_t kMaxDepth = 3;

    std::string_view noun;  // "node", for messages and for guessing what an unknown index means
    std::array<std::string_view, kMaxDepth> path;  // members that lead from the root to the collection
    std::size_t depth;                             // how many of them

    std::span<const std::string_view> Path() const { return {path.data(), depth}; }
};

inline constexpr std::array<KindInfo, kKinds> kKindInfo = {{
    {"scene", {"scenes"}, 1},
    {"node", {"nodes"}, 1},
    {"mesh", {"meshes"}, 1},
    {"camera", {"cameras"}, 1},
    {"light", {"extensions", "KHR_lights_punctual", "lights"}, 3},
    {"skin", {"skins"}, 1},
    {"material", {"materials"}, 1},
    {"animation", {"animations"}, 1},
    {"texture", {"textures"}, 1},
    {"image", {"images"}, 1},
    {"sampler", {"samplers"}, 1},
    {"accessor", {"accessors"}, 1},
    {"bufferView", {"bufferViews"}, 1},
    {"buffer", {"buffers"}, 1},
    {"variant", {"extensions", "KHR_materials_variants", "variants"}, 3},
}};

constexpr const KindInfo& Info(Kind kind) {
    return kKindInfo[Ordinal(kind)];
}

// A set of kinds.
class KindSet {
public:
    constexpr KindSet() = default;
    constexpr KindSet(std::initializer_list<Kind> kinds) {
        for (Kind kind : kinds) Add(kind);
    }

    static constexpr KindSet All() {
        KindSet all;
        all.m_bits = (1U << kKinds) - 1;
        return all;
    }
    constexpr void Add(Kind kind) { m_bits |= 1U << Ordinal(kind); }
    constexpr void Add(KindSet other) { m_bits |= other.m_bits; }
    constexpr void Remove(KindSet other) { m_bits &= ~other.m_bits; }
    constexpr bool Has(Kind kind) const { return (m_bits >> Ordinal(kind) & 1) != 0; }
    constexpr bool HasAny(KindSet others) const { return (m_bits & others.m_bits) != 0; }
    constexpr bool Empty() const { return m_bits == 0; }

private:
    std::uint32_t m_bits = 0;
};

}  // namespace zr::gltf
