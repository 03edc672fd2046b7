// SPDX-License-Identifier: MIT
#pragma once

namespace zr::gltf {

class Document;

// The checks of a newly read document, in order: each may rely on those before it. Each throws an Error for
// the first fault it finds.

// Version, types of properties, required properties, indices within their collections.
void CheckStructure(Document& document);
// Files named by URIs lie where reading is allowed; missing ones cause a warning.
void CheckResources(Document& document);
// Byte ranges of views and accessors, strides, sparse indices. Buffers are loaded.
void CheckAccessors(const Document& document);
// Images that share their bytes are bounded together, since each is read by itself.
void CheckImages(const Document& document);
// Floats are finite; those that are not cause a warning.
void CheckNumbers(Document& document);
// Nodes form trees, scenes list roots, joints of a skin share a root.
void CheckHierarchy(const Document& document);
// Counts and types of vertex data agree, indices name vertices.
void CheckMeshes(const Document& document);
// Samplers have as many values as their keys need, key times increase, no target is driven twice.
void CheckAnimations(const Document& document);

}  // namespace zr::gltf
