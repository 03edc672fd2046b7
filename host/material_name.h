// SPDX-License-Identifier: MIT
#pragma once

namespace vl::zr {
class Material;
}

// The exported name of a material, an element of vl::tk::Serializer::m_pMaterialNames. It belongs to the
// serializer: the material's user data, which points here, is stale once that has ended. The order of the
// fields is the binary interface (host/api.h).
struct MaterialName {
    vl::zr::Material* pMaterial;
    int nIndex;         // in the scene's material list
    char* szName;       // terminated; null with kNamesWide
    char16_t* wszName;  // terminated; null without kNamesWide
};
