// SPDX-License-Identifier: MIT
#pragma once

#include "host/object.h"

namespace kernix {

// Objects without content of their own: dummy, bone, note, selector. They are created with count 1; null when
// memory runs out.
template <typename Base>
class PlainObject final : public Base {
public:
    PlainObject(int kind, int type) : m_kind(kind), m_type(type) {}

    bool IsKindOf(int kind) override { return kind == m_kind; }
    int GetType() override { return m_type; }
    vl::Interface* QueryComponent(int, int) override { return nullptr; }

private:
    int m_kind;
    int m_type;
};

inline vl::zr::Object3D* CreateDummy() {
    return new PlainObject<vl::zr::Object3D>(vl::zr::kKindDummy, vl::zr::kTypeDummy);
}
inline vl::zr::Object3D* CreateBone() {
    return new PlainObject<vl::zr::Object3D>(vl::zr::kKindBone, vl::zr::kTypeBone);
}
inline vl::zr::Object3D* CreateNote() {
    return new PlainObject<vl::zr::Object3D>(vl::zr::kKindNote, vl::zr::kTypeNote);
}
inline vl::zr::Selector* CreateSelector() {
    return new PlainObject<vl::zr::Selector>(vl::zr::kKindSelector, vl::zr::kTypeObject);
}

}  // namespace kernix
