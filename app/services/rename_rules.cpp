// SPDX-License-Identifier: MIT
#include "app/services/rename_rules.h"

#include <re2/re2.h>

#include <stdexcept>

#include "host/string.h"
#include "kernix/utf.h"

namespace zr {

RenameRules::RenameRules() = default;
RenameRules::~RenameRules() = default;
RenameRules::RenameRules(RenameRules&&) noexcept = default;
RenameRules& RenameRules::operator=(RenameRules&&) noexcept = default;

void RenameRules::Add(std::string_view rule) {
    std::size_t equals = 0;
    while (equals < rule.size() && rule[equals] != '=') equals += rule[equals] == '\\' ? 2 : 1;
    if (equals >= rule.size()) {
        throw std::invalid_argument("rename rule without an equals sign: " + std::string(rule));
    }
    auto pattern = std::make_unique<re2::RE2>(re2::StringPiece(rule.data(), equals), re2::RE2::Quiet);
    if (!pattern->ok()) throw std::invalid_argument("rename pattern: " + pattern->error());
    std::string replacement(rule.substr(equals + 1));
    std::string error;
    if (!pattern->CheckRewriteString(replacement, &error)) {
        throw std::invalid_argument("rename replacement: " + error);
    }
    m_rules.emplace_back(std::move(pattern), std::move(replacement));
}

std::string RenameRules::Apply(std::string name) const {
    for (const auto& [pattern, replacement] : m_rules) re2::RE2::GlobalReplace(&name, *pattern, replacement);
    return name;
}

void RenameRules::Rename(vl::Interface*, vl::String* name, void* context) {
    const auto& rules = *static_cast<const RenameRules*>(context);
    std::string text = kernix::ToUtf8(name->Text());
    // The rest of a character that was cut apart.
    constexpr std::string_view kReplacement = "\uFFFD";
    if (text.ends_with(kReplacement)) text.resize(text.size() - kReplacement.size());
    name->Set(rules.Apply(std::move(text)).c_str());
}

}  // namespace zr
