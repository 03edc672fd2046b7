// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace re2 {
class RE2;
}
namespace vl {
class Interface;
class String;
}  // namespace vl

namespace zr {

// Renames by regular expressions, which apply in the order in which they were added. Matching takes time
// linear in the name, whatever the pattern.
class RenameRules {
public:
    RenameRules();
    ~RenameRules();
    RenameRules(RenameRules&&) noexcept;
    RenameRules& operator=(RenameRules&&) noexcept;

    // rule: PATTERN=REPLACEMENT. Every match is replaced; \1 to \9 stand for the groups, \0 for the match. An
    // equals sign in the pattern is written \=. Throws std::invalid_argument with what is wrong.
    void Add(std::string_view rule);

    std::string Apply(std::string name) const;  // UTF-8

    // A vl::tk::RenameCallback; context points to the rules.
    static void Rename(vl::Interface* object, vl::String* name, void* context);

private:
    std::vector<std::pair<std::unique_ptr<re2::RE2>, std::string>> m_rules;
};

}  // namespace zr
