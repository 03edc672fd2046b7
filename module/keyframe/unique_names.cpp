// SPDX-License-Identifier: MIT
#include "module/keyframe/unique_names.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "host/text.h"
#include "module/keyframe/name_text.h"

namespace zrt {

namespace {

// 10^exponent, or the greatest number where that is too large.
std::uint64_t PowerOfTen(std::size_t exponent) {
    if (exponent > std::numeric_limits<std::uint64_t>::digits10) {
        return std::numeric_limits<std::uint64_t>::max();
    }
    std::uint64_t power = 1;
    for (; exponent > 0; --exponent) power *= 10;
    return power;
}

std::u16string Folded(std::u16string_view name) {
    std::u16string folded(name);
    std::transform(folded.begin(), folded.end(), folded.begin(), vl::FoldCase<char16_t>);
    return folded;
}

}  // namespace

std::u16string UniqueNames::Enter(std::u16string_view name, int maxLength, int baseLimit) {
    std::u16string entered(name);
    if (m_names.contains(Fold(name))) {
        entered = Number(name.substr(0, static_cast<std::size_t>(std::min(maxLength, baseLimit))),
                         static_cast<std::size_t>(maxLength));
    }
    m_names.insert(Fold(entered));
    ++m_count;
    return entered;
}

std::u16string UniqueNames::Fold(std::u16string_view name) const {
    return m_exactCase ? std::u16string(name) : Folded(name);
}

// The first number in [from, end) whose candidate is not taken, or end.
template <typename Candidate>
std::uint64_t UniqueNames::NextFree(Skips& skips, std::uint64_t from, std::uint64_t end,
                                    Candidate candidate) const {
    std::vector<std::uint64_t> passed;
    std::uint64_t number = from;
    while (number < end) {
        const auto skip = skips.find(number);
        if (skip == skips.end() && !m_names.contains(Fold(candidate(number)))) break;
        passed.push_back(number);
        number = skip == skips.end() ? number + 1 : skip->second;
    }
    for (const std::uint64_t taken : passed) skips[taken] = number;
    return std::min(number, end);
}

std::u16string UniqueNames::Number(std::u16string_view base, std::size_t maxLength) {
    const std::uint64_t range = PowerOfTen(maxLength);
    const std::uint64_t first = m_count;
    const std::uint64_t end = first > std::numeric_limits<std::uint64_t>::max() - range
                                  ? std::numeric_limits<std::uint64_t>::max()
                                  : first + range;

    // The candidates for numbers of one length are one family: the base, cut to leave room, and the number.
    // Where the number takes up all the room they are digits alone, which repeat in a cycle.
    const auto digitsAlone = [maxLength](std::uint64_t value) {
        const std::u16string digits = Decimal<char16_t>(value);
        return std::u16string(maxLength - digits.size(), u'0') + digits;
    };
    for (std::uint64_t number = first; number < end;) {
        const std::size_t length = Decimal<char>(number).size();
        if (length < maxLength) {
            const std::u16string text(base.substr(0, maxLength - length));
            const auto candidate = [&text](std::uint64_t n) { return text + Decimal<char16_t>(n); };
            const std::uint64_t last = std::min(end, PowerOfTen(length));
            number = NextFree(m_families[Fold(text)], number, last, candidate);
            if (number < last) return candidate(number);
        } else {
            const std::uint64_t value = number % range;
            const std::uint64_t last = value + std::min(range - value, end - number);
            const std::uint64_t free = NextFree(m_digitFamilies[maxLength], value, last, digitsAlone);
            if (free < last) return digitsAlone(free);
            number += last - value;
        }
    }
    return digitsAlone((end - 1) % range);
}

std::u16string NumberedNames::Enter(std::u16string_view name) {
    std::u16string candidate(name);
    std::u16string folded = Folded(candidate);
    for (;;) {
        const auto [entry, isNew] = m_next.try_emplace(folded, 1);
        if (isNew) return candidate;
        const std::u16string number = Decimal<char16_t>(entry->second++);
        candidate += number;
        folded += number;
    }
}

}  // namespace zrt
