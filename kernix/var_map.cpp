// SPDX-License-Identifier: MIT
#include <map>

#include "host/ref.h"
#include "host/var.h"

namespace vl {
namespace {

class NamedValues final : public VarMap {
public:
    void Clear() override { m_values.clear(); }
    void Set(const std::u16string& name, const Var& value) override { m_values[name] = value; }
    const Var* Find(const std::u16string& name) override {
        const auto found = m_values.find(name);
        return found != m_values.end() ? &found->second : nullptr;
    }
    int GetCount() override { return static_cast<int>(m_values.size()); }
    VarMap* Clone() override {
        auto copy = Ref<NamedValues>::AdoptNew(new NamedValues);
        copy->m_values = m_values;
        return copy.Detach();
    }

private:
    std::map<std::u16string, Var> m_values;
};

}  // namespace

VarMap* VarMap::Create() {
    return new NamedValues;
}

}  // namespace vl
