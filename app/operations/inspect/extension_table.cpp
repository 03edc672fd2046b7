// SPDX-License-Identifier: MIT
#include <map>

#include "app/operations/inspect/inspection.h"
#include "base/text.h"
#include "gltf/schema.h"

namespace zr::inspect {

using gltf::Json;
using gltf::JsonMember;
using gltf::Kind;

namespace {

struct ExtensionUse {
    std::size_t count = 0;
    std::string first;
};

// Counts the members of every "extensions" object. Documents are limited in depth, and with them the
// recursion.
void CollectExtensions(const Json& value, const std::string& place,
                       std::map<std::string, ExtensionUse>& uses) {
    for (std::size_t i = 0; i < value.Items().size(); ++i) {
        const Json& item = value.Items()[i];
        if (item.IsObject() || item.IsArray()) CollectExtensions(item, Join(place, "/", i), uses);
    }
    for (const JsonMember& member : value.Members()) {
        if (member.Name() == "extras" || (!member.value.IsObject() && !member.value.IsArray())) continue;
        const std::string at = Join(place, "/", member.Name());
        if (member.Name() == "extensions")
            for (const JsonMember& extension : member.value.Members()) {
                ExtensionUse& use = uses[std::string(extension.Name())];
                if (use.count++ == 0) use.first = Join(at, "/", extension.Name());
            }
        CollectExtensions(member.value, at, uses);
    }
}

}  // namespace

void AddExtensions(Inspection& in) {
    std::map<std::string, ExtensionUse> uses;
    CollectExtensions(in.document.Root(), "", uses);
    const auto named = [&](const char* list) {
        std::set<std::string> names;
        if (const Json* array = in.document.Root().Find(list))
            for (const Json& name : array->Items()) names.insert(std::string(name.String()));
        return names;
    };
    const std::set<std::string> used = named("extensionsUsed"), required = named("extensionsRequired");
    for (const std::string& name : used) uses.try_emplace(name);
    Table& table = in.Add("extensions", {"extension", "uses", "required", "known", "first"});
    for (const auto& [name, use] : uses) {
        const bool isKnown = gltf::IsKnownExtension(name);
        table.rows.push_back({name, Count(use.count), Yes(required.contains(name)), Yes(isKnown), use.first});
        if (!used.contains(name)) in.Warn(use.first, "the extension is not listed in extensionsUsed");
        if (use.count == 0 && name != "KHR_mesh_quantization")
            in.Warn("/extensionsUsed", Join(name, " is listed but not used"));
        if (!isKnown && use.count > 0)
            in.Warn(use.first, "the extension is unknown: its references cannot be followed");
    }
}

}  // namespace zr::inspect
