// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <variant>

#include "host/interface.h"
#include "host/word.h"

// Types of generic parameters.
enum zr_VALUETYPE : int {
    ZR_VALUE_NONE = 0,
    ZR_VALUE_INT = 1,
    ZR_VALUE_BOOL = 2,
    ZR_VALUE_FLOAT = 3,  // single precision, its bits in a word
    ZR_VALUE_STRING = 4,
    ZR_VALUE_MATRIX = 7,   // pointer to a vl::Matrix4<double> that the reader supplies
    ZR_VALUE_OBJECT = 14,  // pointer to a vl::Interface
    ZR_VALUE_SCENE = 15,   // pointer to a vl::zr::Scene
};

namespace vl {

// A value of one of the parameter types. Object pointers are not owned.
class Var {
public:
    Var() = default;
    explicit Var(int value) : m_value(value) {}
    explicit Var(bool value) : m_value(value) {}
    explicit Var(float value) : m_value(value) {}
    explicit Var(std::u16string value) : m_value(std::move(value)) {}
    explicit Var(Interface* value) : m_value(value) {}

    bool IsNone() const { return std::holds_alternative<std::monostate>(m_value); }
    const int* AsInt() const { return std::get_if<int>(&m_value); }
    const bool* AsBool() const { return std::get_if<bool>(&m_value); }
    const float* AsFloat() const { return std::get_if<float>(&m_value); }
    const std::u16string* AsString() const { return std::get_if<std::u16string>(&m_value); }
    Interface* AsObject() const {
        auto* object = std::get_if<Interface*>(&m_value);
        return object != nullptr ? *object : nullptr;
    }

    friend bool operator==(const Var&, const Var&) = default;

private:
    std::variant<std::monostate, int, bool, float, std::u16string, Interface*> m_value;
};

// Named values: the metadata of a node or extension.
// The order of functions and fields is the binary interface (host/api.h).
class KERNIX_API VarMap : public Interface {
public:
    // A new, empty map; null when memory runs out.
    static VarMap* Create();

    virtual void Clear() = 0;
    virtual void Set(const std::u16string& name, const Var& value) = 0;  // adds or replaces
    virtual const Var* Find(const std::u16string& name) = 0;  // null when absent; valid until the next change
    virtual int GetCount() = 0;
    virtual VarMap* Clone() = 0;  // an equal map

    const char* GetTypeName() override { return "zr_varmap"; }
};

}  // namespace vl
