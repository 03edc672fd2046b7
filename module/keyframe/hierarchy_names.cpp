// SPDX-License-Identifier: MIT
#include "module/keyframe/hierarchy_names.h"

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <vector>

#include "host/node.h"
#include "host/object.h"
#include "host/text.h"
#include "module/frame/globals.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/name_text.h"

namespace zrt {

namespace {

constexpr int kNodeNameBuffer = 256;

template <typename Char>
Char*& NameOf(ExportNode& record) {
    if constexpr (std::is_same_v<Char, char>) {
        return record.szName;
    } else {
        return record.wszName;
    }
}

template <typename Char>
const Char* NameOf(vl::Word record) {
    return NameOf<Char>(*vl::FromWord<ExportNode*>(record));
}

// The most characters of a name that stay before its number, whatever the maximum length.
template <typename Char>
constexpr int kNumberedBaseLimit = std::is_same_v<Char, char> ? 510 : 511;

void CopyDefault(char* name, const char* text, int maxLength) {
    CopyNameBounded(name, text, static_cast<std::size_t>(maxLength) + 1);
}
void CopyDefault(char16_t* name, const char* text, int maxLength) {
    AtoWex(text, name, maxLength);
}

void ReadNodeName(vl::zr::Node& node, char (&name)[kNodeNameBuffer]) {
    node.GetName(name, kNodeNameBuffer);
}
void ReadNodeName(vl::zr::Node& node, char16_t (&name)[kNodeNameBuffer]) {
    node.GetNameW(name, kNodeNameBuffer);
}

// Names one record. index: its position among all.
template <typename Char>
void NameRecord(ZR_TK& tool, ExportNode& record, int index, const char* defaultName) {
    const int maxLength = tool.NameLimit();
    const auto size = static_cast<std::size_t>(maxLength) + 1;
    Char*& name = NameOf<Char>(record);
    delete[] name;  // perhaps of another length
    name = nullptr;
    name = new Char[size]();
    if (record.pNode == nullptr) {
        CopyDefault(name, defaultName, maxLength);
        return;
    }

    Char nodeName[kNodeNameBuffer] = {};
    ReadNodeName(*record.pNode, nodeName);
    if (nodeName[0] != 0) {
        SanitizeName(nodeName, tool.m_dwNameFlags);
        CopyNameBounded<Char>(name, nodeName, size);
    } else {
        std::basic_string<Char> candidate(defaultName, defaultName + std::strlen(defaultName));
        vl::zr::Object3D* object = record.pNode->m_pObject;
        if (object != nullptr && object->IsKindOf(vl::zr::kKindRenderable)) candidate += Decimal<Char>(index);
        CopyNameBounded<Char>(name, candidate.c_str(), size);
    }

    Rename(tool, record.pNode, name, size);
}

const char* DefaultName(const ZR_TK& tool, const ExportNode& record) {
    if ((record.dwFlags & NF_STATICPIVOT) != 0) return "Axis";
    if ((record.dwFlags & NF_PIVOT) != 0) return "Pvt";
    if ((record.dwFlags & NF_GROUP) != 0 && (tool.m_dwExportFlags & vl::tk::kGeometrySplit) != 0)
        return "Frm";
    vl::zr::Object3D* object = record.pNode != nullptr ? record.pNode->m_pObject : nullptr;
    if (object != nullptr) {
        if (object->IsKindOf(vl::zr::kKindCamera)) {
            return record.pNode == tool.m_pScene->GetDefaultCameraNode() ? "DefCamera" : "camera";
        }
        if (object->IsKindOf(vl::zr::kKindLight)) return "light";
        if (object->IsKindOf(vl::zr::kKindDummy)) return "dummy";
        if (object->IsKindOf(vl::zr::kKindBone)) return "bone";
    }
    return tool.NameLimit() >= 12 ? "object" : "obj";
}

template <typename Char>
void EnterName(UniqueNames& names, ExportNode& record, int maxLength) {
    Char* name = NameOf<Char>(record);
    const std::u16string entered = names.Enter(ToUnits(name), maxLength, kNumberedBaseLimit<Char>);
    const std::basic_string<Char> text(entered.begin(), entered.end());
    CopyNameBounded<Char>(name, text.c_str(), static_cast<std::size_t>(maxLength) + 1);
}

vl::ArrayComparator NameComparator(std::uint32_t nameFlags) {
    const bool exact = (nameFlags & vl::tk::kNamesExactCase) != 0;
    if ((nameFlags & vl::tk::kNamesWide) != 0) {
        return exact ? CompareNamesExact<char16_t> : CompareNamesNoCase<char16_t>;
    }
    return exact ? CompareNamesExact<char> : CompareNamesNoCase<char>;
}

}  // namespace

template <typename Char>
int CompareNamesExact(vl::Word a, vl::Word b, void*) {
    using Unsigned = std::conditional_t<std::is_same_v<Char, char>, unsigned char, char16_t>;
    const Char* nameA = NameOf<Char>(a);
    const Char* nameB = NameOf<Char>(b);
    for (;; ++nameA, ++nameB) {
        const auto ca = static_cast<Unsigned>(*nameA);
        const auto cb = static_cast<Unsigned>(*nameB);
        if (ca != cb) return ca < cb ? -1 : 1;
        if (ca == 0) return 0;
    }
}

template <typename Char>
int CompareNamesNoCase(vl::Word a, vl::Word b, void*) {
    return vl::CompareNoCase(NameOf<Char>(a), NameOf<Char>(b));
}

template int CompareNamesExact<char>(vl::Word, vl::Word, void*);
template int CompareNamesExact<char16_t>(vl::Word, vl::Word, void*);
template int CompareNamesNoCase<char>(vl::Word, vl::Word, void*);
template int CompareNamesNoCase<char16_t>(vl::Word, vl::Word, void*);

}  // namespace zrt

