// SPDX-License-Identifier: MIT
#include "gltf/references.h"

namespace zr::gltf {
namespace {

class Collector : public Visitor {
public:
    Collector(KindSet kinds, const std::function<void(const Reference&)>& visit)
        : m_kinds(kinds), m_visit(visit) {}

    void Value(const SchemaNode& schema, Json& value, const Place& place) override {
        if (schema.rule == nullptr) return;
        const auto target = TargetOf(*schema.rule, value);
        if (target && m_kinds.Has(target->kind))
            m_visit({*target, place.Owner(), schema.rule->cut, value, place});
    }

private:
    KindSet m_kinds;
    const std::function<void(const Reference&)>& m_visit;
};

class OpaqueCollector : public Visitor {
public:
    void Value(const SchemaNode&, Json&, const Place&) override {}

    void Unknown(std::string_view extension, Json& value, const Place& place) override {
        Add(extension, PossibleReferences(value), place);
    }

    void Dynamic(std::string_view extension, Kind kind, const Place& place) override {
        Add(extension, {kind}, place);
    }

    Opaque Take() { return std::move(m_opaque); }

private:
    void Add(std::string_view extension, KindSet kinds, const Place& place) {
        if (kinds.Empty()) return;
        m_opaque.kinds.Add(kinds);
        // One entry for each extension is enough to report it.
        for (OpaqueUse& use : m_opaque.uses) {
            if (use.extension != extension) continue;
            use.kinds.Add(kinds);
            return;
        }
        m_opaque.uses.push_back({std::string(extension), place.Pointer(), kinds});
    }

    Opaque m_opaque;
};

class TableCollector : public OpaqueCollector {
public:
    explicit TableCollector(KindSet kinds) : m_kinds(kinds) {}

    void Value(const SchemaNode& schema, Json& value, const Place& place) override {
        if (schema.rule == nullptr) return;
        const auto target = TargetOf(*schema.rule, value);
        if (!target || !m_kinds.Has(target->kind)) return;
        const auto& owner = place.Owner();
        if (!owner || !m_kinds.Has(owner->kind)) return Hold(*target);
        // A text below 4 GiB has fewer than 2^32 elements.
        m_links.push_back({static_cast<std::uint32_t>(target->index),
                           static_cast<std::uint32_t>(owner->index), target->kind, owner->kind});
    }

    ReferenceTable TakeTable() { return {std::move(m_links), std::move(m_held), Take()}; }

private:
    void Hold(const Target& target) {
        std::vector<bool>& held = m_held[Ordinal(target.kind)];
        if (held.size() <= target.index) held.resize(target.index + 1, false);
        held[target.index] = true;
    }

    KindSet m_kinds;
    std::deque<ReferenceTable::Link> m_links;
    ElementSet m_held;
};

}  // namespace

void ForEachReference(Document& document, KindSet kinds, const std::function<void(const Reference&)>& visit) {
    Collector collector(kinds, visit);
    WalkReferences(document.Tree(), kinds, collector);
}

Opaque OpaqueReferences(Document& document) {
    OpaqueCollector collector;
    WalkReferences(document.Tree(), {}, collector);
    return collector.Take();
}

ReferenceTable ListReferences(Document& document, KindSet kinds) {
    TableCollector collector(kinds);
    WalkReferences(document.Tree(), kinds, collector);
    return collector.TakeTable();
}

}  // namespace zr::gltf
