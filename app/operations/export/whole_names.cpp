// SPDX-License-Identifier: MIT
#include "app/operations/export/whole_names.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/material_name.h"
#include "host/text.h"

namespace zr {
namespace {

// The number of elements of the first character; 0 if it is incomplete. The text was valid before it was cut.
std::size_t FirstCharacter(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    const std::size_t size = lead < 0x80 ? 1 : lead < 0xC0 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (size > text.size()) return 0;
    const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    return std::all_of(text.begin() + 1,
                       text.begin() + static_cast<std::ptrdiff_t>(std::max<std::size_t>(size, 1)), continues)
               ? size
               : 0;
}

std::size_t FirstCharacter(std::u16string_view text) {
    const auto is = [&text](std::size_t at, char16_t first) {
        return at < text.size() && text[at] >= first && text[at] < first + 0x400;
    };
    if (is(0, 0xD800)) return is(1, 0xDC00) ? 2 : 0;
    return is(0, 0xDC00) ? 0 : 1;
}

// The complete characters of a text, as many as fit into `size` elements.
template <typename Char>
std::basic_string<Char> Whole(std::basic_string_view<Char> text, std::size_t size) {
    std::basic_string<Char> whole;
    while (!text.empty()) {
        const std::size_t character = FirstCharacter(text);
        if (whole.size() + character > size) break;
        whole += text.substr(0, character);
        text.remove_prefix(std::max<std::size_t>(character, 1));
    }
    return whole;
}

// Names of one kind, in buffers for at least `limit` elements and a terminator.
template <typename Char>
class Names {
public:
    Names(std::vector<Char*> names, int limit, bool differ, bool exactCase)
        : m_names(std::move(names)),
          m_limit(static_cast<std::size_t>(limit)),
          m_differ(differ),
          m_exactCase(exactCase) {}

    void MakeWhole() {
        std::vector<Char*> cut;
        for (Char* name : m_names) {
            const std::basic_string_view<Char> text(name);
            if (Whole(text, text.size()).size() != text.size())
                cut.push_back(name);
            else if (m_differ)
                m_taken.insert(Folded(Text(text)));
        }
        for (Char* name : cut) {
            const std::basic_string_view<Char> text(name);
            Text whole = Whole(text, text.size());
            if (m_differ) whole = Unique(whole);
            *std::copy(whole.begin(), whole.end(), name) = 0;
        }
    }

private:
    using Text = std::basic_string<Char>;

    // The text, with a number at its end if another name is the same.
    Text Unique(const Text& text) {
        Text unique = text;
        std::size_t& number = m_numbers[Folded(text)];
        while (unique.empty() || !m_taken.insert(Folded(unique)).second) {
            const std::string digits = std::to_string(++number);
            if (digits.size() > m_limit) break;
            unique = Whole<Char>(text, m_limit - digits.size()) + Text(digits.begin(), digits.end());
        }
        return unique;
    }

    Text Folded(Text text) const {
        if (!m_exactCase) std::transform(text.begin(), text.end(), text.begin(), vl::FoldCase<Char>);
        return text;
    }

    std::vector<Char*> m_names;
    std::size_t m_limit;
    bool m_differ;
    bool m_exactCase;
    std::unordered_set<Text> m_taken;
    std::unordered_map<Text, std::size_t> m_numbers;  // the last one tried
};

template <typename Char>
void MakeWhole(vl::tk::Serializer& tool, Char* ExportNode::*ofRecord, Char* MaterialName::*ofMaterial) {
    const bool exactCase = (tool.m_dwNameFlags & vl::tk::kNamesExactCase) != 0;
    std::vector<Char*> records, materials;
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(tool.m_pAllNodes))
        if (record->*ofRecord != nullptr) records.push_back(record->*ofRecord);
    for (MaterialName* material : vl::ArrayOf<MaterialName*>(tool.m_pMaterialNames))
        if (material->*ofMaterial != nullptr) materials.push_back(material->*ofMaterial);
    const bool differ = (tool.m_dwNameFlags & vl::tk::kNamesUnique) != 0;
    Names<Char>(std::move(records), std::clamp(tool.m_nMaxNameLength, 4, 512), differ, exactCase).MakeWhole();
    Names<Char>(std::move(materials), tool.m_nMaxMaterialNameLength, true, false).MakeWhole();
}

}  // namespace

void MakeNamesWhole(const Tool& tool) {
    if ((tool->m_dwNameFlags & vl::tk::kNamesWide) != 0)
        MakeWhole(*tool.Get(), &ExportNode::wszName, &MaterialName::wszName);
    else
        MakeWhole(*tool.Get(), &ExportNode::szName, &MaterialName::szName);
}

}  // namespace zr
