// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace zrt {

// A growing set of names that numbers duplicates. The number is the first free one from the count of names
// on, and replaces the end of the name if it does not fit after it:
//
//   box, box, ball, box -> box, box1, ball, box3        at most 4 characters: abcd (12th) -> ab12
//
// Names are UTF-16 units; narrow names come with one unit for each byte. Near-constant time per name, however
// many are equal: a taken number stays taken, so each family of candidates (one text followed by any number)
// remembers which numbers are taken.
class UniqueNames {
public:
    // exactCase false: names that differ in the case of ASCII letters are equal.
    explicit UniqueNames(bool exactCase) : m_exactCase(exactCase) {}

    // Enters the name, numbered if need be, and returns it as entered. maxLength: 4 to 512, the greatest
    // length of a numbered name. baseLimit: the most characters of the name before a number.
    //
    // A number longer than maxLength keeps its last digits; after 10^maxLength numbers the last candidate is
    // entered although it is taken.
    std::u16string Enter(std::u16string_view name, int maxLength, int baseLimit);

    std::size_t Count() const { return m_count; }

private:
    // Taken numbers of one family: number -> one that may be free, further up (a union-find forest).
    using Skips = std::unordered_map<std::uint64_t, std::uint64_t>;

    std::u16string Fold(std::u16string_view name) const;
    std::u16string Number(std::u16string_view base, std::size_t maxLength);
    template <typename Candidate>
    std::uint64_t NextFree(Skips& skips, std::uint64_t from, std::uint64_t end, Candidate candidate) const;

    bool m_exactCase;
    std::size_t m_count = 0;                                 // of calls of Enter
    std::unordered_set<std::u16string> m_names;              // folded
    std::unordered_map<std::u16string, Skips> m_families;    // by the folded text before the number
    std::unordered_map<std::size_t, Skips> m_digitFamilies;  // digits alone, by their count
};

// A growing set of names, compared without regard to the case of ASCII letters. A duplicate gets the next
// number of the name it equals appended, repeatedly until it is new:
//
//   Wood, Wood1, Wood, Stone, stone -> Wood, Wood1, Wood11, Stone, stone1
//
// Names are UTF-16 units; narrow names come with one unit for each byte.
class NumberedNames {
public:
    // Enters the name, numbered if need be and then of any length, and returns it as entered.
    std::u16string Enter(std::u16string_view name);

private:
    std::unordered_map<std::u16string, int> m_next;  // folded name -> the next number to append
};

}  // namespace zrt
