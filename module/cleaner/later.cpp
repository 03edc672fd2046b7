// SPDX-License-Identifier: MIT
#include "module/cleaner/cleaner.h"

// Until the dialog stands.
bool CCleanerImpl::RunDialog(vl::zr::Scene* /*scene*/) {
    return false;
}
