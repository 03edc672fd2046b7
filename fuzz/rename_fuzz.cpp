// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "app/services/rename_rules.h"

// The first line is a name, each other line a rule for it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const auto nextLine = [&rest] {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(line.size() + (line.size() < rest.size() ? 1 : 0));
        return line;
    };
    const std::string name(nextLine());
    zr::RenameRules rules;
    // Few rules, since names grow with each.
    for (int count = 0; !rest.empty() && count < 4; ++count) {
        try {
            rules.Add(nextLine());
        } catch (const std::invalid_argument&) {
        }
    }
    rules.Apply(name);
    return 0;
}
