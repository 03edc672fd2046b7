// SPDX-License-Identifier: MIT
#include "host/xml.h"

#include <exception>
#include <rapidxml/rapidxml.hpp>

namespace vl::xml {

struct ElementBuilder {
    // Fills root from the parsed tree, without recursion.
    static void Fill(const rapidxml::xml_node<>& tree, Element& root) {
        std::vector<std::pair<const rapidxml::xml_node<>*, Element*>> open = {{&tree, &root}};
        while (!open.empty()) {
            const auto [node, element] = open.back();
            open.pop_back();
            element->m_name.assign(node->name(), node->name_size());
            for (auto* a = node->first_attribute(); a != nullptr; a = a->next_attribute()) {
                element->m_attributes.emplace_back(std::string(a->name(), a->name_size()),
                                                   std::string(a->value(), a->value_size()));
            }
            std::vector<const rapidxml::xml_node<>*> children;
            for (auto* child = node->first_node(); child != nullptr; child = child->next_sibling()) {
                if (child->type() == rapidxml::node_element) children.push_back(child);
            }
            element->m_children.resize(children.size());
            for (std::size_t i = 0; i < children.size(); ++i) {
                open.emplace_back(children[i], &element->m_children[i]);
            }
        }
    }
};

namespace {

// The parser recurses once for every level of nesting.
constexpr int kMaxDepth = 200;

bool IsTooDeep(const std::string& text) {
    int depth = 0;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] != '<') continue;
        depth += text[i + 1] == '/' ? -1 : text[i + 1] == '?' || text[i + 1] == '!' ? 0 : 1;
        const std::size_t end = text.find('>', i);
        if (end != std::string::npos && text[end - 1] == '/' && text[i + 1] != '/') --depth;
        if (depth > kMaxDepth) return true;
    }
    return false;
}

}  // namespace

Element::Element() = default;
Element::~Element() = default;
Element::Element(Element&&) noexcept = default;
Element& Element::operator=(Element&&) noexcept = default;

ResultEnum Element::Load(Stream* stream) {
    if (stream == nullptr) return kCannotOpen;
    try {
        std::string text(stream->GetSize(), '\0');
        text.resize(stream->Read(text.data(), text.size()));
        if (IsTooDeep(text)) return kCannotOpen;
        rapidxml::xml_document<> document;
        document.parse<rapidxml::parse_validate_closing_tags>(text.data());
        const auto* root = document.first_node();
        while (root != nullptr && root->type() != rapidxml::node_element) root = root->next_sibling();
        if (root == nullptr) return kCannotOpen;
        Element loaded;
        ElementBuilder::Fill(*root, loaded);
        *this = std::move(loaded);
        return kSuccess;
    } catch (const std::exception&) {
        return kCannotOpen;
    }
}

const std::string* Element::FindAttribute(const std::string& name) const {
    for (const auto& [key, value] : m_attributes) {
        if (key == name) return &value;
    }
    return nullptr;
}

const Element* Element::FindChild(const std::string& name) const {
    for (const Element& child : m_children) {
        if (child.m_name == name) return &child;
    }
    return nullptr;
}

}  // namespace vl::xml
