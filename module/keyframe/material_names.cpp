// SPDX-License-Identifier: MIT
#include "host/material_name.h"

#include <algorithm>
#include <vector>

#include "host/material.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/name_text.h"

namespace zrt {

namespace {

constexpr int kMaxMaterialNameLength = 511;
constexpr int kMaterialNameBuffer = 256;

int ReadName(vl::zr::Material& material, char* buffer) {
    return material.GetName(buffer, kMaterialNameBuffer);
}
int ReadName(vl::zr::Material& material, char16_t* buffer) {
    return material.GetNameW(buffer, kMaterialNameBuffer);
}

// A new buffer with the material's name: cut to the tool's maximum, sanitized, renamed by the callback and
// made unique.
template <typename Char>
Char* NewMaterialName(const ZR_TK& tool, vl::zr::Material& material, NumberedNames& names) {
    constexpr char kDefault[] = "Material";
    Char own[kMaterialNameBuffer] = {};
    if (ReadName(material, own) == 0) std::copy(std::begin(kDefault), std::end(kDefault), own);

    const auto size = static_cast<std::size_t>(tool.m_nMaxMaterialNameLength) + 1;
    std::basic_string<Char> name(size, 0);
    CopyNameBounded<Char>(name.data(), own, size);
    SanitizeName(name.data(), tool.m_dwNameFlags);
    Rename(tool, &material, name.data(), size);

    const std::u16string unique = names.Enter(ToUnits(name.c_str()));
    auto* buffer = new Char[std::max(size, unique.size() + 1)]();
    std::copy(unique.begin(), unique.end(), buffer);
    return buffer;
}

}  // namespace

}  // namespace zrt

void ZR_TK::MakeMaterialNames() {
    auto list = vl::Ref<vl::Array>::Adopt(m_pScene->GetObjectsOfKind(vl::zr::kSceneMaterials));
    if (!list) return;
    const vl::ArrayOf<vl::zr::Material*> view(list.Get());
    const std::vector<vl::zr::Material*> materials(view.begin(), view.end());
    const int count = view.Count();
    for (int i = 0; i < count; ++i) list->SetAt(i, 0);  // until replaced by a name
    m_pMaterialNames = list.Detach();
    m_nMaxMaterialNameLength = std::min(m_nMaxMaterialNameLength, zrt::kMaxMaterialNameLength);

    zrt::NumberedNames names;
    for (int i = 0; i < count; ++i) {
        vl::zr::Material* material = materials[static_cast<std::size_t>(i)];
        auto* name = new MaterialName{material, i, nullptr, nullptr};
        material->m_pUserData = name;
        m_pMaterialNames->SetAt(i, vl::ToWord(name));
        if ((m_dwNameFlags & vl::tk::kNamesWide) != 0) {
            name->wszName = zrt::NewMaterialName<char16_t>(*this, *material, names);
        } else {
            name->szName = zrt::NewMaterialName<char>(*this, *material, names);
        }
    }
}
