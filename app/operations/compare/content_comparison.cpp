// SPDX-License-Identifier: MIT
#include "app/operations/compare/content_comparison.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/operations/compare/content_rules.h"
#include "app/operations/compare/evaluator.h"
#include "app/operations/compare/image_bytes.h"
#include "app/operations/compare/value_difference.h"
#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/kind_by_name.h"
#include "gltf/walk.h"

namespace zr::compare {

using gltf::Json;
using gltf::JsonMember;
using gltf::Kind;
using gltf::SchemaNode;

namespace {

// The members of an object by name, of which there may be any number.
class MemberIndex {
public:
    explicit MemberIndex(const Json& object) : m_object(object) {
        constexpr std::size_t kFew = 32;
        if (object.Members().size() <= kFew) return;
        for (const JsonMember& member : object.Members()) m_members.try_emplace(member.Name(), &member.value);
    }

    const Json* Find(std::string_view name) const {
        if (m_members.empty()) return m_object.Find(name);
        const auto found = m_members.find(name);
        return found != m_members.end() ? found->second : nullptr;
    }

private:
    const Json& m_object;
    std::unordered_map<std::string_view, const Json*> m_members;
};

constexpr gltf::Rule kTexture{"", gltf::Shape::kIndex, Kind::kTexture};

// The rule for a member of an object that is the value of `name`. Textures of materials need no line of their
// own: any "...Texture" with an index is one.
const gltf::Rule* RuleOf(const SchemaNode* below, std::string_view name, const JsonMember& member) {
    if (below != nullptr && below->rule != nullptr) return below->rule;
    return name.ends_with("Texture") && member.Name() == "index" && member.value.IsNumber() ? &kTexture
                                                                                            : nullptr;
}

std::string PlaceOf(Kind kind, std::size_t index) {
    std::string place;
    for (std::string_view name : gltf::Info(kind).Path()) place += Join("/", name);
    return Join(place, "/", index);
}

// Members that other parts of the comparison handle, or that only describe storage.
bool IsDrawnOrLayout(Kind kind, std::string_view name) {
    switch (kind) {
        case Kind::kNode:
            return name == "children" || name == "mesh" || name == "skin" || name == "camera" ||
                   name == "matrix" || name == "translation" || name == "rotation" || name == "scale" ||
                   name == "weights";
        case Kind::kMesh:
            return name == "primitives" || name == "weights";
        case Kind::kAnimation:
            return name == "channels" || name == "samplers";
        case Kind::kImage:
            return true;
        case Kind::kTexture:
        case Kind::kSampler:
            return name == "name";
        default:
            return false;
    }
}

std::string Shown(const Json* json) {
    if (json == nullptr) return "nothing";
    std::string text = gltf::WriteJson(*json, false);
    if (text.size() > 60) text = text.substr(0, 57) + "...";
    return text;
}

}  // namespace

ContentComparison::ContentComparison(const gltf::Document& a, const gltf::Document& b, double tolerance,
                                     SameElement same, OnDifference onDifference)
    : m_a(a),
      m_b(b),
      m_tolerance(tolerance),
      m_same(std::move(same)),
      m_onDifference(std::move(onDifference)) {}

std::size_t ContentComparison::Partner(std::size_t side, Kind kind, std::size_t index) const {
    const auto known = m_partners.find({side, gltf::Ordinal(kind), index});
    return known != m_partners.end() ? known->second : kNone;
}

void ContentComparison::Elements(Kind kind, std::size_t a, std::size_t b) {
    if (!m_compared.insert({gltf::Ordinal(kind), a, b}).second) return;
    m_partners.try_emplace({0, gltf::Ordinal(kind), a}, b);
    m_partners.try_emplace({1, gltf::Ordinal(kind), b}, a);
    const Json& left = m_a.Elements(kind)[a];
    const Json& right = m_b.Elements(kind)[b];
    const std::string place = PlaceOf(kind, a);
    if (kind == Kind::kAccessor) return Accessors(a, b, place);
    if (kind == Kind::kBufferView) {
        const auto x = m_a.ViewBytes(a), y = m_b.ViewBytes(b);
        if (x && y && !std::equal(x->begin(), x->end(), y->begin(), y->end()))
            m_onDifference(place, "other bytes", 1);
        return;
    }
    if (kind == Kind::kImage) {
        const auto x = ImageBytes(m_a, left), y = ImageBytes(m_b, right);
        const bool unknown = x.empty() && y.empty();
        if (unknown) Values(left.Find("uri"), right.Find("uri"), nullptr, place + "/uri");
        if (x != y) m_onDifference(place, "another picture", 1);
        return;
    }
    Members(left, right, SchemaOf(kind), place,
            [kind](std::string_view name) { return IsDrawnOrLayout(kind, name); });
}

void ContentComparison::Values(const Json* a, const Json* b, const SchemaNode* schema,
                               const std::string& place) {
    if (a == nullptr && b == nullptr) return;
    const std::string_view name = std::string_view(place).substr(place.rfind('/') + 1);
    if (a == nullptr || b == nullptr) {
        const Json& present = a != nullptr ? *a : *b;
        if (!IsPlainDefault(name, present)) m_onDifference(place, Join(Shown(a), " and ", Shown(b)), 1);
    } else if (a->IsObject() && b->IsObject()) {
        Members(*a, *b, schema, place, [](std::string_view) { return false; });
    } else if (a->IsArray() && b->IsArray()) {
        if (a->Items().size() != b->Items().size()) {
            m_onDifference(place, Join(a->Items().size(), " and ", b->Items().size(), " items"), 1);
            return;
        }
        const SchemaNode* item = schema != nullptr && !schema->isMap ? schema->item.get() : nullptr;
        for (std::size_t i = 0; i < a->Items().size(); ++i)
            Values(&a->Items()[i], &b->Items()[i], item, Join(place, "/", i));
    } else if (a->IsNumber() && b->IsNumber()) {
        if (schema != nullptr && schema->rule != nullptr && schema->rule->shape == gltf::Shape::kIndex)
            References(*schema->rule, *a, *b, place);
        else if (!MayNameTheSame(*a, *b, place))
            Numbers(a->Number(), b->Number(), place);
    } else if (schema != nullptr && schema->rule != nullptr && gltf::TargetOf(*schema->rule, *a) &&
               gltf::TargetOf(*schema->rule, *b)) {
        References(*schema->rule, *a, *b, place);
    } else if (a->GetType() != b->GetType() || a->String() != b->String()) {
        m_onDifference(place, Join(Shown(a), " and ", Shown(b)), 1);
    }
}

// Numbers of an unknown extension that by their name could be indices of elements that are the same.
bool ContentComparison::MayNameTheSame(const Json& a, const Json& b, const std::string& place) const {
    if (place.find("/extensions/") == std::string::npos) return false;
    std::string_view name = place;
    while (name.find_last_not_of("0123456789") == name.rfind('/')) name = name.substr(0, name.rfind('/'));
    const auto kind = gltf::KindByName(name.substr(name.rfind('/') + 1));
    if (kind != Kind::kNode && kind != Kind::kMaterial && kind != Kind::kAnimation) return false;
    const auto i = a.Index(), j = b.Index();
    return i && j && *i < m_a.Elements(*kind).size() && *j < m_b.Elements(*kind).size() &&
           m_same(*kind, *i, *j);
}

void ContentComparison::Members(const Json& a, const Json& b, const SchemaNode* schema,
                                const std::string& place, const std::function<bool(std::string_view)>& skip) {
    const std::string_view parent = std::string_view(place).substr(place.rfind('/') + 1);
    const auto compare = [&](const JsonMember& member, const Json* left, const Json* right) {
        const std::string_view name = member.Name();
        if (skip(name)) return;
        const std::string at = Join(place, "/", name);
        const gltf::Rule* rule = RuleOf(Below(schema, parent, name), parent, member);
        if (rule == &kTexture && left != nullptr && right != nullptr && left->IsNumber() && right->IsNumber())
            References(*rule, *left, *right, at);
        else
            Values(left, right, Below(schema, parent, name), at);
    };
    const MemberIndex inA(a), inB(b);
    for (const JsonMember& member : a.Members()) compare(member, &member.value, inB.Find(member.Name()));
    for (const JsonMember& member : b.Members())
        if (inA.Find(member.Name()) == nullptr) compare(member, nullptr, &member.value);
}

void ContentComparison::References(const gltf::Rule& rule, const Json& a, const Json& b,
                                   const std::string& place) {
    const auto left = gltf::TargetOf(rule, a), right = gltf::TargetOf(rule, b);
    if (!left || !right || left->kind != right->kind) {
        if (left || right) m_onDifference(place, Join(Shown(&a), " and ", Shown(&b)), 1);
        return;
    }
    if (left->kind == Kind::kBuffer) return;
    if (!IsOwn(left->kind)) {
        if (rule.shape == gltf::Shape::kPointer) return;
        return Elements(left->kind, left->index, right->index);
    }
    if (!m_same(left->kind, left->index, right->index))
        m_onDifference(place, Join("another ", gltf::Info(left->kind).noun), 1);
}

void ContentComparison::Accessors(std::size_t a, std::size_t b, const std::string& place) {
    if (!gltf::HasData(m_a, a) || !gltf::HasData(m_b, b)) return;
    const std::vector<float> x = gltf::ReadFloats(m_a, a), y = gltf::ReadFloats(m_b, b);
    if (x.size() != y.size()) {
        m_onDifference(place, Join(x.size(), " and ", y.size(), " numbers"), 1);
        return;
    }
    double greatest = 0;
    for (std::size_t i = 0; i < x.size(); ++i)
        greatest = std::max(greatest, ValueDifference(static_cast<double>(x[i]), static_cast<double>(y[i])));
    if (greatest > m_tolerance) m_onDifference(place, "other values", greatest);
}

void ContentComparison::Numbers(double a, double b, const std::string& place) {
    const double difference = ValueDifference(a, b);
    if (difference > m_tolerance) m_onDifference(place, Join(Short(a, 9), " and ", Short(b, 9)), difference);
}

}  // namespace zr::compare
