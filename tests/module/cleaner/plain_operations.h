// SPDX-License-Identifier: MIT
#pragma once

class ChangeRecord;

namespace vl::zr {
class Mesh;
class Node;
class Scene;
}  // namespace vl::zr

// The cleaner's operations as a literal reading of their rules, whatever the cost: every list is searched
// again for every element. The cleaner must make the same calls in the same order.
namespace plain {

int RemoveUnusedMaterials(vl::zr::Scene* scene, ChangeRecord* record);
int RemoveEmptyNodes(vl::zr::Scene* scene, ChangeRecord* record);
int RemoveUnusedLayers(vl::zr::Scene* scene, ChangeRecord* record);
int RemoveNotesAndEtc(vl::zr::Scene* scene, ChangeRecord* record);
int RemoveMeshDupes(vl::zr::Scene* scene, ChangeRecord* record);

bool GeometryEqual(const vl::zr::Mesh& a, const vl::zr::Mesh& b);
bool TransformsEqual(vl::zr::Node* a, vl::zr::Node* b);

}  // namespace plain
