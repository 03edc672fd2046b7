// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

namespace vl {

// Shared between an object and the weak pointers to it; target is null once the object is gone.
template <typename T>
struct WeakBlock {
    T* target;
    int users;
};

// Base of objects that weak pointers may refer to. One thread at a time may create, read and destroy the weak
// pointers to an object.
template <typename T>
class WeakPtrOwner {
public:
    WeakPtrOwner() = default;
    WeakPtrOwner(const WeakPtrOwner&) = delete;
    WeakPtrOwner& operator=(const WeakPtrOwner&) = delete;

    WeakBlock<T>* ShareBlock(T* self) {
        if (m_block == nullptr) m_block = new WeakBlock<T>{self, 1};
        ++m_block->users;
        return m_block;
    }

    static void DropBlock(WeakBlock<T>* block) {
        if (block != nullptr && --block->users == 0) delete block;
    }

protected:
    ~WeakPtrOwner() {
        if (m_block == nullptr) return;
        m_block->target = nullptr;
        DropBlock(m_block);
    }

private:
    WeakBlock<T>* m_block = nullptr;
};

// Refers to an object of the vl::Interface family without keeping it alive. Get returns null when nothing was
// set or the object is gone.
template <typename T, typename Owner>
class BasicWeakPtr {
public:
    BasicWeakPtr() = default;
    explicit BasicWeakPtr(T* object) { Set(object); }
    BasicWeakPtr(const BasicWeakPtr& other) { Set(other.Get()); }
    BasicWeakPtr& operator=(const BasicWeakPtr& other) {
        if (this != &other) Set(other.Get());
        return *this;
    }
    ~BasicWeakPtr() { WeakPtrOwner<Owner>::DropBlock(m_block); }

    void Set(T* object) {
        WeakPtrOwner<Owner>::DropBlock(m_block);
        m_block = object != nullptr ? object->ShareBlock(object) : nullptr;
        m_object = object;
    }

    T* Get() const { return m_block != nullptr && m_block->target != nullptr ? m_object : nullptr; }

private:
    WeakBlock<Owner>* m_block = nullptr;
    T* m_object = nullptr;
};

class Interface;

template <typename T>
using WeakPtr = BasicWeakPtr<T, Interface>;

}  // namespace vl
