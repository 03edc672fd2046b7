// SPDX-License-Identifier: MIT
#include "gltf/key_accessors.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace zr::gltf {
namespace {

std::string_view RawText(std::span<const float> floats) {
    return {reinterpret_cast<const char*>(floats.data()), floats.size_bytes()};
}

std::size_t HashOf(std::span<const float> floats) {
    return std::hash<std::string_view>()(RawText(floats));
}

}  // namespace

std::size_t KeyAccessors::Times(std::span<const float> times) {
    return Place(m_times, "SCALAR", Use::kKeyTimes, times);
}

std::size_t KeyAccessors::Values(std::string_view type, std::span<const float> values) {
    return Place(m_values, type, Use::kKeyValues, values);
}

// Times and values apart, since times have bounds.
void KeyAccessors::List() {
    m_isListed = true;
    const auto accessors = m_document.Elements(Kind::kAccessor);
    std::vector<bool> isListed(accessors.size(), false);
    const auto list = [&](const Json& sampler, std::string_view name, Stored& stored) {
        const std::size_t accessor = IndexMember(sampler, name);
        if (isListed[accessor]) return;
        isListed[accessor] = true;
        const std::span<const float> floats = StoredFloats(m_document, accessor);
        if (floats.empty()) return;
        const std::size_t hash = HashOf(floats);
        if (Find(stored, hash, accessors[accessor].Find("type")->String(), floats) == nullptr)
            stored.emplace(hash, accessor);
    };
    for (const Json& animation : m_document.Elements(Kind::kAnimation)) {
        const Json* samplers = animation.Find("samplers");
        if (samplers == nullptr) continue;
        for (const Json& sampler : samplers->Items()) {
            list(sampler, "input", m_times);
            list(sampler, "output", m_values);
        }
    }
}

const std::size_t* KeyAccessors::Find(const Stored& stored, std::size_t hash, std::string_view type,
                                      std::span<const float> floats) const {
    const auto [first, last] = stored.equal_range(hash);
    const auto equal = std::find_if(first, last, [&](const auto& entry) {
        const Json& accessor = m_document.Elements(Kind::kAccessor)[entry.second];
        return accessor.Find("type")->String() == type &&
               RawText(StoredFloats(m_document, entry.second)) == RawText(floats);
    });
    return equal != last ? &equal->second : nullptr;
}

std::size_t KeyAccessors::Place(Stored& stored, std::string_view type, Use use,
                                std::span<const float> floats) {
    if (!m_isListed) List();
    const std::size_t hash = HashOf(floats);
    if (const std::size_t* known = Find(stored, hash, type, floats)) return *known;
    const std::size_t accessor = AppendFloats(m_document, type, use, floats, m_view);
    stored.emplace(hash, accessor);
    return accessor;
}

}  // namespace zr::gltf
