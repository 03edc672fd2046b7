// SPDX-License-Identifier: MIT
#include "kernix/scene/viewport_model.h"

#include <algorithm>
#include <utility>

#include "kernix/array.h"

namespace kernix {

LayerModel::LayerModel(std::string name) : m_name(std::move(name)) {}

void LayerModel::AddMember(vl::zr::Node* node) {
    if (!m_members) {
        m_members = vl::Ref<vl::Array>::AdoptNew(CreateArray());
        m_pMembers = m_members.Get();
    }
    m_members->Add(vl::ToWord(node));
}

ViewportModel::ViewportModel(int kind, const std::string& name) {
    m_nKind = kind;
    m_strName.Set(name.c_str());
}

void ViewportModel::AddAnimationReference(vl::zr::Animation* animation) {
    if (!m_entryWords) {
        m_entryWords = vl::Ref<vl::Array>::AdoptNew(CreateArray());
        m_pAnimationReferences = m_entryWords.Get();
    }
    m_entries.push_back(std::make_unique<vl::zr::AnimationReference>(vl::zr::AnimationReference{animation}));
    m_entryWords->Add(vl::ToWord(m_entries.back().get()));
}

void ViewportModel::RemoveAnimationReference(vl::zr::AnimationReference* entry) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [&](const auto& held) { return held.get() == entry; });
    if (found == m_entries.end()) return;
    m_entryWords->RemoveAt(static_cast<int>(found - m_entries.begin()));
    m_entries.erase(found);
}

void ViewportModel::RemoveAnimation(const vl::zr::Animation* animation) {
    for (std::size_t i = m_entries.size(); i-- > 0;) {
        if (m_entries[i]->pAnimation == animation) RemoveAnimationReference(m_entries[i].get());
    }
}

}  // namespace kernix
