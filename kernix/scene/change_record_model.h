// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <string>

#include "host/change_record.h"
#include "host/ref.h"

namespace kernix {

// Keeps what a set of changes removed or created, in order.
class KERNIX_API ChangeRecordModel final : public ChangeRecord {
public:
    enum class Change {
        kLayerRemoval,
        kNodeRemoval,
        kMaterialRemoval,
        kAnimationCreation,
        kAnimationRemoval,
        kAnimationItemRemoval,
        kViewportRemoval,
        kTrackCreation,
    };

    struct Entry {
        Change change;
        vl::Ref<vl::Interface> object;
        std::string name;  // UTF-8; empty for an object without one
    };

    void Begin() override;
    void End(const char16_t* caption) override;
    void RecordLayerRemoval(vl::zr::Layer* layer, int mode) override;
    void RecordNodeRemoval(vl::zr::Node* node, int mode) override;
    void RecordMaterialRemoval(vl::zr::Material* material, int mode) override;
    void RecordAnimationCreation(vl::zr::Scene* scene, vl::zr::Animation* animation, int mode) override;
    void RecordAnimationRemoval(vl::zr::Scene* scene, vl::zr::Animation* animation, int mode) override;
    void RecordAnimationItemRemoval(vl::Interface* item, int mode) override;
    void RecordViewportRemoval(vl::zr::Scene* scene, vl::zr::Viewport* viewport, int mode) override;
    void RecordTrackCreation(vl::Interface* object, vl::Interface* trackObject) override;

    const std::deque<Entry>& GetEntries() const { return m_entries; }
    const std::u16string& GetCaption() const { return m_caption; }
    bool IsOpen() const { return m_open; }

private:
    void Keep(Change change, vl::Interface* object, std::string name);

    std::deque<Entry> m_entries;
    std::u16string m_caption;
    bool m_open = false;
};

}  // namespace kernix
