// SPDX-License-Identifier: MIT
#pragma once

#include "host/var.h"

namespace vl {

// A list of typed parameters. A position counts the parameters of one type, in the order in which they
// were added: the scene and the first bool of a list both have position 0.
// The order of functions and fields is the binary interface (host/api.h).
class KERNIX_API Params : public Interface {
public:
    // A new, empty list; null when memory runs out.
    static Params* Create();

    // The parameter at the position among those of the type, or fallback when there are fewer.
    virtual Word GetParam(int position, Word fallback, zr_VALUETYPE type) = 0;

    // Appends a parameter. Pointers are not owned.
    virtual void Add(Word value, zr_VALUETYPE type) = 0;

    // Replaces the parameter at the position among those of the type; a position one past the last
    // appends. False for positions beyond that.
    virtual bool SetParam(int position, Word value, zr_VALUETYPE type) = 0;
    virtual bool DeleteParam(int position, zr_VALUETYPE type) = 0;  // false when there is none
    virtual Params* Clone() = 0;                                    // an equal list

    const char* GetTypeName() override { return "zr_params"; }
};

}  // namespace vl
