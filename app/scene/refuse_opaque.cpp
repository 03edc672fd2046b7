// SPDX-License-Identifier: MIT
#include "app/scene/refuse_opaque.h"

#include <algorithm>

#include "base/text.h"

namespace zr {

void RefuseOpaque(gltf::Document& document, gltf::KindSet kinds) {
    if (kinds.Empty()) return;
    for (const gltf::OpaqueUse& use : gltf::OpaqueReferences(document).uses) {
        for (std::size_t kind = 0; kind < gltf::kKinds; ++kind) {
            const auto removed = static_cast<gltf::Kind>(kind);
            if (!kinds.Has(removed) || !use.kinds.Has(removed)) continue;
            document.Fail(gltf::ErrorKind::kReference, use.place,
                          Join("the extension ", use.extension, " could refer to a removed or renumbered ",
                               gltf::Info(removed).noun, " (--force continues anyway)"));
        }
    }
}

gltf::KindSet KindsOf(const gltf::Removal& removal) {
    gltf::KindSet kinds;
    for (std::size_t kind = 0; kind < gltf::kKinds; ++kind) {
        const auto& gone = removal[kind];
        if (std::find(gone.begin(), gone.end(), true) != gone.end()) kinds.Add(static_cast<gltf::Kind>(kind));
    }
    return kinds;
}

}  // namespace zr
