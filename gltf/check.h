// SPDX-License-Identifier: MIT
#pragma once

namespace zr::gltf {

class Document;

// The checks of a document just read, in the order in which each may rely on those before it. Each throws the
// Error of the first fault it meets.

// Version, types of properties, required properties, indices within their collections.
void CheckStructure(Document& document);
// Files that URIs name stand where they may be read; those that are missing are warned of.
void CheckResources(Document& document);
// Byte ranges of views and accessors, strides, sparse indices. Buffers are loaded.
void CheckAccessors(const Document& document);
// Floats are finite; a document whose are not is warned of.
void CheckNumbers(Document& document);
// Nodes form trees, scenes list roots, joints of a skin share a root.
void CheckHierarchy(const Document& document);
// Counts and types of vertex data agree, indices name vertices.
void CheckMeshes(const Document& document);
// Samplers have as many values as their keys need, key times increase, no target is driven twice.
void CheckAnimations(const Document& document);

}  // namespace zr::gltf
