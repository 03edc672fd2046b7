// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "host/api.h"
#include "host/result.h"
#include "host/weak_ptr.h"

namespace vl {

struct Guid {
    std::uint32_t data1;
    std::uint16_t data2;
    std::uint16_t data3;
    std::uint8_t data4[8];
    friend bool operator==(const Guid&, const Guid&) = default;
};

// Root of every reference-counted object. A new object has count 1, which belongs to its creator; the last
// Release destroys the object. Counts may be changed on any thread. vl::Ref (host/ref.h) manages them safely.
// The order of functions and fields is the binary interface (host/api.h).
class Unknown {
public:
    virtual unsigned AddRef() = 0;   // the count afterwards, as Release
    virtual unsigned Release() = 0;  // 0: the object is destroyed

    // Fills out with the object itself under another interface, and a count that the caller releases.
    // kWrongClass, with out null, when the object does not have that interface.
    virtual ResultEnum QueryInterface(const Guid& id, Unknown*& out) = 0;
    virtual ResultEnum QueryInterface(const char* typeName, Unknown*& out) = 0;

protected:
    virtual ~Unknown() = default;
};

// A counted object of the core library. Classes of hosts and modules derive from it, directly or not.
// The order of functions and fields is the binary interface (host/api.h).
class KERNIX_API Interface : public Unknown, public WeakPtrOwner<Interface> {
public:
    static const Guid kInterfaceId;

    Interface();
    Interface(const Interface&) = delete;
    Interface& operator=(const Interface&) = delete;

    unsigned AddRef() override;
    unsigned Release() override;
    ResultEnum QueryInterface(const Guid& id, Unknown*& out) override;
    ResultEnum QueryInterface(const char* typeName, Unknown*& out) override;
    ~Interface() override;

private:
    // Called once, by the last Release, so that a class of a module is deleted by the module's own code. It
    // is declared here because this is its slot in the table.
    virtual void DeleteThis();

public:
    virtual int GetRefCount();  // for diagnosis: another thread may change it at any time

    // A constant that lives as long as the program, or the module that the object came from.
    virtual const char* GetTypeName();

    // True for "zr_interface" and the object's own type name, in upper or lower case. Overrides add the names
    // of their classes.
    virtual bool IsTypeOf(const char* name);

    // Copies the state that source and this object have in common through CloneFrom, when source is of the
    // class that the concrete family requires; kWrongClass, with this unchanged, when it is not or is null.
    virtual ResultEnum CopyFrom(Interface* source, unsigned flags);

    // Copies the base state of source. flags: kCloneParams, kCloneMetadata; 0 copies both. An object with
    // neither (anything but an extension) has nothing to copy: kSuccess. kCannotOpen, with this unchanged,
    // when memory runs out.
    ResultEnum CloneFrom(Interface* source, unsigned flags);
    static constexpr unsigned kCloneParams = 0x1;
    static constexpr unsigned kCloneMetadata = 0x2;

    // Storage comes from vl::mem. When it runs out, a new-expression of this family yields null.
    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* storage) noexcept;

private:
    std::atomic<int> m_refCount{1};
};

}  // namespace vl
