// SPDX-License-Identifier: MIT
#pragma once

#include <iterator>

#include "host/word.h"

namespace vl {

// A list of words, made by a host. Whoever creates one owns its count and releases it; the array never owns
// its elements. An index out of range is the caller's mistake: GetAt then returns 0 and the modifying
// operations do nothing. Only Add and InsertAt allocate. The order of functions and fields is the binary
// interface (host/api.h).
class Array {
public:
    virtual unsigned AddRef() = 0;   // the count afterwards, as Release
    virtual unsigned Release() = 0;  // 0: the array is destroyed
    virtual Word GetAt(int index) = 0;
    virtual void RemoveAt(int index) = 0;              // later elements move down
    virtual void InsertAt(int index, Word value) = 0;  // before index; index == count appends
    virtual void SetAt(int index, Word value) = 0;
    virtual void RemoveAll() = 0;
    virtual int IndexOf(Word value) = 0;  // first index, or -1
    virtual void Add(Word value) = 0;     // appends, in a sorted array too
    virtual void Swap(int i, int j) = 0;
    virtual bool IsValidIndex(int index) = 0;

    // In an array made with a comparator: true, with index its position, when an element equal to value
    // exists; else false, with index where value would keep the order. In an array without a comparator:
    // false, with index = count.
    virtual bool FindSorted(Word value, int* index) = 0;

    int m_nCount = 0;  // read-only for callers

protected:
    virtual ~Array() = default;
};

// Negative, 0 or positive as a sorts before, equal to or after b. Must not throw.
using ArrayComparator = int (*)(Word a, Word b, void* context);

// Typed, non-owning view of a host array. A null array is an empty one.
template <typename T>
class ArrayOf {
public:
    class Iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = T;
        using difference_type = int;
        using pointer = const T*;
        using reference = T;

        Iterator(Array* array, int index) : m_array(array), m_index(index) {}
        T operator*() const { return FromWord<T>(m_array->GetAt(m_index)); }
        Iterator& operator++() {
            ++m_index;
            return *this;
        }
        bool operator==(const Iterator& other) const { return m_index == other.m_index; }

    private:
        Array* m_array;
        int m_index;
    };

    explicit ArrayOf(Array* array) : m_array(array) {}

    int Count() const { return m_array != nullptr ? m_array->m_nCount : 0; }
    bool IsEmpty() const { return Count() == 0; }
    T operator[](int index) const { return FromWord<T>(m_array->GetAt(index)); }
    int IndexOf(T value) const { return m_array != nullptr ? m_array->IndexOf(ToWord(value)) : -1; }

    // The array must not be null for these.
    void Add(T value) { m_array->Add(ToWord(value)); }
    void InsertAt(int index, T value) { m_array->InsertAt(index, ToWord(value)); }
    void SetAt(int index, T value) { m_array->SetAt(index, ToWord(value)); }
    bool FindSorted(T value, int* index) { return m_array->FindSorted(ToWord(value), index); }

    // The end is fixed when the loop begins: elements added inside it are not visited.
    Iterator begin() const { return Iterator(m_array, 0); }
    Iterator end() const { return Iterator(m_array, Count()); }

private:
    Array* m_array;
};

}  // namespace vl
