// SPDX-License-Identifier: MIT
#include "module/cleaner/operations.h"

namespace zrt {

const Operation kOperations[kOperationCount] = {
    {IDC_METADATA, 5, 1111, 2001, true, &CCleanerImpl::RemoveMetadata},
    {IDC_DUPLICATE_MATERIALS, 9, 1181, 2001, true, &CCleanerImpl::MergeEqualMaterials},
    {IDC_DUPLICATE_GEOMETRY, 7, 1141, 2001, true, &CCleanerImpl::RemoveMeshDupes},
    {IDC_EMPTY_NODES, 1, 1161, 2001, true, &CCleanerImpl::RemoveEmptyNodes},
    {IDC_MODEL_VIEWS, 3, 1121, 2001, true, &CCleanerImpl::RemoveModelViews},
    {IDC_UNUSED_LAYERS, 4, 1131, 2001, true, &CCleanerImpl::RemoveUnusedLayers},
    {IDC_NOTES, 6, 1151, 2001, true, &CCleanerImpl::RemoveNotesAndEtc},
    {IDC_UNUSED_MATERIALS, 2, 1101, 2001, true, &CCleanerImpl::RemoveUnusedMaterials},
    {IDC_UNUSED_ANIMATIONS, 0, 1171, 2001, true, &CCleanerImpl::RemoveUnusedAnimations},
    {IDC_ENVIRONMENT, 8, 1191, 2001, true, &CCleanerImpl::RemoveEnvMapsAndBackplates},
};

}  // namespace zrt
