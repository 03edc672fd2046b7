// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/cleaner.h"
#include "host/params.h"
#include "host/ref.h"

namespace zr {

// The cleaner's method Clean_Scene as the module describes it.
class CleanMethod {
public:
    // Throws std::runtime_error when the description cannot be read or lacks the method.
    explicit CleanMethod(zr_CLEANER& cleaner);

    // The number for zr_CLEANER::Invoke.
    int Number() const { return m_number; }

    // Parameters that enable only the operation with this parameter name. Throws std::runtime_error for an
    // unknown name.
    vl::Ref<vl::Params> Only(vl::zr::Scene* scene, std::string_view parameter) const;

private:
    int m_number = 0;
    std::vector<std::string> m_switches;  // names of the bool parameters, in order
};

}  // namespace zr
