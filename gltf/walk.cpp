// SPDX-License-Identifier: MIT
#include "gltf/walk.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <charconv>
#include <cstdint>

#include "base/text.h"
#include "gltf/interactivity.h"
#include "gltf/kind_by_name.h"
#include "gltf/pointer.h"

namespace zr::gltf {
namespace {

constexpr Rule kTextureRule{"...Texture.index", Shape::kIndex, Kind::kTexture, Cut::kHolder};

const SchemaNode& TextureInfo() {
    static const SchemaNode node = [] {
        SchemaNode built;
        built.rule = &kTextureRule;
        return built;
    }();
    return node;
}

[[maybe_unused]] bool HasExtensions(const Json& value) {
    const auto items = value.Items();
    const auto members = value.Members();
    return std::any_of(items.begin(), items.end(), HasExtensions) ||
           std::any_of(members.begin(), members.end(), [](const JsonMember& member) {
               return member.Name() == kExtensions || HasExtensions(member.value);
           });
}

class Walker {
public:
    // `kinds`: the kinds whose references to look for; null: visit everything.
    Walker(JsonTree& tree, Visitor& visitor, const KindSet* kinds)
        : m_visitor(visitor),
          m_kinds(kinds),
          m_findsTextures(kinds == nullptr || kinds->Has(Kind::kTexture)),
          m_knowsExtensions(tree.NotesExtensions()),
          m_place(tree.root) {}

    // Recurses as deep as the document, which the reader bounds by kMaxJsonDepth.
    void Visit(Json& value, const SchemaNode* schema) {
        if (schema != nullptr) m_visitor.Value(*schema, value, m_place);
        if (value.IsObject())
            Object(value, schema);
        else if (value.IsArray())
            Array(value, schema);
    }

private:
    void Object(Json& object, const SchemaNode* schema) {
        for (JsonMember& member : object.Members()) {
            const std::string_view name = member.Name();
            Json& value = member.value;
            const Answer answer = Ask(schema, name);
            const bool isBare = IsBare(value);
            const SchemaNode* const below = isBare ? answer.belowPlain : answer.below;
            const bool leadsNowhere = below == nullptr && isBare && answer.role != Role::kExtensions;
            if (leadsNowhere || answer.role == Role::kExtras) continue;
            m_place.Push(name, value);
            if (answer.role == Role::kExtensions)
                Extensions(value, answer.below);
            else if (answer.role == Role::kTexture && m_materials > 0 && value.Find("index") != nullptr)
                Texture(value, below);
            else
                Enter(name, value, below);
            m_place.Pop();
        }
    }

    // Whether only rules can lead on from a value: nothing in it is visited wherever it occurs, as extensions
    // and the texture infos of materials are.
    bool IsBare(const Json& value) const {
        if (!value.IsObject() && !value.IsArray()) return true;
        if (!m_knowsExtensions || (m_findsTextures && m_materials > 0)) return false;
        assert(value.HoldsExtensions() || !HasExtensions(value));
        return !value.HoldsExtensions();
    }

    enum class Role : std::uint8_t { kOther, kExtras, kExtensions, kTexture };

    // What the rules and the name say about a member.
    struct Answer {
        const SchemaNode* schema = nullptr;
        std::string_view name;
        const SchemaNode* below = nullptr;
        const SchemaNode* belowPlain = nullptr;  // the same for a value without extensions
        Role role = Role::kOther;
    };

    // There are few distinct names, and equal ones mostly share a text, so nearly every lookup repeats one.
    const Answer& Ask(const SchemaNode* schema, std::string_view name) {
        const auto address = [](const void* at) { return reinterpret_cast<std::uintptr_t>(at); };
        Answer& answer =
            m_answers[(address(schema) / sizeof(SchemaNode) + address(name.data()) / 8) % kAnswers];
        const bool isKnown =
            answer.schema == schema && answer.name.data() == name.data() && answer.name.size() == name.size();
        if (!isKnown) {
            const Role role = name == "extras"            ? Role::kExtras
                              : name == kExtensions       ? Role::kExtensions
                              : name.ends_with("Texture") ? Role::kTexture
                                                          : Role::kOther;
            const SchemaNode* const below = schema != nullptr ? schema->Find(name) : nullptr;
            answer = {schema, name, Wanted(below), WantedPlain(below), role};
        }
        return answer;
    }

    const SchemaNode* Wanted(const SchemaNode* schema) const {
        const bool leadsNowhere = m_kinds != nullptr && schema != nullptr && !schema->named.HasAny(*m_kinds);
        return leadsNowhere ? nullptr : schema;
    }

    const SchemaNode* WantedPlain(const SchemaNode* schema) const {
        const bool leadsNowhere =
            m_kinds != nullptr && schema != nullptr && !schema->namedPlainly.HasAny(*m_kinds);
        return leadsNowhere ? nullptr : schema;
    }

    void Enter(std::string_view name, Json& value, const SchemaNode* schema) {
        const bool materials = schema != nullptr && schema == m_materialsSchema && name == "materials";
        m_materials += materials;
        Visit(value, schema);
        m_materials -= materials;
    }

