// SPDX-License-Identifier: MIT
#include "app/operations/clean/clean_method.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

#include "host/xml.h"

namespace zr {
namespace {

std::string Attribute(const vl::xml::Element& element, const char* name) {
    const std::string* value = element.FindAttribute(name);
    return value != nullptr ? *value : std::string();
}

}  // namespace

CleanMethod::CleanMethod(zr_CLEANER& cleaner) {
    vl::xml::Element description;
    const bool known = cleaner.QueryInfo(&description, 0) == vl::kSuccess;
    const vl::xml::Element* methods = known ? description.FindChild("Methods") : nullptr;
    if (methods != nullptr) {
        for (const vl::xml::Element& method : methods->GetChildren()) {
            if (Attribute(method, "name") != "Clean_Scene") continue;
            m_number = std::atoi(Attribute(method, "id").c_str());
            for (const vl::xml::Element& part : method.GetChildren()) {
                if (Attribute(part, "type") == "bool" && part.GetName() == "Parameter") {
                    m_switches.push_back(Attribute(part, "name"));
                }
            }
        }
    }
    if (m_number == 0) throw std::runtime_error("the module does not describe the method Clean_Scene");
}

vl::Ref<vl::Params> CleanMethod::Only(vl::zr::Scene* scene, std::string_view parameter) const {
    if (std::find(m_switches.begin(), m_switches.end(), parameter) == m_switches.end()) {
        throw std::runtime_error("the method Clean_Scene has no parameter " + std::string(parameter));
    }
    auto params = vl::Ref<vl::Params>::AdoptNew(vl::Params::Create());
    params->Add(vl::ToWord(scene), ZR_VALUE_SCENE);
    for (const std::string& name : m_switches) params->Add(name == parameter, ZR_VALUE_BOOL);
    return params;
}

}  // namespace zr
