// SPDX-License-Identifier: MIT
#include "tests/app/commands/json_schema.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "base/text.h"

namespace zr::test {
namespace {

using gltf::Json;

class Checker {
public:
    explicit Checker(const Json& root) : m_root(root) {}

    std::string Fault(const Json& value, const Json& schema, const std::string& place) const {
        for (const gltf::JsonMember& word : schema.Members()) {
            std::string fault = FaultOf(word.Name(), word.value, value, schema, place);
            if (!fault.empty()) return fault;
        }
        return {};
    }

private:
    std::string FaultOf(std::string_view word, const Json& is, const Json& value, const Json& schema,
                        const std::string& place) const {
        if (word == "title" || word == "description" || word == "$schema" || word == "$defs") return {};
        if (word == "$ref") return Fault(value, Definition(is.String()), place);
        if (word == "type")
            return HasType(value, is.String()) ? "" : place + ": not of type " + std::string(is.String());
        if (word == "const") return gltf::EqualJson(value, is) ? "" : place + ": another value";
        if (word == "minimum") return value.Number() >= is.Number() ? "" : place + ": too small";
        if (word == "required") return MissingMember(value, is, place);
        if (word == "properties") return MemberFault(value, is, place);
        if (word == "additionalProperties") return OtherMemberFault(value, is, schema, place);
        if (word == "items") return ItemFault(value, is, place);
        if (word == "allOf") {
            for (const Json& each : is.Items()) {
                std::string fault = Fault(value, each, place);
                if (!fault.empty()) return fault;
            }
            return {};
        }
        if (word == "oneOf") return ChoiceFault(value, is, place);
        return Join(place, ": the schema's word ", word, " is not known here");
    }

    const Json& Definition(std::string_view reference) const {
        const std::string_view prefix = "#/$defs/";
        return *m_root.Find("$defs")->Find(reference.substr(prefix.size()));
    }

    static bool HasType(const Json& value, std::string_view type) {
        if (type == "object") return value.IsObject();
        if (type == "array") return value.IsArray();
        if (type == "string") return value.IsString();
        if (type == "boolean") return value.IsBool();
        return value.IsNumber() && (type == "number" || std::floor(value.Number()) == value.Number());
    }

    static std::string MissingMember(const Json& value, const Json& names, const std::string& place) {
        for (const Json& name : names.Items()) {
            if (value.Find(name.String()) == nullptr) return Join(place, ": ", name.String(), " is missing");
        }
        return {};
    }

    std::string MemberFault(const Json& value, const Json& schemas, const std::string& place) const {
        for (const gltf::JsonMember& member : value.Members()) {
            const Json* schema = schemas.Find(member.Name());
            if (schema == nullptr) continue;
            std::string fault = Fault(member.value, *schema, Join(place, "/", member.Name()));
            if (!fault.empty()) return fault;
        }
        return {};
    }

    std::string OtherMemberFault(const Json& value, const Json& others, const Json& schema,
                                 const std::string& place) const {
        const Json* known = schema.Find("properties");
        for (const gltf::JsonMember& member : value.Members()) {
            if (known != nullptr && known->Find(member.Name()) != nullptr) continue;
            std::string fault = Fault(member.value, others, Join(place, "/", member.Name()));
            if (!fault.empty()) return fault;
        }
        return {};
    }

    std::string ItemFault(const Json& value, const Json& schema, const std::string& place) const {
        for (std::size_t i = 0; i < value.Items().size(); ++i) {
            std::string fault = Fault(value.Items()[i], schema, Join(place, "/", i));
            if (!fault.empty()) return fault;
        }
        return {};
    }

    // Of the alternatives that fail, the one for this command says why.
    std::string ChoiceFault(const Json& value, const Json& choices, const std::string& place) const {
        std::size_t fitting = 0;
        std::string telling = "no command of the schema";
        for (const Json& choice : choices.Items()) {
            const std::string fault = Fault(value, choice, place);
            if (fault.empty()) ++fitting;
            if (!fault.empty() && fault.find("/command: ") == fault.npos) telling = fault;
        }
        return fitting == 1 ? "" : telling;
    }

    const Json& m_root;
};

}  // namespace

std::string SchemaFault(const gltf::Json& value, const gltf::Json& schema) {
    return Checker(schema).Fault(value, schema, "");
}

}  // namespace zr::test
