// SPDX-License-Identifier: MIT
#pragma once

#include "host/interface.h"
#include "host/ref.h"
#include "host/text.h"
#include "host/var.h"
#include "host/word.h"

namespace vl {

class Context;
class Params;
namespace xml {
class Element;
}

// What every extension offers besides the operations of its own class. The implementations here are the core
// library's; they keep the extension's parameters and metadata, created on first use. None of them throws:
// one that runs out of memory does nothing and returns null or the result for a wrong class. The order of
// functions and fields is the binary interface (host/api.h).
class KERNIX_API Extension : public Interface {
public:
    Extension();
    ~Extension() override;

    const char* GetTypeName() override { return "zr_extension"; }
    bool IsTypeOf(const char* name) override {
        return EqualNoCase(name, "zr_extension") || Interface::IsTypeOf(name);
    }
    ResultEnum CopyFrom(Interface* source, unsigned flags) override {
        return dynamic_cast<Extension*>(source) != nullptr ? CloneFrom(source, flags) : kWrongClass;
    }

    virtual int GetInterfaceVersion();  // 0

    // The type of the first parameter at this position, ZR_VALUE_NONE when there is none.
    virtual zr_VALUETYPE GetParamType(int position);

    // Fills element with a description of the extension's methods. kCannotOpen, with the element unchanged,
    // when it cannot be read. flags are 0. Here: kWrongClass, as there are none.
    virtual ResultEnum QueryInfo(xml::Element* element, unsigned flags);

    // Runs a method by number. params and context may be null. Here: kWrongClass, as there is none.
    virtual ResultEnum Invoke(int method, Params* params, Context* context);

    // Runs the method whose number is in command; arguments may hold the vl::Params as an object. The
    // result is the number that Invoke returns.
    virtual Var InvokeCommand(const Var& command, const Var& arguments, Context* context);

    // Parameters by position among those of the type (vl::Params). SetParam returns the former value,
    // GetParam the value, or the given one when the parameter is absent. A pointer is passed in the word
    // itself; where a type is read through a pointer (ZR_VALUE_MATRIX), GetParam fills what it points to.
    virtual Word SetParam(int position, Word value, zr_VALUETYPE type);
    virtual Word GetParam(int position, Word value, zr_VALUETYPE type) const;

    // The same for int, bool, float and object values as Vars; others yield kWrongClass and an empty Var.
    virtual ResultEnum SetParamVar(int position, const Var& value);
    virtual Var GetParamVar(int position) const;
    virtual bool DeleteParam(int position);

    // Without a count for the caller. Null when absent and not to be created.
    virtual VarMap* GetMetadata(bool create);
    virtual ResultEnum SetMetadata(VarMap* metadata);
    virtual Params* GetParams(bool create);
    virtual ResultEnum SetParams(Params* params);

private:
    bool SetOwnParam(int position, Word value, zr_VALUETYPE type);

    Ref<Interface> m_params;
    Ref<Interface> m_metadata;
};

}  // namespace vl
