// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/result.h"
#include "host/stream.h"

namespace vl::xml {

// One element of an XML document with its attributes and child elements, in document order. Text and
// comments are not kept.
class KERNIX_API Element {
public:
    Element();
    ~Element();
    Element(Element&&) noexcept;
    Element& operator=(Element&&) noexcept;

    // Becomes the root element of the document that the stream holds from its position on. kCannotOpen, with
    // the element unchanged, when that is not a well-formed document, nests deeper than 200 elements, or
    // memory runs out.
    ResultEnum Load(Stream* stream);

    const std::string& GetName() const { return m_name; }
    const std::vector<std::pair<std::string, std::string>>& GetAttributes() const { return m_attributes; }
    const std::string* FindAttribute(const std::string& name) const;  // its value, or null
    const std::vector<Element>& GetChildren() const { return m_children; }
    const Element* FindChild(const std::string& name) const;  // the first of that name, or null

private:
    friend struct ElementBuilder;
    std::string m_name;
    std::vector<std::pair<std::string, std::string>> m_attributes;
    std::vector<Element> m_children;
};

}  // namespace vl::xml
