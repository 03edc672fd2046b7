// SPDX-License-Identifier: MIT
#include "host/interface_array.h"

#include <algorithm>
#include <vector>

#include "host/ref.h"

namespace vl {
namespace {

class StrongArray final : public InterfaceArray {
public:
    Interface* GetAt(unsigned index) override {
        return index < m_elements.size() ? m_elements[index].Get() : nullptr;
    }
    unsigned GetCount() override { return static_cast<unsigned>(m_elements.size()); }
    void Add(Interface* element) override {
        if (element != nullptr) m_elements.push_back(Ref<Interface>::Share(element));
    }
    void Remove(Interface* element) override {
        const auto found = std::find_if(m_elements.begin(), m_elements.end(),
                                        [&](const auto& held) { return held.Get() == element; });
        if (found != m_elements.end()) m_elements.erase(found);
    }

private:
    std::vector<Ref<Interface>> m_elements;
};

}  // namespace

InterfaceArray* InterfaceArray::CreateStrong() {
    return new StrongArray;
}

}  // namespace vl
