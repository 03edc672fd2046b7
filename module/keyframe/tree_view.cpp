// SPDX-License-Identifier: MIT
#include "module/keyframe/tree_view.h"

#include <array>
#include <vector>

#include "host/kinds.h"
#include "host/node.h"
#include "host/object.h"
#include "module/frame/globals.h"
#include "module/keyframe/keyframe_tool.h"

namespace zrt {
namespace {

using Records = vl::ArrayOf<const ExportNode*>;

struct FlagLabel {
    std::uint32_t flag;
    const char* label;
};

constexpr FlagLabel kFlagLabels[] = {
    {NF_GROUP, "group|"},
    {NF_ADDED, "add|"},
    {NF_PIVOT, "Pivot|"},
    {NF_GEOMETRY, "Geometry|"},
    {NF_POST, "POST|"},
    {NF_CAMERA_TARGET, "camera target|"},
    {NF_LIGHT_TARGET, "light target|"},
};

const char* TypeLabel(const ExportNode& record) {
    if (!record.pNode || !record.pNode->m_pObject) return "NULL";
    switch (record.pNode->m_pObject->GetType()) {
        case vl::zr::kTypeObject:
            return "Object 3d";
        case vl::zr::kTypeLight:
            return "Light";
        case vl::zr::kTypeCamera:
            return "Camera";
        case vl::zr::kTypeDummy:
            return "Dummy";
        case vl::zr::kTypeBone:
            return "Bone";
        case vl::zr::kTypeModifier:
            return "Modifier";
        default:
            return "Unknown";
    }
}

void AppendKeyCount(std::string& label, const char* track, const vl::Array* keys) {
    if (keys) label.append(track).append(std::to_string(keys->m_nCount));
}

// Drops a multi-byte character as a whole.
void CutLabel(std::string& label) {
    if (label.size() <= kMaxTreeLabel) return;
    const auto continues = [&label](std::size_t i) {
        return (static_cast<unsigned char>(label[i]) & 0xC0) == 0x80;
    };
    std::size_t end = kMaxTreeLabel;
    while (kMaxTreeLabel - end < 3 && continues(end)) --end;
    label.resize(end);
}

// Records whose items are still to be inserted, and the item that they go under.
struct Pending {
    vl::Array* records;
    int next;
    HTREEITEM parent;
};

}  // namespace

std::string TreeLabel(const ExportNode& record) {
    std::string label;
    if (record.szName) label.append(record.szName).append(" |<");
    label += '[';
    for (const FlagLabel& entry : kFlagLabels) {
        if (record.dwFlags & entry.flag) label += entry.label;
    }
    if (label.back() == '|') label.pop_back();
    label += ']';
    if (record.pController) {
        label += "[Animation:";
        AppendKeyCount(label, " r:", record.pRotKeys);
        AppendKeyCount(label, " t:", record.pPosKeys);
        AppendKeyCount(label, " s:", record.pScaleKeys);
        label += ']';
    }
    label += TypeLabel(record);
    if (record.pNode) {
        constexpr int kDescription = 200;
        std::array<char, kDescription + 1> description{};
        record.pNode->GetDescription(description.data(), kDescription);
        label.append(" [").append(description.data()).append("]");
    }
    CutLabel(label);
    return label;
}

void AddTreeItems(HWND tree, HTREEITEM parent, vl::Array* records) {
    std::vector<Pending> stack{{records, 0, parent}};
    while (!stack.empty()) {
        Pending& top = stack.back();
        const Records siblings(top.records);
        if (top.next >= siblings.Count()) {
            stack.pop_back();
            continue;
        }
        const ExportNode& record = *siblings[top.next++];
        std::string label = TreeLabel(record);
        TVINSERTSTRUCTA insert{};
        insert.hParent = top.parent;
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT | TVIF_IMAGE | TVIF_PARAM | TVIF_SELECTEDIMAGE;
        insert.item.pszText = label.data();
        const LRESULT item = SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert));
        if (record.pChildren) stack.push_back({record.pChildren, 0, reinterpret_cast<HTREEITEM>(item)});
    }
}

}  // namespace zrt

int ZR_TK::FillTreeView(HWND tree, int) try {
    if (!m_pRoots) return 0;
    if (!tree) {
        tree = CreateWindowExA(WS_EX_CLIENTEDGE, "SysTreeView32", " ZR_TK::FillTreeView ",
                               WS_VISIBLE | WS_OVERLAPPEDWINDOW | TVS_HASBUTTONS | TVS_HASLINES |
                                   TVS_LINESATROOT | TVS_SHOWSELALWAYS,
                               CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT,
                               g_pHost->GetMainWindow(0), nullptr, g_hModule, nullptr);
    }
    if (tree) zrt::AddTreeItems(tree, TVI_ROOT, m_pRoots);
    return 1;
} catch (...) {
    return 0;
}
