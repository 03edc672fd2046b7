// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace zr::inspect {

// Nothing, a whole number, a number or a text.
using Cell = std::variant<std::monostate, std::uint64_t, double, std::string>;

struct Table {
    std::string name;                  // "meshes"
    std::vector<std::string> columns;  // in camelCase, as members of JSON objects
    std::vector<std::vector<Cell>> rows;
};

// For people: aligned columns. At most `most` rows of a table, then the number of further rows.
std::string AsText(std::span<const Table> tables, std::size_t most);
std::string AsMarkdown(std::span<const Table> tables);
// Lines of comma-separated values; each begins with the name of its table, as does the line of its columns'
// names.
std::string AsCsv(std::span<const Table> tables);

}  // namespace zr::inspect
