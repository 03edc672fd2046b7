// SPDX-License-Identifier: MIT
#pragma once

#include "host/object.h"
#include "host/ref.h"

namespace zrt {

// The mesh component of an object of kind kKindRenderable; null if it holds no data.
inline vl::Ref<vl::zr::MeshComponent> QueryMeshContent(vl::zr::Object3D* object) {
    auto content = vl::Ref<vl::zr::MeshComponent>::Adopt(
        static_cast<vl::zr::MeshComponent*>(object->QueryComponent(vl::zr::kComponentMesh, 0)));
    if (content && !content->HoldsData()) content.Reset();
    return content;
}

}  // namespace zrt
