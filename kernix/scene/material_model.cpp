// SPDX-License-Identifier: MIT
#include "kernix/scene/material_model.h"

#include <utility>

#include "kernix/array.h"
#include "kernix/utf.h"

namespace kernix {

MaterialModel::MaterialModel(SceneModel& scene, std::uint32_t id, std::optional<std::string> name,
                             std::string content)
    : m_scene(scene), m_id(id), m_name(std::move(name)), m_content(std::move(content)) {}

int MaterialModel::GetName(char* buffer, int size) {
    if (!m_name) return 0;
    CopyText(*m_name, buffer, size);
    return 1;
}

int MaterialModel::GetNameW(char16_t* buffer, int size) {
    if (!m_name) return 0;
    CopyText(ToUtf16(*m_name), buffer, size);
    return 1;
}

SampledControllerModel* MaterialModel::AddController(std::string target) {
    if (!m_controllerWords) {
        m_controllerWords = vl::Ref<vl::Array>::AdoptNew(CreateArray());
        m_pControllers = m_controllerWords.Get();
    }
    auto* controller = new SampledControllerModel(m_scene, std::move(target));
    m_controllers.push_back(vl::Ref<SampledControllerModel>::AdoptNew(controller));
    m_controllerWords->Add(vl::ToWord<vl::zr::Controller*>(controller));
    return controller;
}

}  // namespace kernix
