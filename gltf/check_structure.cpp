// SPDX-License-Identifier: MIT
#include <charconv>
#include <string>

#include "base/text.h"
#include "gltf/check.h"
#include "gltf/document.h"
#include "gltf/walk.h"

namespace zr::gltf {
namespace {

std::string Wanted(const Rule& rule) {
    switch (rule.shape) {
        case Shape::kAny:
            break;
        case Shape::kIndex:
            return "an index";
        case Shape::kPointer:
        case Shape::kString:
            return "a string";
        case Shape::kBool:
            return "true or false";
        case Shape::kNumber:
            return "a number";
        case Shape::kCount:
            return "a whole number";
        case Shape::kNumbers:
            return rule.count == 0 ? "an array of numbers" : Join("an array of ", rule.count, " numbers");
        case Shape::kObject:
            return "an object";
        case Shape::kArray:
            return "an array with items";
    }
    return "";
}

bool AllNumbers(const Json& value, std::size_t count) {
    if (!value.IsArray() || (count != 0 && value.Items().size() != count)) return false;
    for (const Json& item : value.Items())
        if (!item.IsNumber()) return false;
    return true;
}

bool Fits(const Rule& rule, const Json& value) {
    switch (rule.shape) {
        case Shape::kAny:
            return true;
        case Shape::kIndex:
        case Shape::kCount:
            return value.Index().has_value();
        case Shape::kPointer:
        case Shape::kString:
            return value.IsString();
        case Shape::kBool:
            return value.IsBool();
        case Shape::kNumber:
            return value.IsNumber();
        case Shape::kNumbers:
            return AllNumbers(value, rule.count);
        case Shape::kObject:
            return value.IsObject();
        case Shape::kArray:
            return value.IsArray() && !value.Items().empty();
    }
    return false;
}

class StructureCheck : public Visitor {
public:
    explicit StructureCheck(Document& document) : m_document(document) {
        for (std::size_t i = 0; i < kKinds; ++i) m_counts[i] = document.Elements(static_cast<Kind>(i)).size();
    }

    void Value(const SchemaNode& schema, Json& value, const Place& place) override {
        if (schema.rule != nullptr) Property(*schema.rule, value, place);
        if (!schema.members.empty() || schema.isMap) {
            if (!value.IsObject()) Fail(place, "should be an object");
        } else if (schema.item) {
            if (!value.IsArray()) Fail(place, "should be an array");
        }
        for (const SchemaNode::Child& child : schema.members)
            if (child.required && value.Find(child.name) == nullptr)
                Fail(place, Join("\"", child.name, "\" is missing"));
    }

private:
    void Property(const Rule& rule, const Json& value, const Place& place) {
        if (!Fits(rule, value)) Fail(place, Join("should be ", Wanted(rule)));
        const auto target = TargetOf(rule, value);
        if (!target || target->index < m_counts[Ordinal(target->kind)]) return;
        m_document.Fail(ErrorKind::kReference, place.Pointer(),
                        Join("there is no ", Info(target->kind).noun, " ", target->index));
    }

    [[noreturn]] void Fail(const Place& place, std::string_view text) {
        m_document.Fail(ErrorKind::kStructure, place.Pointer(), text);
    }

    Document& m_document;
    std::array<std::size_t, kKinds> m_counts{};
};

struct Version {
    unsigned major = 0;
    unsigned minor = 0;
};

Version VersionAt(const Document& document, const Json& asset, std::string_view name) {
    const std::string_view text = asset.Find(name)->String();
    Version version;
    const char* const end = text.data() + text.size();
    auto [dot, error] = std::from_chars(text.data(), end, version.major);
    bool good = error == std::errc() && dot != end && *dot == '.';
    if (good) {
        const auto minor = std::from_chars(dot + 1, end, version.minor);
        good = minor.ec == std::errc() && minor.ptr == end;
    }
    if (!good)
        document.Fail(ErrorKind::kVersion, Join("/asset/", name), Join("\"", text, "\" is not a version"));
    return version;
}

void CheckVersion(const Document& document) {
    const Json* asset = document.Root().Find("asset");
    if (asset == nullptr || asset->Find("version") == nullptr || !asset->Find("version")->IsString()) return;
    const Version version = VersionAt(document, *asset, "version");
    if (version.major != 2)
        document.Fail(ErrorKind::kVersion, "/asset/version",
                      Join("version ", version.major, ".x is not supported, only 2.x"));
    const Json* minimum = asset->Find("minVersion");
    if (minimum == nullptr || !minimum->IsString()) return;
    const Version least = VersionAt(document, *asset, "minVersion");
    if (least.major != 2 || least.minor != 0)
        document.Fail(ErrorKind::kVersion, "/asset/minVersion",
                      Join("version ", minimum->String(), " is needed, but only 2.0 is supported"));
}

}  // namespace

void CheckStructure(Document& document) {
    // A wrong version explains all other faults, so it comes first.
    CheckVersion(document);
    StructureCheck check(document);
    Walk(document.Tree(), check);
}

}  // namespace zr::gltf
