// SPDX-License-Identifier: MIT
#include "host/reference_source.h"

#include <algorithm>

#include "host/interface_array.h"
#include "host/ref.h"

namespace vl {

ReferenceSource::~ReferenceSource() = default;

InterfaceArray* ReferenceSource::GetSubscribers(const char* filter) const {
    auto found = Ref<InterfaceArray>::AdoptNew(InterfaceArray::CreateStrong());
    for (Interface* subscriber : m_subscribers) {
        if (filter == nullptr || subscriber->IsTypeOf(filter)) found->Add(subscriber);
    }
    return found.Detach();
}

void ReferenceSource::Subscribe(Interface* subscriber) {
    if (subscriber != nullptr) m_subscribers.push_back(subscriber);
}

void ReferenceSource::Unsubscribe(Interface* subscriber) {
    const auto found = std::find(m_subscribers.begin(), m_subscribers.end(), subscriber);
    if (found != m_subscribers.end()) m_subscribers.erase(found);
}

}  // namespace vl
