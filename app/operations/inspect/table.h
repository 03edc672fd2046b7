// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace zr::inspect {

// Empty, a whole number, a number or a text.
using Cell = std::variant<std::monostate, std::uint64_t, double, std::string>;

struct Table {
    std::string name;                  // "meshes"
    std::vector<std::string> columns;  // in camelCase, which serve as JSON member names
    std::vector<std::vector<Cell>> rows;
};

// As plain text with aligned columns. At most `most` rows per table, then the number of further rows.
std::string AsText(std::span<const Table> tables, std::size_t most);
std::string AsMarkdown(std::span<const Table> tables);
// As comma-separated values. Each line begins with the name of its table, the line of column names included.
std::string AsCsv(std::span<const Table> tables);

}  // namespace zr::inspect
