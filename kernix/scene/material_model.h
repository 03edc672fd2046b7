// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/material.h"
#include "host/ref.h"
#include "kernix/scene/sampled_controller_model.h"

namespace kernix {

// A material of a scene. Its content is an opaque text: two materials are equal when their texts are.
class KERNIX_API MaterialModel final : public vl::zr::Material {
public:
    MaterialModel(SceneModel& scene, std::uint32_t id, std::optional<std::string> name, std::string content);

    int GetName(char* buffer, int size) override;
    int GetNameW(char16_t* buffer, int size) override;

    SampledControllerModel* AddController(std::string target);

    // Number of the material, unique in its scene: the attribute of the faces that use it.
    std::uint32_t GetId() const { return m_id; }
    const std::optional<std::string>& GetNameText() const { return m_name; }
    const std::string& GetContent() const { return m_content; }

private:
    SceneModel& m_scene;
    std::uint32_t m_id;
    std::optional<std::string> m_name;
    std::string m_content;
    vl::Ref<vl::Array> m_controllerWords;
    std::vector<vl::Ref<SampledControllerModel>> m_controllers;
};

}  // namespace kernix
