// SPDX-License-Identifier: MIT
#include "kernix/array.h"

#include <atomic>
#include <new>
#include <utility>

#include "kernix/tiered_vector.h"

namespace kernix {
namespace {

class WordArray final : public vl::Array {
public:
    WordArray(vl::ArrayComparator comparator, void* context) : m_comparator(comparator), m_context(context) {}

    unsigned AddRef() override { return static_cast<unsigned>(++m_refCount); }
    unsigned Release() override {
        const int left = --m_refCount;
        if (left == 0) delete this;
        return static_cast<unsigned>(left);
    }
    vl::Word GetAt(int index) override { return IsValidIndex(index) ? At(index) : 0; }
    void RemoveAt(int index) override {
        if (!IsValidIndex(index)) return;
        m_words.Erase(static_cast<std::size_t>(index));
        --m_nCount;
    }
    void InsertAt(int index, vl::Word value) override {
        if (index < 0 || index > m_nCount) return;
        m_words.Insert(static_cast<std::size_t>(index), value);
        ++m_nCount;
    }
    void SetAt(int index, vl::Word value) override {
        if (IsValidIndex(index)) At(index) = value;
    }
    void RemoveAll() override {
        m_words.Clear();
        m_nCount = 0;
    }
    int IndexOf(vl::Word value) override {
        for (int i = 0; i < m_nCount; ++i) {
            if (At(i) == value) return i;
        }
        return -1;
    }
    void Add(vl::Word value) override {
        m_words.PushBack(value);
        ++m_nCount;
    }
    void Swap(int i, int j) override {
        if (IsValidIndex(i) && IsValidIndex(j)) std::swap(At(i), At(j));
    }
    bool IsValidIndex(int index) override { return index >= 0 && index < m_nCount; }
    bool FindSorted(vl::Word value, int* index) override {
        *index = m_nCount;
        if (m_comparator == nullptr) return false;
        int low = 0;
        for (int high = m_nCount; low < high;) {
            const int middle = low + (high - low) / 2;
            if (m_comparator(At(middle), value, m_context) < 0) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        *index = low;
        return low < m_nCount && m_comparator(At(low), value, m_context) == 0;
    }

private:
    vl::Word& At(int index) { return m_words[static_cast<std::size_t>(index)]; }

    TieredVector m_words;
    vl::ArrayComparator m_comparator;
    void* m_context;
    std::atomic<int> m_refCount{1};
};

}  // namespace

vl::Array* CreateArray() {
    return new (std::nothrow) WordArray(nullptr, nullptr);
}

vl::Array* CreateSortedArray(vl::ArrayComparator comparator, void* context) {
    return new (std::nothrow) WordArray(comparator, context);
}

}  // namespace kernix
