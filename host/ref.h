// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <new>
#include <utility>

namespace vl {

// Holds one count of a host object and releases it on every path.
//
//   auto a = Ref<Array>::Adopt(host->CreateArray());      takes over the caller's count; null stays null
//   auto a = Ref<Array>::AdoptNew(host->CreateArray());   the same for a new object; throws for null
//   auto n = Ref<Node>::Share(node);                      adds a count of its own
//
// Copies share the object. Every operation except -> and * accepts an empty reference.
template <typename T>
class Ref {
public:
    Ref() = default;
    Ref(std::nullptr_t) {}
    Ref(const Ref& other) : m_object(other.m_object) {
        if (m_object != nullptr) m_object->AddRef();
    }
    Ref(Ref&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Ref() {
        if (m_object != nullptr) m_object->Release();
    }

    static Ref Adopt(T* object) {
        Ref ref;
        ref.m_object = object;
        return ref;
    }
    // A call that creates an object returns null when memory has run out; this throws std::bad_alloc then.
    static Ref AdoptNew(T* object) {
        if (object == nullptr) throw std::bad_alloc();
        return Adopt(object);
    }
    static Ref Share(T* object) {
        if (object != nullptr) object->AddRef();
        return Adopt(object);
    }

    T* Get() const { return m_object; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }

    // Hands the count to the caller.
    [[nodiscard]] T* Detach() { return std::exchange(m_object, nullptr); }
    void Reset() { *this = Ref(); }

private:
    T* m_object = nullptr;
};

}  // namespace vl
