// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"
#include "host/context.h"
#include "host/host_app.h"
#include "host/interface_array.h"
#include "host/kinds.h"
#include "host/ref.h"
#include "host/scene.h"
#include "module/frame/globals.h"

// What the removal operations share. Each collects its candidates without a change to the scene, removes
// them in the order collected and tells the scene once. A break ends the step it meets: one that comes while
// candidates are collected removes nothing.
namespace zrt {

inline bool IsBreak(const vl::Context* context) {
    return context != nullptr && context->IsBreak();
}

inline vl::Ref<vl::Array> NewList() {
    return vl::Ref<vl::Array>::Adopt(g_pHost->CreateArray());
}

// Hands the elements to remove, one after the other, until a break; how many it was.
template <typename T, typename Remove>
int RemoveEach(vl::ArrayOf<T> candidates, const vl::Context* context, Remove remove) {
    int count = 0;
    for (T candidate : candidates) {
        if (IsBreak(context)) break;
        remove(candidate);
        ++count;
    }
    return count;
}

// Typed, non-owning view of an interface array. A null array is an empty one.
template <typename T>
class InterfacesOf {
public:
    explicit InterfacesOf(vl::InterfaceArray* array) : m_array(array) {}

    unsigned Count() const { return m_array != nullptr ? m_array->GetCount() : 0; }
    T* operator[](unsigned index) const { return static_cast<T*>(m_array->GetAt(index)); }

private:
    vl::InterfaceArray* m_array;
};

inline void NotifyRemoved(vl::zr::Scene* scene) {
    scene->Notify(vl::zr::kNotifyRemoved, 1, 2);
}

// Takes the nodes out until a break, each after its record; how many it was.
int RemoveNodes(vl::ArrayOf<vl::zr::Node*> nodes, const vl::Context* context, ChangeRecord* record);

}  // namespace zrt
