// SPDX-License-Identifier: MIT
#include "host/extension.h"

#include "host/params.h"

namespace vl {

Extension::Extension() = default;

Extension::~Extension() {
    m_metadata.Reset();
    m_params.Reset();
}

int Extension::GetInterfaceVersion() {
    return 0;
}

zr_VALUETYPE Extension::GetParamType(int position) {
    Params* params = GetParams(false);
    if (params == nullptr) return ZR_VALUE_NONE;
    for (const zr_VALUETYPE type :
         {ZR_VALUE_INT, ZR_VALUE_BOOL, ZR_VALUE_FLOAT, ZR_VALUE_OBJECT, ZR_VALUE_SCENE}) {
        // Two different fallbacks tell an absent parameter from any value.
        if (params->GetParam(position, 0, type) == params->GetParam(position, 1, type)) return type;
    }
    return ZR_VALUE_NONE;
}

ResultEnum Extension::QueryInfo(xml::Element*, unsigned) {
    return kWrongClass;
}

ResultEnum Extension::Invoke(int, Params*, Context*) {
    return kWrongClass;
}

Var Extension::InvokeCommand(const Var& command, const Var& arguments, Context* context) {
    const int* method = command.AsInt();
    if (method == nullptr) return Var(static_cast<int>(kWrongClass));
    return Var(static_cast<int>(Invoke(*method, dynamic_cast<Params*>(arguments.AsObject()), context)));
}

Word Extension::SetParam(int position, Word value, zr_VALUETYPE type) {
    const Word former = Extension::GetParam(position, 0, type);
    SetOwnParam(position, value, type);
    return former;
}

bool Extension::SetOwnParam(int position, Word value, zr_VALUETYPE type) try {
    Params* params = GetParams(true);
    return params != nullptr && params->SetParam(position, value, type);
} catch (...) {
    return false;
}

Word Extension::GetParam(int position, Word value, zr_VALUETYPE type) const {
    auto* params = dynamic_cast<Params*>(m_params.Get());
    return params != nullptr ? params->GetParam(position, value, type) : value;
}

ResultEnum Extension::SetParamVar(int position, const Var& value) {
    bool done = false;
    if (const int* number = value.AsInt()) done = SetOwnParam(position, ToWord(*number), ZR_VALUE_INT);
    if (const bool* flag = value.AsBool()) done = SetOwnParam(position, ToWord(*flag), ZR_VALUE_BOOL);
    if (const float* real = value.AsFloat()) done = SetOwnParam(position, ToWord(*real), ZR_VALUE_FLOAT);
    if (Interface* object = value.AsObject()) {
        done = SetOwnParam(position, ToWord(object), ZR_VALUE_OBJECT);
    }
    return done ? kSuccess : kWrongClass;
}

Var Extension::GetParamVar(int position) const {
    auto* params = dynamic_cast<Params*>(m_params.Get());
    if (params == nullptr) return Var();
    const zr_VALUETYPE type = const_cast<Extension*>(this)->GetParamType(position);
    const Word value = params->GetParam(position, 0, type);
    switch (type) {
        case ZR_VALUE_INT:
            return Var(FromWord<int>(value));
        case ZR_VALUE_BOOL:
            return Var(value != 0);
        case ZR_VALUE_FLOAT:
            return Var(FromWord<float>(value));
        case ZR_VALUE_OBJECT:
            return Var(FromWord<Interface*>(value));
        default:
            return Var();
    }
}

bool Extension::DeleteParam(int position) {
    Params* params = GetParams(false);
    return params != nullptr && params->DeleteParam(position, GetParamType(position));
}

VarMap* Extension::GetMetadata(bool create) {
    if (!m_metadata && create) m_metadata = Ref<Interface>::Adopt(VarMap::Create());
    return dynamic_cast<VarMap*>(m_metadata.Get());
}

ResultEnum Extension::SetMetadata(VarMap* metadata) {
    m_metadata = Ref<Interface>::Share(metadata);
    return kSuccess;
}

Params* Extension::GetParams(bool create) {
    if (!m_params && create) m_params = Ref<Interface>::Adopt(Params::Create());
    return dynamic_cast<Params*>(m_params.Get());
}

ResultEnum Extension::SetParams(Params* params) {
    m_params = Ref<Interface>::Share(params);
    return kSuccess;
}

}  // namespace vl
