// SPDX-License-Identifier: MIT
#include "app/operations/inspect/table.h"

#include <algorithm>

#include "base/text.h"

namespace zr::inspect {

namespace {

std::string TextOf(const Cell& cell) {
    if (const auto* text = std::get_if<std::string>(&cell)) return *text;
    if (const auto* whole = std::get_if<std::uint64_t>(&cell)) return std::to_string(*whole);
    if (const auto* number = std::get_if<double>(&cell)) return Short(*number);
    return {};
}

// Columns of numbers are aligned right, columns with any text left.
bool IsOfNumbers(const Table& table, std::size_t column) {
    bool hasNumber = false;
    for (const auto& row : table.rows) {
        if (std::holds_alternative<std::string>(row[column])) return false;
        hasNumber = hasNumber || !std::holds_alternative<std::monostate>(row[column]);
    }
    return hasNumber;
}

// The number of characters, assuming that all have the same width.
std::size_t Width(std::string_view utf8) {
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

// Makes a text printable on one line, with special characters escaped.
std::string Escaped(const std::string& text, std::string_view special) {
    std::string escaped;
    for (const char c : Printable(text)) {
        if (special.find(c) != std::string_view::npos) escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

void AddTextTable(const Table& table, std::size_t most, std::string& text) {
    const std::size_t shown = std::min(most, table.rows.size());
    std::vector<std::size_t> widths;
    std::vector<bool> isToTheRight;
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        isToTheRight.push_back(IsOfNumbers(table, column));
        widths.push_back(Width(table.columns[column]));
        for (std::size_t row = 0; row < shown; ++row)
            widths.back() = std::max(widths.back(), Width(Escaped(TextOf(table.rows[row][column]), "")));
    }
    const auto add = [&](const std::string& field, std::size_t column) {
        const std::string gap(widths[column] - Width(field), ' ');
        text += Join("  ", isToTheRight[column] ? gap : "", field, isToTheRight[column] ? "" : gap);
    };
    const auto end = [&] {
        text.erase(text.find_last_not_of(' ') + 1);
        text += '\n';
    };
    text += Join(table.name, "\n");
    for (std::size_t column = 0; column < table.columns.size(); ++column) add(table.columns[column], column);
    end();
    for (std::size_t row = 0; row < shown; ++row) {
        for (std::size_t column = 0; column < table.columns.size(); ++column)
            add(Escaped(TextOf(table.rows[row][column]), ""), column);
        end();
    }
    if (shown < table.rows.size()) text += Join("  and ", table.rows.size() - shown, " more\n");
}

}  // namespace

std::string AsText(std::span<const Table> tables, std::size_t most) {
    std::string text;
    for (const Table& table : tables) {
        if (!text.empty()) text += '\n';
        AddTextTable(table, most, text);
    }
    return text;
}

std::string AsMarkdown(std::span<const Table> tables) {
    std::string text;
    for (const Table& table : tables) {
        text += Join(text.empty() ? "" : "\n", "## ", table.name, "\n\n|");
        for (const std::string& column : table.columns) text += Join(" ", column, " |");
        text += "\n|";
        for (std::size_t column = 0; column < table.columns.size(); ++column)
            text += IsOfNumbers(table, column) ? "---:|" : "---|";
        for (const auto& row : table.rows) {
            text += "\n|";
            for (const Cell& cell : row) text += Join(" ", Escaped(TextOf(cell), "|\\`*_<"), " |");
        }
        text += '\n';
    }
    return text;
}

std::string AsCsv(std::span<const Table> tables) {
    std::string text;
    for (const Table& table : tables) {
        text += table.name;
        for (const std::string& column : table.columns) text += Join(",", column);
        text += '\n';
        for (const auto& row : table.rows) {
            text += table.name;
            for (const Cell& cell : row) text += Join(",", CsvField(TextOf(cell)));
            text += '\n';
        }
    }
    return text;
}

}  // namespace zr::inspect
