// SPDX-License-Identifier: MIT
#include "host/params.h"

#include <vector>

#include "host/ref.h"

namespace vl {
namespace {

struct Entry {
    Word value;
    zr_VALUETYPE type;
};

class ParamList final : public Params {
public:
    Word GetParam(int position, Word fallback, zr_VALUETYPE type) override {
        const auto found = Find(position, type);
        return found != m_entries.end() ? found->value : fallback;
    }
    void Add(Word value, zr_VALUETYPE type) override { m_entries.push_back({value, type}); }
    bool SetParam(int position, Word value, zr_VALUETYPE type) override {
        const auto found = Find(position, type);
        if (found != m_entries.end()) {
            found->value = value;
            return true;
        }
        if (position != 0 && Find(position - 1, type) == m_entries.end()) return false;
        Add(value, type);
        return true;
    }
    bool DeleteParam(int position, zr_VALUETYPE type) override {
        const auto found = Find(position, type);
        if (found == m_entries.end()) return false;
        m_entries.erase(found);
        return true;
    }
    Params* Clone() override {
        auto copy = Ref<ParamList>::AdoptNew(new ParamList);
        copy->m_entries = m_entries;
        return copy.Detach();
    }

private:
    std::vector<Entry>::iterator Find(int position, zr_VALUETYPE type) {
        for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
            if (entry->type == type && position-- == 0) return entry;
        }
        return m_entries.end();
    }

    std::vector<Entry> m_entries;
};

}  // namespace

Params* Params::Create() {
    return new ParamList;
}

}  // namespace vl
