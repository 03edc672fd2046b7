// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdint>
#include <deque>
#include <set>
#include <utility>

#include "base/text.h"
#include "gltf/references.h"

namespace zr::gltf {
namespace {

constexpr std::uint32_t kGone = 0xFFFFFFFF;

bool Any(const std::vector<bool>& flags) {
    return std::find(flags.begin(), flags.end(), true) != flags.end();
}

bool Goes(const Removal& removal, Kind kind, std::size_t index) {
    const std::vector<bool>& gone = removal[Ordinal(kind)];
    return index < gone.size() && gone[index];
}

// Removes marked values from their containers, the deepest containers first, so that no handle moves while
// something below it is still pending.
class Pruner {
public:
    // Marks the value at steps[at] for removal. Calls are in document order.
    void Mark(std::span<const Place::Step> steps, std::size_t at) {
        // This value and the previous one share the containers at the start of their paths.
        std::size_t known = 0;
        while (known < std::min(at, m_way.size()) && m_containers[m_way[known]].json == steps[known].value)
            ++known;
        m_way.resize(known);
        for (std::size_t i = known; i < at; ++i) {
            const std::uint32_t parent = i == 0 ? kNone : m_way.back();
            m_way.push_back(static_cast<std::uint32_t>(m_containers.size()));
            m_containers.push_back(
                {steps[i].value, parent, kNone, static_cast<std::uint16_t>(i), steps[i].isItem});
            m_depth = std::max(m_depth, i + 1);
        }
        AddVictim(m_way.back(), steps[at].value);
    }

    void Run() {
        for (std::size_t depth = m_depth; depth-- > 0;)
            for (const Container& container : m_containers)
                if (container.depth == depth && container.victims != kNone) Prune(container);
    }

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    struct Container {
        Json* json;
        std::uint32_t parent;   // kNone: the root
        std::uint32_t victims;  // the last one added; the others are linked from it
        std::uint16_t depth;
        bool isItem;
    };
    struct Victim {
        const Json* json;
        std::uint32_t next;  // of the same container
    };

    void AddVictim(std::uint32_t container, const Json* json) {
        m_victims.push_back({json, std::exchange(m_containers[container].victims,
                                                 static_cast<std::uint32_t>(m_victims.size()))});
    }

    void Prune(const Container& container) {
        std::vector<const Json*> victims;
        for (std::uint32_t i = container.victims; i != kNone; i = m_victims[i].next)
            victims.push_back(m_victims[i].json);
        std::sort(victims.begin(), victims.end());
        // Handles move towards the front, so each one is read in its old place before that is overwritten.
        const auto stays = [&](const Json* at) {
            return !std::binary_search(victims.begin(), victims.end(), at);
        };
        Json& json = *container.json;
        json.FilterItems([&](const Json& item) { return stays(&item); });
        json.FilterMembers([&](const JsonMember& member) { return stays(&member.value); });
        const bool isEmpty = json.Items().empty() && json.Members().empty();
        if (isEmpty && !container.isItem && container.parent != kNone) AddVictim(container.parent, &json);
    }

    // Deques grow without copying their elements.
    std::deque<Container> m_containers;
    std::deque<Victim> m_victims;
    std::vector<std::uint32_t> m_way;  // the containers of the last value, from the root
    std::size_t m_depth = 0;
};

class Remover : public Visitor {
public:
    Remover(Document& document, const Removal& removal) : m_document(document), m_removal(removal) {
        for (std::size_t i = 0; i < kKinds; ++i) {
            if (!Any(removal[i])) continue;
            m_kinds.Add(static_cast<Kind>(i));
            const std::size_t count = document.Elements(static_cast<Kind>(i)).size();
            std::uint32_t next = 0;
            m_renumbered[i].resize(count);
            for (std::size_t k = 0; k < count; ++k)
                m_renumbered[i][k] = Goes(removal, static_cast<Kind>(i), k) ? kGone : next++;
        }
    }

    KindSet Kinds() const { return m_kinds; }

    void Value(const SchemaNode& schema, Json& value, const Place& place) override {
        if (schema.rule == nullptr) return;
        const auto target = TargetOf(*schema.rule, value);
        if (!target || !m_kinds.Has(target->kind)) return;
        const std::uint32_t index = m_renumbered[Ordinal(target->kind)][target->index];
        if (index == target->index) return;
        if (const auto owner = place.Owner(); owner && Goes(m_removal, owner->kind, owner->index)) return;
        if (index == kGone)
            CutAway(schema.rule->cut, *target, place);
        else
            m_renamed[Ordinal(target->kind)].push_back(&value);
    }

