// SPDX-License-Identifier: MIT
#include "host/interface.h"

#include "host/extension.h"
#include "host/memory.h"
#include "host/params.h"
#include "host/text.h"

namespace vl {
namespace {

template <typename T>
Ref<T> CloneOf(T* source) {
    return source != nullptr ? Ref<T>::AdoptNew(source->Clone()) : nullptr;
}

}  // namespace

const Guid Interface::kInterfaceId = {
    0x5b0c1d3e, 0x7f42, 0x4a19, {0x9d, 0x0e, 0x31, 0x5a, 0xc8, 0x77, 0x21, 0x64}};

Interface::Interface() = default;
Interface::~Interface() = default;

unsigned Interface::AddRef() {
    return static_cast<unsigned>(m_refCount.fetch_add(1, std::memory_order_relaxed) + 1);
}

unsigned Interface::Release() {
    const int left = m_refCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) DeleteThis();
    return static_cast<unsigned>(left);
}

ResultEnum Interface::QueryInterface(const Guid& id, Unknown*& out) {
    out = nullptr;
    if (!(id == kInterfaceId)) return kWrongClass;
    AddRef();
    out = this;
    return kSuccess;
}

ResultEnum Interface::QueryInterface(const char* typeName, Unknown*& out) {
    out = nullptr;
    if (!IsTypeOf(typeName)) return kWrongClass;
    AddRef();
    out = this;
    return kSuccess;
}

void Interface::DeleteThis() {
    delete this;
}

int Interface::GetRefCount() {
    return m_refCount.load(std::memory_order_relaxed);
}

const char* Interface::GetTypeName() {
    return "zr_interface";
}

bool Interface::IsTypeOf(const char* name) {
    return EqualNoCase(name, "zr_interface") || EqualNoCase(name, GetTypeName());
}

ResultEnum Interface::CopyFrom(Interface* source, unsigned flags) {
    return source != nullptr ? CloneFrom(source, flags) : kWrongClass;
}

ResultEnum Interface::CloneFrom(Interface* source, unsigned flags) {
    if (source == nullptr) return kWrongClass;
    auto* from = dynamic_cast<Extension*>(source);
    auto* to = dynamic_cast<Extension*>(this);
    if (from == nullptr || to == nullptr || from == to) return kSuccess;
    if (flags == 0) flags = kCloneParams | kCloneMetadata;
    try {
        // Both copies are made before the first one is set.
        const auto params = CloneOf(from->GetParams(false));
        const auto metadata = CloneOf(from->GetMetadata(false));
        if ((flags & kCloneParams) != 0) to->SetParams(params.Get());
        if ((flags & kCloneMetadata) != 0) to->SetMetadata(metadata.Get());
        return kSuccess;
    } catch (...) {
        return kCannotOpen;
    }
}

void* Interface::operator new(std::size_t size) noexcept {
    return mem::allocate(size);
}
void Interface::operator delete(void* storage) noexcept {
    mem::free(storage);
}

}  // namespace vl