int ZR_TK::RunAssignNames() {
    using namespace zrt;
    if (m_nMaxNameLength != NameLimit()) g_pHost->ReportError(1, "Invalid maxname");
    const vl::ArrayOf<ExportNode*> all(m_pAllNodes);
    if (all.IsEmpty()) return 0;

    const bool wide = (m_dwNameFlags & vl::tk::kNamesWide) != 0;
    std::vector<ExportNode*> records(all.begin(), all.end());
    for (std::size_t i = 0; i < records.size(); ++i) {
        ExportNode& record = *records[i];
        const auto nameRecord = wide ? NameRecord<char16_t> : NameRecord<char>;
        nameRecord(*this, record, static_cast<int>(i), DefaultName(*this, record));
    }

    if ((m_dwNameFlags & vl::tk::kNamesUnique) != 0) {
        const vl::ArrayComparator compare = NameComparator(m_dwNameFlags);
        auto table = vl::Ref<vl::Array>::AdoptNew(g_pHost->CreateSortedArray(compare));
        if (m_pNameTable != nullptr) m_pNameTable->Release();
        m_pNameTable = table.Detach();
        m_uniqueNames.emplace((m_dwNameFlags & vl::tk::kNamesExactCase) != 0);
        const auto enterName = wide ? EnterName<char16_t> : EnterName<char>;
        for (ExportNode* record : records) enterName(*m_uniqueNames, *record, NameLimit());

        // One sort at the end instead of an insertion for each record.
        std::stable_sort(records.begin(), records.end(), [compare](ExportNode* a, ExportNode* b) {
            return compare(vl::ToWord(a), vl::ToWord(b), nullptr) < 0;
        });
        for (ExportNode* record : records) m_pNameTable->Add(vl::ToWord(record));
    }
    return 1;
}

void ZR_TK::MakeUniqueName(ExportNode* record) {
    const bool wide = (m_dwNameFlags & vl::tk::kNamesWide) != 0;
    const auto enterName = wide ? zrt::EnterName<char16_t> : zrt::EnterName<char>;
    enterName(*m_uniqueNames, *record, NameLimit());
    int index = 0;
    m_pNameTable->FindSorted(vl::ToWord(record), &index);
    m_pNameTable->InsertAt(index, vl::ToWord(record));
}
