// SPDX-License-Identifier: MIT
#pragma once

namespace vl::zr {
class Material;
}

// The exported name of a material; one of the two names is set. Stays with the tool that made it: the
// material's user data, which points here, is stale once the tool has ended.
struct MaterialName {
    vl::zr::Material* pMaterial;
    int nIndex;  // in the scene's material list
    char* szName;
    char16_t* wszName;
};
