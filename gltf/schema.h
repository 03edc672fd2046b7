// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "gltf/kinds.h"

namespace zr::gltf {

// What a property holds.
enum class Shape : std::uint8_t {
    kAny,
    kIndex,    // index of an element of Rule::kind
    kPointer,  // JSON pointer text into the document ("/nodes/3/translation")
    kString,
    kBool,
    kNumber,
    kCount,    // whole number, at least 0
    kNumbers,  // array of Rule::count numbers; 0: of any length
    kObject,
    kArray,  // with at least one item
};

// What is removed when the target of a reference is removed.
enum class Cut : std::uint8_t {
    kNothing,  // the reference must not lose its element
    kValue,    // the value itself: a member, or an item of an array
    kHolder,   // the object or array that holds the value
    kChannel,  // the animation channel that contains the value
};

// One line of the table of a document's properties.
//   path: members from the root, "[]" for each item, "{}" for each member of an object, "!" when required;
//   a path that begins with "*" applies wherever the extension it names occurs.
struct Rule {
    const char* path;
    Shape shape = Shape::kAny;
    Kind kind = Kind::kCount;
    Cut cut = Cut::kNothing;
    std::uint8_t count = 0;
};

std::span<const Rule> CoreRules();
std::span<const Rule> ExtensionRules();
// Extensions that hold no index of a core element beyond what the rules say. Sorted.
std::span<const std::string_view> KnownExtensions();

// The rules as a tree that is walked in step with a document.
struct SchemaNode {
    struct Child {
        std::string_view name;
        bool required = false;
        std::unique_ptr<SchemaNode> node;
    };

    const Rule* rule = nullptr;
    std::vector<Child> members;
    std::unique_ptr<SchemaNode>
        item;  // for every item of an array, or every member of an object used as a map
    bool isMap = false;
    Kind element = Kind::kCount;  // the kind that each of these is an element of
    KindSet named;                // by references here or below; all kinds above a collection of elements
    KindSet namedPlainly;         // by references here or below that are not in an extension

    const SchemaNode* Find(std::string_view name) const;
};

// The tree of all rules; built once, lives as long as the program.
const SchemaNode& Schema();
// The rules for `extension` at places that no rule names ("*"), or null.
const SchemaNode* AnywhereSchema(std::string_view extension);
bool IsKnownExtension(std::string_view extension);

}  // namespace zr::gltf
