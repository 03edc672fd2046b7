// SPDX-License-Identifier: MIT
#include "app/operations/compare/content.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/kind_by_name.h"
#include "gltf/members.h"
#include "gltf/uri.h"
#include "gltf/walk.h"

namespace zr::compare {

using gltf::IndexMember;
using gltf::Json;
using gltf::JsonMember;
using gltf::Kind;
using gltf::SchemaNode;

namespace {

// Default values of missing members in the format. Names with several meanings have several lines.
struct Default {
    std::string_view name;
    std::string_view text;
};
constexpr Default kDefaults[] = {
    {"doubleSided", "false"},
    {"alphaMode", "\"OPAQUE\""},
    {"alphaCutoff", "0.5"},
    {"baseColorFactor", "[1,1,1,1]"},
    {"metallicFactor", "1"},
    {"roughnessFactor", "1"},
    {"emissiveFactor", "[0,0,0]"},
    {"texCoord", "0"},
    {"strength", "1"},
    {"scale", "1"},
    {"scale", "[1,1]"},
    {"offset", "[0,0]"},
    {"rotation", "0"},
    {"wrapS", "10497"},
    {"wrapT", "10497"},
    {"intensity", "1"},
    {"color", "[1,1,1]"},
    {"innerConeAngle", "0"},
    {"outerConeAngle", "0.785398185"},
    {"visible", "true"},
    {"selectable", "true"},
    {"emissiveStrength", "1"},
    {"ior", "1.5"},
    {"transmissionFactor", "0"},
    {"pbrMetallicRoughness", "{}"},
    {"extras", "{}"},
    {"extensions", "{}"},
};

void WriteNumber(double number, std::string& text) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.9g", static_cast<double>(static_cast<float>(number)));
    text += digits;
}

bool IsDefault(std::string_view name, std::string_view text) {
    return std::any_of(std::begin(kDefaults), std::end(kDefaults),
                       [&](const Default& known) { return known.name == name && known.text == text; });
}

void WritePlain(const Json& json, std::string& text) {
    if (json.IsNumber()) return WriteNumber(json.Number(), text);
    if (!json.IsArray() || !std::all_of(json.Items().begin(), json.Items().end(),
                                        [](const Json& item) { return item.IsNumber(); })) {
        text += gltf::WriteJson(json, false);
        return;
    }
    text += '[';
    for (const Json& item : json.Items()) {
        if (text.back() != '[') text += ',';
        WriteNumber(item.Number(), text);
    }
    text += ']';
}

bool IsPlainDefault(std::string_view name, const Json& json) {
    std::string text;
    WritePlain(json, text);
    return IsDefault(name, text);
}

constexpr gltf::Rule kTexture{"", gltf::Shape::kIndex, Kind::kTexture};

// The rule for a member of an object that is the value of `name`. Textures of materials need no line of their
// own: any "...Texture" with an index is one.
const gltf::Rule* RuleOf(const SchemaNode* below, std::string_view name, const JsonMember& member) {
    if (below != nullptr && below->rule != nullptr) return below->rule;
    return name.ends_with("Texture") && member.Name() == "index" && member.value.IsNumber() ? &kTexture
                                                                                            : nullptr;
}

const SchemaNode* Below(const SchemaNode* schema, std::string_view parent, std::string_view name) {
    const SchemaNode* below = schema != nullptr ? schema->Find(name) : nullptr;
    return below == nullptr && parent == "extensions" ? gltf::AnywhereSchema(name) : below;
}

const SchemaNode* SchemaOf(Kind kind) {
    const SchemaNode* schema = &gltf::Schema();
    for (std::string_view name : gltf::Info(kind).Path())
        if (schema != nullptr) schema = schema->Find(name);
    return schema != nullptr ? schema->item.get() : nullptr;
}

std::size_t Hash(const void* bytes, std::size_t size) {
    return std::hash<std::string_view>()({static_cast<const char*>(bytes), size});
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

// Elements that are compared as themselves and not as part of what refers to them.
bool IsOwn(Kind kind) {
    return kind == Kind::kScene || kind == Kind::kNode || kind == Kind::kMesh || kind == Kind::kMaterial ||
           kind == Kind::kAnimation || kind == Kind::kVariant;
}

std::string Shown(const Json* json) {
    if (json == nullptr) return "nothing";
    std::string text = gltf::WriteJson(*json, false);
    if (text.size() > 60) text = text.substr(0, 57) + "...";
    return text;
}

}  // namespace

double ValueDifference(double a, double b) {
    const double difference = std::abs(a - b) / std::max({1.0, std::abs(a), std::abs(b)});
    return std::isfinite(difference) ? difference
                                     : (a == b || (std::isnan(a) && std::isnan(b)) ? 0 : HUGE_VAL);
}

std::vector<std::byte> ImageBytes(const gltf::Document& document, const Json& image) {
    const auto copy = [](Bytes bytes) { return std::vector<std::byte>(bytes.begin(), bytes.end()); };
    if (image.Find("bufferView") != nullptr) {
        const auto bytes = document.ViewBytes(IndexMember(image, "bufferView"));
        return bytes ? copy(*bytes) : std::vector<std::byte>();
    }
    const std::string_view uri = image.Find("uri") != nullptr ? image.Find("uri")->String() : "";
    if (gltf::IsDataUri(uri)) return gltf::DecodeDataUri(uri).value_or(std::vector<std::byte>());
    try {
        const auto path = document.FileOf(uri, "");
        return path ? copy(ReadFile(document.Folder() / *path).View()) : std::vector<std::byte>();
    } catch (const zr::Error&) {
        return {};
    }
}

const std::string& Canonical::Of(Kind kind, std::size_t index) {
    const auto [known, isNew] = m_known[gltf::Ordinal(kind)].try_emplace(index);
    if (!isNew) return known->second;
    const Json& json = m_document.Elements(kind)[index];
    std::string text;
    if (kind == Kind::kAccessor) {
        if (gltf::HasData(m_document, index)) {
            const std::vector<float> values = gltf::ReadFloats(m_document, index);
            text = Join(values.size(), ":", Hash(values.data(), values.size() * sizeof(float)));
        }
    } else if (kind == Kind::kBufferView) {
        if (const auto bytes = m_document.ViewBytes(index))
            text = Join(bytes->size(), ":", Hash(bytes->data(), bytes->size()));
    } else if (kind == Kind::kImage) {
        const std::vector<std::byte> bytes = ImageBytes(m_document, json);
        const Json* uri = json.Find("uri");
        text = bytes.empty() && uri != nullptr ? std::string(uri->String().substr(0, 200))
                                               : Join(bytes.size(), ":", Hash(bytes.data(), bytes.size()));
    } else {
        Write(json, SchemaOf(kind), "", text);
    }
    return known->second = std::move(text);
}

std::string Canonical::NameOf(const gltf::Target& target) const {
    const auto elements = m_document.Elements(target.kind);
    return target.index < elements.size() ? std::string(gltf::NameOf(elements[target.index])) : std::string();
}

void Canonical::Write(const Json& json, const SchemaNode* schema, std::string_view name, std::string& text) {
    if (json.IsObject()) {
        text += '{';
        WriteMembers(json, schema, text);
        text += '}';
    } else if (json.IsArray() && schema != nullptr) {
        text += '[';
        for (const Json& item : json.Items()) {
            Write(item, schema->isMap ? nullptr : schema->item.get(), name, text);
            text += ',';
        }
        text += ']';
    } else if (schema != nullptr && schema->rule != nullptr && gltf::TargetOf(*schema->rule, json)) {
        const auto target = gltf::TargetOf(*schema->rule, json);
        text += '(' + (IsOwn(target->kind) ? NameOf(*target) : Of(target->kind, target->index)) + ')';
    } else {
        WritePlain(json, text);
    }
}

void Canonical::WriteMembers(const Json& object, const SchemaNode* schema, std::string& text) {
    std::vector<std::pair<std::string_view, std::string>> members;
    for (const JsonMember& member : object.Members()) {
        const std::string_view name = member.Name();
        if (name == "name" && m_names == Names::kIgnore) continue;
        std::string value;
        const SchemaNode* below = Below(schema, "extensions", name);
        if (name.ends_with("Texture") && member.value.Find("index") != nullptr &&
            member.value.Find("index")->Index()) {
            value = '(' + Of(Kind::kTexture, *member.value.Find("index")->Index()) + ')';
            for (const JsonMember& part : member.value.Members()) {
                if (part.Name() == "index" || IsPlainDefault(part.Name(), part.value)) continue;
                value += Join(part.Name(), ":");
                Write(part.value, nullptr, part.Name(), value);
            }
        } else {
            Write(member.value, below, name, value);
        }
        if (!IsDefault(name, value)) members.emplace_back(name, std::move(value));
    }
    std::sort(members.begin(), members.end());
    for (const auto& [name, value] : members) text += Join("\"", name, "\":", value, ",");
}

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
    if (!m_compared.try_emplace({gltf::Ordinal(kind), a, b}, true).second) return;
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
    for (const JsonMember& member : a.Members()) compare(member, &member.value, b.Find(member.Name()));
    for (const JsonMember& member : b.Members())
        if (a.Find(member.Name()) == nullptr) compare(member, nullptr, &member.value);
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
    if (difference <= m_tolerance) return;
    char text[80];
    std::snprintf(text, sizeof text, "%.9g and %.9g", a, b);
    m_onDifference(place, text, difference);
}

}  // namespace zr::compare
