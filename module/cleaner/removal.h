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

// What the removal operations share. Each collects its candidates without changing the scene, removes them in
// the order collected and notifies the scene once. A break ends the step in which it is seen: if candidates
// are being collected, nothing is removed. Running out of memory is a break too.
namespace zrt {

inline bool IsBreak(const vl::Context* context) {
    return context != nullptr && context->IsBreak();
}

// A new, empty host array. Throws std::bad_alloc.
inline vl::Ref<vl::Array> NewList() {
    return vl::Ref<vl::Array>::AdoptNew(g_pHost->CreateArray());
}

// Runs work(count), which counts what it removes, and returns the count, also after an exception.
template <typename Work>
int Counted(Work work) noexcept {
    int count = 0;
    try {
        work(count);
    } catch (...) {
        // What was removed until then is counted.
    }
    return count;
}

// The same, and notifies the scene afterwards.
template <typename Work>
int CountedWithNotify(vl::zr::Scene* scene, Work work) noexcept {
    const int count = Counted(work);
    Counted([scene](int&) { scene->Notify(vl::zr::kNotifyRemoved, 1, 2); });
    return count;
}

// Passes each candidate to remove until a break and counts it afterwards.
template <typename T, typename Remove>
void RemoveEach(vl::ArrayOf<T> candidates, const vl::Context* context, int& count, Remove remove) {
    for (T candidate : candidates) {
        if (IsBreak(context)) break;
        remove(candidate);
        ++count;
    }
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

// Records and deletes each node, until a break.
void RemoveNodes(vl::ArrayOf<vl::zr::Node*> nodes, const vl::Context* context, ChangeRecord* record,
                 int& count);

}  // namespace zrt
