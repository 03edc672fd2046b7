// SPDX-License-Identifier: MIT
#include "gltf/schema.h"

#include <algorithm>

#include "gltf/json.h"

namespace zr::gltf {
namespace {

struct Trees {
    SchemaNode root;
    SchemaNode anywhere;
};

SchemaNode& Member(SchemaNode& parent, std::string_view name, bool required) {
    for (SchemaNode::Child& child : parent.members) {
        if (child.name != name) continue;
        child.required |= required;
        return *child.node;
    }
    parent.members.push_back({name, required, std::make_unique<SchemaNode>()});
    return *parent.members.back().node;
}

void Insert(SchemaNode& root, std::string_view path, const Rule& rule) {
    const bool required = path.ends_with('!');
    if (required) path.remove_suffix(1);
    SchemaNode* at = &root;
    while (!path.empty()) {
        if (path.starts_with('.')) path.remove_prefix(1);
        if (path.starts_with("[]") || path.starts_with("{}")) {
            if (!at->item) at->item = std::make_unique<SchemaNode>();
            at->isMap = path.front() == '{';
            at = at->item.get();
            path.remove_prefix(2);
        } else {
            const std::string_view name = path.substr(0, path.find_first_of(".[{"));
            path.remove_prefix(name.size());
            at = &Member(*at, name, required && path.empty());
        }
    }
    at->rule = &rule;
}

// Sets SchemaNode::named and namedPlainly of a node and all below it.
void NoteNamed(SchemaNode& node) {
    const Rule* const rule = node.rule;
    if (rule != nullptr && rule->shape == Shape::kIndex) node.named.Add(rule->kind);
    if (rule != nullptr && rule->shape == Shape::kPointer) node.named = KindSet::All();
    node.namedPlainly = node.named;
    for (SchemaNode::Child& child : node.members) {
        NoteNamed(*child.node);
        node.named.Add(child.node->named);
        if (child.name != kExtensions) node.namedPlainly.Add(child.node->namedPlainly);
    }
    if (!node.item) return;
    NoteNamed(*node.item);
    node.named.Add(node.item->element != Kind::kCount ? KindSet::All() : node.item->named);
    node.namedPlainly.Add(node.item->namedPlainly);
}

Trees Build() {
    constexpr std::string_view kAnywhere = "*.extensions.";
    Trees trees;
    for (std::span<const Rule> rules : {CoreRules(), ExtensionRules()}) {
        for (const Rule& rule : rules) {
            const std::string_view path = rule.path;
            if (path.starts_with(kAnywhere))
                Insert(trees.anywhere, path.substr(kAnywhere.size()), rule);
            else
                Insert(trees.root, path, rule);
        }
    }
    for (std::size_t i = 0; i < kKinds; ++i) {
        SchemaNode* at = &trees.root;
        for (std::string_view name : kKindInfo[i].Path()) at = &Member(*at, name, false);
        if (!at->item) at->item = std::make_unique<SchemaNode>();
        at->item->element = static_cast<Kind>(i);
    }
    NoteNamed(trees.root);
    NoteNamed(trees.anywhere);
    // Materials may hold texture infos under names that no rule knows.
    Member(trees.root, "materials", false).namedPlainly.Add(Kind::kTexture);
    return trees;
}

const Trees& All() {
    static const Trees trees = Build();
    return trees;
}

}  // namespace

const SchemaNode* SchemaNode::Find(std::string_view name) const {
    if (isMap) return item.get();
    // Most names differ in length or in the first character.
    for (const Child& child : members) {
        if (child.name.size() == name.size() && child.name[0] == name[0] && child.name == name)
            return child.node.get();
    }
    return nullptr;
}

const SchemaNode& Schema() {
    return All().root;
}

const SchemaNode* AnywhereSchema(std::string_view extension) {
    return All().anywhere.Find(extension);
}

bool IsKnownExtension(std::string_view extension) {
    const auto known = KnownExtensions();
    return std::binary_search(known.begin(), known.end(), extension);
}

}  // namespace zr::gltf
