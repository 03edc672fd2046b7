// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/ref.h"
#include "host/viewport.h"

namespace kernix {

class KERNIX_API LayerModel final : public vl::zr::Layer {
public:
    explicit LayerModel(std::string name);

    void AddMember(vl::zr::Node* node);
    void DropDeletedMembers();

    std::string m_name;

private:
    vl::Ref<vl::Array> m_members;
};

class KERNIX_API ViewportModel final : public vl::zr::Viewport {
public:
    ViewportModel(int kind, const std::string& name);

    void RemoveAnimationReference(vl::zr::AnimationReference* entry) override;

    void AddAnimationReference(vl::zr::Animation* animation);
    void RemoveAnimation(const vl::zr::Animation* animation);  // every reference to it

private:
    std::vector<std::unique_ptr<vl::zr::AnimationReference>> m_entries;
    vl::Ref<vl::Array> m_entryWords;
};

}  // namespace kernix
