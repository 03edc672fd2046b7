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
    // reads a resource, and no other value is known. Null when there is no such resource and when memory runs
    // out.
    static Stream* Create(HINSTANCE module, const String& name, unsigned flags);

    // A new, empty stream in memory, to be written and read. Null when memory runs out.
    static Stream* CreateInMemory();

    // From the start (origin 0), the position (1) or the end (2). A place outside the content is moved to
    // its nearer end.
    virtual void Seek(std::int64_t offset, int origin) = 0;
    virtual std::size_t Read(void* out, std::size_t size) = 0;   // bytes read, fewer at the end
    virtual bool Write(const void* data, std::size_t size) = 0;  // false on a stream that only reads
    virtual std::size_t GetSize() = 0;

    const char* GetTypeName() override { return "zr_stream"; }
};

}  // namespace vl
