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

// Root of every counted object. A new object has count 1, which belongs to its creator; the last Release ends
// the object. The counts may be changed on any thread. host/ref.h holds counts safely. The order of functions
// and fields is the binary interface (host/api.h).
class Unknown {
public:
    virtual unsigned AddRef() = 0;   // the count afterwards, as Release
    virtual unsigned Release() = 0;  // 0: the object is gone

    // Gives the object itself under another interface, with a count of its own that the caller releases.
    // An interface the object does not have: kWrongClass, and out is null.
    virtual ResultEnum QueryInterface(const Guid& id, Unknown*& out) = 0;
    virtual ResultEnum QueryInterface(const char* typeName, Unknown*& out) = 0;

protected:
    virtual ~Unknown() = default;
};

// A counted object of the core library. Classes of hosts and modules derive from it or from one of its kin.
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
    // stands here because this is its place in the table.
    virtual void DeleteThis();

public:
    virtual int GetRefCount();  // for diagnosis: another thread may change it at once

    // A constant that lives as long as the program, or the module that the object came from.
    virtual const char* GetTypeName();

    // The base test of the family: "zr_interface" and the object's own type name, whatever the case.
    virtual bool IsTypeOf(const char* name);

    // Copies the state that source and this object have in common through CloneFrom, when source is of
    // the class that the concrete family asks for; kWrongClass, with this unchanged, when it is not or null.
    virtual ResultEnum CopyFrom(Interface* source, unsigned flags);

    // Copies the base state of source. flags: kCloneParams, kCloneMetadata; 0 copies both. A base without
    // either (anything that is no extension) has nothing to copy and answers kSuccess. kCannotOpen, with this
    // unchanged, when memory runs out.
    ResultEnum CloneFrom(Interface* source, unsigned flags);
    static constexpr unsigned kCloneParams = 0x1;
    static constexpr unsigned kCloneMetadata = 0x2;

    // Storage comes from vl::mem. Without any, a new-expression of this family is null.
    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* storage) noexcept;

private:
    std::atomic<int> m_refCount{1};
};

}  // namespace vl
