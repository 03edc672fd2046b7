// SPDX-License-Identifier: MIT
#pragma once

// Identifiers that the resource script and the code share. They are macros because the resource compiler
// would take an enumerator for the name of a resource.

#define IDD_CLEANER 101

// Controls of the cleaner dialog; a check box's identifier is also the number of its option.
#define IDC_PROCESS 1001
#define IDC_BREAK 1002
#define IDC_UNUSED_MATERIALS 1003
#define IDC_METADATA 1004
#define IDC_MODEL_VIEWS 1005
#define IDC_UNUSED_LAYERS 1006
#define IDC_DUPLICATE_GEOMETRY 1007
#define IDC_NOTES 1008
#define IDC_EMPTY_NODES 1009
#define IDC_UNUSED_ANIMATIONS 1010
#define IDC_DUPLICATE_MATERIALS 1011
#define IDC_ENVIRONMENT 1012
#define IDC_PROGRESS 1021
#define IDC_LOG 1022
#define IDC_OPTIONS 1023
#define IDC_CLOSE 2
#define IDC_HELP_PAGE 9