    void Texture(Json& info, const SchemaNode* schema) {
        Visit(info, schema);
        Json& index = *info.Find("index");
        m_place.Push("index", index);
        m_visitor.Value(TextureInfo(), index, m_place);
        m_place.Pop();
    }

    void Array(Json& array, const SchemaNode* schema) {
        const SchemaNode* item = schema != nullptr && !schema->isMap ? schema->item.get() : nullptr;
        const bool isCollection = item != nullptr && item->element != Kind::kCount;
        const auto items = array.Items();
        const SchemaNode* const plainItem = WantedPlain(item);
        if (item == nullptr && !items.empty() && !items[0].IsObject() && !items[0].IsArray()) return;
        for (std::size_t i = 0; i < items.size(); ++i) {
            const bool isBare = IsBare(items[i]);
            const SchemaNode* const schemaOfItem = isBare ? plainItem : item;
            if (isBare && schemaOfItem == nullptr) continue;
            m_place.Push(i, items[i]);
            if (isCollection) m_place.SetOwner(Place::Element{item->element, i});
            Visit(items[i], schemaOfItem);
            m_place.Pop();
        }
        if (isCollection) m_place.SetOwner(std::nullopt);
    }

    void Extensions(Json& extensions, const SchemaNode* schema) {
        for (JsonMember& member : extensions.Members()) {
            const std::string_view name = member.Name();
            m_place.Push(name, member.value);
            const SchemaNode* below = Ask(schema, name).below;
            if (below == nullptr) below = Wanted(AnywhereSchema(name));
            Visit(member.value, below);
            if (!IsKnownExtension(name))
                m_visitor.Unknown(name, member.value, m_place);
            else if (name == kInteractivity)
                VisitInteractivity(member.value, m_visitor, m_place);
            m_place.Pop();
        }
    }

    static constexpr std::size_t kAnswers = 512;

    Visitor& m_visitor;
    const KindSet* m_kinds;
    bool m_findsTextures;
    bool m_knowsExtensions;
    Place m_place;
    std::array<Answer, kAnswers> m_answers;
    const SchemaNode* m_materialsSchema = Schema().Find("materials");
    int m_materials = 0;
};

void CollectPossible(const Json& value, std::string_view name, KindSet& kinds) {
    if (value.IsNumber() && value.Index()) {
        if (const auto kind = KindByName(name))
            kinds.Add(*kind);
        else
            kinds.Add(KindSet::All());
    } else if (value.IsString()) {
        if (const auto target = PointerTarget(value.String())) kinds.Add(target->kind);
    }
    for (const Json& item : value.Items()) CollectPossible(item, name, kinds);
    for (const JsonMember& member : value.Members()) {
        const bool isTextureInfo = name.ends_with("Texture") && member.Name() == "index";
        if (isTextureInfo)
            kinds.Add(Kind::kTexture);
        else
            CollectPossible(member.value, member.Name(), kinds);
    }
}

}  // namespace

void Visitor::Unknown(std::string_view, Json&, const Place&) {}
void Visitor::Dynamic(std::string_view, Kind, const Place&) {}

std::string Place::Pointer() const {
    std::string pointer;
    for (const Step& step : Steps().subspan(1)) {
        if (step.isItem)
            pointer += Join("/", step.item);
        else
            AppendStep(pointer, step.member);
    }
    return pointer;
}

std::optional<Target> PointerTarget(std::string_view pointer) {
    for (std::size_t i = 0; i < kKinds; ++i) {
        std::string_view rest = pointer;
        bool matches = true;
        for (std::string_view name : kKindInfo[i].Path()) {
            matches = matches && rest.starts_with('/') && rest.substr(1).starts_with(name);
            if (matches) rest.remove_prefix(1 + name.size());
        }
        if (!matches || !rest.starts_with('/')) continue;
        rest.remove_prefix(1);
        Target target{static_cast<Kind>(i), 0, static_cast<std::size_t>(rest.data() - pointer.data()), 0};
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), target.index);
        target.textSize = static_cast<std::size_t>(end - rest.data());
        const bool ends = target.textSize == rest.size() || rest[target.textSize] == '/';
        if (error != std::errc() || !ends) return std::nullopt;
        return target;
    }
    return std::nullopt;
}

std::optional<Target> TargetOf(const Rule& rule, const Json& value) {
    if (rule.shape == Shape::kPointer) return PointerTarget(value.String());
    if (rule.shape != Shape::kIndex) return std::nullopt;
    const auto index = value.Index();
    if (!index) return std::nullopt;
    return Target{rule.kind, static_cast<std::size_t>(*index)};
}

void Walk(JsonTree& tree, Visitor& visitor) {
    Walker(tree, visitor, nullptr).Visit(tree.root, &Schema());
}

void WalkReferences(JsonTree& tree, KindSet kinds, Visitor& visitor) {
    Walker(tree, visitor, &kinds).Visit(tree.root, &Schema());
}

KindSet PossibleReferences(const Json& value) {
    KindSet kinds;
    CollectPossible(value, {}, kinds);
    return kinds;
}

}  // namespace zr::gltf
