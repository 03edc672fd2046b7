// SPDX-License-Identifier: MIT
#pragma once

#include "host/context.h"

class ChangeRecord;

namespace vl::zr {
class Scene;
}

// The cleaner's operations as their rules say them, whatever they cost: every list searched again for every
// element. The cleaner must make the same calls in the same order.
namespace plain {

int RemoveUnusedMaterials(vl::zr::Scene* scene, ChangeRecord* record);
int RemoveEmptyNodes(vl::zr::Scene* scene, ChangeRecord* record);
int RemoveUnusedLayers(vl::zr::Scene* scene, ChangeRecord* record);
int RemoveNotesAndEtc(vl::zr::Scene* scene, ChangeRecord* record);
int RemoveMeshDupes(vl::zr::Scene* scene, ChangeRecord* record);

}  // namespace plain
