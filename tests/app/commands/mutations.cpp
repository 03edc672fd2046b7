// SPDX-License-Identifier: MIT
#include "tests/app/commands/mutations.h"

#include <algorithm>
#include <cstring>

namespace zr::test {
namespace {

constexpr const char* kNumbers[] = {
    "0",          "-1",   "1",     "2",     "255", "65536", "4294967295",          "4294967296",
    "2147483647", "1e38", "1e308", "1e999", "-0",  "0.5",   "18446744073709551615"};
constexpr const char* kValues[] = {"null", "true", "[]",        "{}",    "\"\"",
                                   "[0]",  "[[]]", "{\"a\":0}", "\"x\"", "9"};

bool IsNumber(char c) {
    return (c >= '0' && c <= '9') || c == '-' || c == '.';
}

class Mutation {
public:
    Mutation(std::string& document, Random& random) : m_document(document), m_random(random) {}

    void Make() {
        if (m_document.empty()) return;
        switch (m_random.Pick(10)) {
            case 0:
                m_document[Place()] ^= static_cast<char>(1U << m_random.Pick(8));
                break;
            case 1:
                m_document[Place()] = static_cast<char>(m_random.Pick(256));
                break;
            case 2:
                Cut();
                break;
            case 3:
                m_document.resize(Place());
                break;
            case 4:
                Word();
                break;
            case 5:
                Move();
                break;
            case 6:
                Value();
                break;
            default:
                Number();
        }
        MendLengths();
    }

private:
    std::size_t Place() { return m_random.Pick(m_document.size()); }

    // Also past the container's header and length fields, where most faults in the JSON text are.
    std::size_t PlaceOf(bool (*wanted)(char)) {
        const auto from = m_document.begin() + static_cast<std::ptrdiff_t>(Place());
        const auto found = std::find_if(from, m_document.end(), wanted);
        return static_cast<std::size_t>(found - m_document.begin());
    }

    void Cut() {
        const std::size_t from = Place();
        m_document.erase(from, 1 + m_random.Pick(40));
    }

    void Move() {
        const std::string piece = m_document.substr(Place(), 1 + m_random.Pick(60));
        m_document.insert(Place(), piece);
    }

    void Number() {
        const std::size_t from = PlaceOf(IsNumber);
        std::size_t end = from;
        while (end < m_document.size() && IsNumber(m_document[end])) ++end;
        if (from < end) m_document.replace(from, end - from, kNumbers[m_random.Pick(std::size(kNumbers))]);
    }

    // Another word of the document.
    void Word() {
        const auto word = [this](std::size_t& from) {
            from = PlaceOf([](char c) { return c == '"'; });
            const std::size_t end = m_document.find('"', std::min(from + 1, m_document.size()));
            return end == std::string::npos ? std::string() : m_document.substr(from, end + 1 - from);
        };
        std::size_t from = 0, to = 0;
        const std::string source = word(from), target = word(to);
        if (!source.empty() && !target.empty()) m_document.replace(to, target.size(), source);
    }

    // A value of another type, or of none.
    void Value() {
        const std::size_t colon = PlaceOf([](char c) { return c == ':'; });
        if (colon + 1 >= m_document.size()) return;
        const std::size_t end = m_document.find_first_of(",}]", colon);
        if (end == std::string::npos) return;
        m_document.replace(colon + 1, end - colon - 1, kValues[m_random.Pick(std::size(kValues))]);
    }

    // A container with wrong lengths is refused at once, so they are usually updated.
    void MendLengths() {
        constexpr std::size_t kHeader = 20;
        if (!m_document.starts_with("glTF") || m_document.size() < kHeader || m_random.Pick(8) == 0) return;
        // The JSON text ends where the next chunk begins.
        const std::size_t bin = m_document.rfind(std::string_view("BIN\0", 4));
        std::size_t json =
            (bin == std::string::npos || bin < kHeader + 4 ? m_document.size() : bin - 4) - kHeader;
        if (json % 4 != 0 && kHeader + json <= m_document.size()) {
            m_document.insert(kHeader + json, 4 - json % 4, ' ');
            json += 4 - json % 4;
        }
        Put(8, m_document.size());
        Put(12, json);
    }

    void Put(std::size_t at, std::size_t number) {
        const auto word = static_cast<std::uint32_t>(number);
        std::memcpy(m_document.data() + at, &word, sizeof word);
    }

    std::string& m_document;
    Random& m_random;
};

}  // namespace

std::string Mutated(std::string document, Random& random) {
    for (std::size_t count = 1 + random.Pick(4); count-- > 0;) Mutation(document, random).Make();
    return document;
}

}  // namespace zr::test
