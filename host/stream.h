// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/interface.h"
#include "host/string.h"
#include "host/window_types.h"

namespace vl {

// A run of bytes with a position.
// The order of functions and fields is the binary interface (host/api.h).
class KERNIX_API Stream : public Interface {
public:
    // A stream over a resource of a module. name: resource type, a vertical bar, resource name. flags: 2
    // (read a resource), the only value supported. Null when there is no such resource and when memory runs
    // out.
    static Stream* Create(HINSTANCE module, const String& name, unsigned flags);

    // A new, empty stream in memory, for writing and reading. Null when memory runs out.
    static Stream* CreateInMemory();

    // From the start (origin 0), the position (1) or the end (2). A position outside the content becomes its
    // nearer end.
    virtual void Seek(std::int64_t offset, int origin) = 0;
    virtual std::size_t Read(void* out, std::size_t size) = 0;   // bytes read, fewer at the end
    virtual bool Write(const void* data, std::size_t size) = 0;  // false on a read-only stream
    virtual std::size_t GetSize() = 0;

    const char* GetTypeName() override { return "zr_stream"; }
};

}  // namespace vl