    void Finish() {
        for (std::size_t i = 0; i < kKinds; ++i) {
            for (Json* value : m_renamed[i])
                *value = value->IsString() ? Renumbered(value->String(), m_renumbered[i])
                                           : m_document.Tree().MakeIndex(m_renumbered[i][*value->Index()]);
            m_renamed[i].clear();
        }
        m_pruner.Run();
        for (std::size_t i = 0; i < kKinds; ++i) Erase(static_cast<Kind>(i));
    }

private:
    Json Renumbered(std::string_view pointer, std::span<const std::uint32_t> renumbered) {
        const Target target = *PointerTarget(pointer);
        std::string text(pointer);
        text.replace(target.textOffset, target.textSize, std::to_string(renumbered[target.index]));
        return m_document.Tree().MakeString(text);
    }

    void CutAway(Cut cut, const Target& target, const Place& place) {
        if (cut == Cut::kNothing)
            m_document.Fail(ErrorKind::kReference, place.Pointer(),
                            Join(Info(target.kind).noun, " ", target.index, " is needed here"));
        const auto steps = place.Steps();
        std::size_t at = steps.size() - 1;
        if (cut == Cut::kHolder) --at;
        // /animations/N/channels/N: the fourth step below the root.
        if (cut == Cut::kChannel) at = 4;
        m_pruner.Mark(steps, at);
    }

    void Erase(Kind kind) {
        const std::vector<bool>& gone = m_removal[Ordinal(kind)];
        if (std::none_of(gone.begin(), gone.end(), [](bool g) { return g; })) return;
        std::vector<bool> keep(m_document.Elements(kind).size());
        for (std::size_t i = 0; i < keep.size(); ++i) keep[i] = !Goes(m_removal, kind, i);
        if (kind == Kind::kBuffer) return m_document.EraseBuffers(keep);
        m_document.RenumberSupplied(kind, keep);
        const auto path = Info(kind).Path();
        std::vector<Json*> way{&m_document.Root()};
        for (std::string_view name : path) way.push_back(way.back()->Find(name));
        std::size_t i = 0;
        way.back()->FilterItems([&](const Json&) { return keep[i++]; });
        for (std::size_t k = path.size(); k-- > 0;) {
            if (!way[k + 1]->Items().empty() || !way[k + 1]->Members().empty()) break;
            way[k]->EraseMember(path[k]);
        }
    }

    Document& m_document;
    const Removal& m_removal;
    KindSet m_kinds;  // that lose elements
    std::array<std::vector<std::uint32_t>, kKinds> m_renumbered;
    std::array<std::deque<Json*>, kKinds> m_renamed;  // to update once it is known that all can be
    Pruner m_pruner;
};

// Names of all extensions that occur anywhere in a value.
void CollectExtensions(const Json& value, std::set<std::string, std::less<>>& names) {
    for (const Json& item : value.Items())
        if (item.IsObject() || item.IsArray()) CollectExtensions(item, names);
    for (const JsonMember& member : value.Members()) {
        if (member.Name() == "extras") continue;
        if (member.Name() == "extensions")
            for (const JsonMember& extension : member.value.Members()) names.emplace(extension.Name());
        CollectExtensions(member.value, names);
    }
}

void RemoveOnce(Document& document, const Removal& removal) {
    Remover remover(document, removal);
    WalkReferences(document.Tree(), remover.Kinds(), remover);
    remover.Finish();
}

void ForgetExtensions(Document& document, const std::set<std::string, std::less<>>& before) {
    if (before.empty()) return;
    std::set<std::string, std::less<>> after;
    CollectExtensions(document.Root(), after);
    for (std::string_view list : {"extensionsUsed", "extensionsRequired"}) {
        Json* names = document.Root().Find(list);
        if (names == nullptr) continue;
        names->FilterItems([&](const Json& name) {
            return before.find(name.String()) == before.end() || after.find(name.String()) != after.end();
        });
        if (names->Items().empty()) document.Root().EraseMember(list);
    }
}

// Animations that lost their last channel.
std::vector<bool> EmptyAnimations(const Document& document) {
    std::vector<bool> empty;
    for (const Json& animation : document.Elements(Kind::kAnimation))
        empty.push_back(animation.Find("channels") == nullptr && animation.Find("samplers") != nullptr);
    return empty;
}

}  // namespace

void RemoveElements(Document& document, const Removal& removal) {
    if (std::none_of(removal.begin(), removal.end(), Any) && !Any(EmptyAnimations(document))) return;
    const bool namesExtensions = document.Root().Find("extensionsUsed") != nullptr ||
                                 document.Root().Find("extensionsRequired") != nullptr;
    std::set<std::string, std::less<>> extensions;
    if (namesExtensions) CollectExtensions(document.Root(), extensions);
    RemoveOnce(document, removal);

    Removal still;
    still[Ordinal(Kind::kAnimation)] = EmptyAnimations(document);
    if (Any(still[Ordinal(Kind::kAnimation)])) RemoveOnce(document, still);
    if (namesExtensions) ForgetExtensions(document, extensions);
}

}  // namespace zr::gltf
