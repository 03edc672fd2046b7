// SPDX-License-Identifier: MIT
#include "app/operations/compare/material_classes.h"

#include <map>
#include <string>

#include "app/operations/compare/canonical.h"
#include "gltf/members.h"

namespace zr::compare {

using gltf::Document;
using gltf::Json;
using gltf::Kind;

namespace {

std::string NameOf(const Document& document, std::size_t material) {
    return std::string(gltf::NameOf(document.Elements(Kind::kMaterial)[material]));
}

class MaterialMatcher {
public:
    MaterialMatcher(const Document& a, const Document& b)
        : m_a(a),
          m_b(b),
          m_plainA(a, Names::kIgnore),
          m_plainB(b, Names::kIgnore),
          m_takenA(a.Elements(Kind::kMaterial).size(), false),
          m_ofB(b.Elements(Kind::kMaterial).size(), kNone) {
        m_result.classes.ofA.resize(m_takenA.size());
    }

    MaterialMatching Run() {
        MatchContentAndName();
        Pair([&](std::size_t i) { return m_plainA.Of(Kind::kMaterial, i); },
             [&](std::size_t j) { return m_plainB.Of(Kind::kMaterial, j); });
        MatchCopies();
        Pair([&](std::size_t i) { return NameOf(m_a, i); }, [&](std::size_t j) { return NameOf(m_b, j); });
        MatchLast();
        for (std::size_t j = 0; j < m_ofB.size(); ++j)
            m_result.classes.ofB.push_back(m_ofB[j] != kNone ? m_ofB[j] : m_takenA.size() + j);
        return std::move(m_result);
    }

private:
    std::vector<std::size_t>& OfA() { return m_result.classes.ofA; }

    void MatchContentAndName() {
        Canonical namedA(m_a, Names::kCount), namedB(m_b, Names::kCount);
        std::map<std::string_view, std::size_t> first;
        for (std::size_t i = 0; i < OfA().size(); ++i)
            OfA()[i] = first.try_emplace(namedA.Of(Kind::kMaterial, i), i).first->second;
        for (std::size_t j = 0; j < m_ofB.size(); ++j) {
            const auto known = first.find(namedB.Of(Kind::kMaterial, j));
            if (known == first.end()) continue;
            m_ofB[j] = known->second;
            m_takenA[known->second] = true;
        }
        for (std::size_t i = 0; i < OfA().size(); ++i) m_takenA[i] = m_takenA[OfA()[i]];
    }

    template <typename KeyA, typename KeyB>
    void Pair(KeyA keyA, KeyB keyB) {
        std::map<std::string, std::vector<std::size_t>> free;
        for (std::size_t i = m_takenA.size(); i-- > 0;)
            if (!m_takenA[i]) free[keyA(i)].push_back(i);
        for (std::size_t j = 0; j < m_ofB.size(); ++j) {
            const auto found = m_ofB[j] == kNone ? free.find(keyB(j)) : free.end();
            if (found == free.end() || found->second.empty()) continue;
            Take(found->second.back(), j);
            found->second.pop_back();
        }
    }

    void Take(std::size_t i, std::size_t j) {
        m_takenA[i] = true;
        m_ofB[j] = OfA()[i];
        m_result.different.emplace_back(i, j);
    }

    // Materials that one document has twice and the other once.
    void MatchCopies() {
        std::map<std::string_view, std::size_t> ofA, ofB;
        for (std::size_t i = 0; i < m_takenA.size(); ++i)
            if (m_takenA[i]) ofA.try_emplace(m_plainA.Of(Kind::kMaterial, i), i);
        for (std::size_t j = 0; j < m_ofB.size(); ++j)
            if (m_ofB[j] != kNone) ofB.try_emplace(m_plainB.Of(Kind::kMaterial, j), j);
        for (std::size_t j = 0; j < m_ofB.size(); ++j) {
            const auto same = m_ofB[j] == kNone ? ofA.find(m_plainB.Of(Kind::kMaterial, j)) : ofA.end();
            if (same != ofA.end()) Take(same->second, j);
        }
        for (std::size_t i = 0; i < m_takenA.size(); ++i) {
            const auto same = m_takenA[i] ? ofB.end() : ofB.find(m_plainA.Of(Kind::kMaterial, i));
            if (same == ofB.end()) continue;
            m_takenA[i] = true;
            OfA()[i] = m_ofB[same->second];
            m_result.different.emplace_back(i, same->second);
        }
    }

    void MatchLast() {
        std::vector<std::size_t> a, b;
        for (std::size_t i = 0; i < m_takenA.size(); ++i)
            if (!m_takenA[i]) a.push_back(i);
        for (std::size_t j = 0; j < m_ofB.size(); ++j)
            if (m_ofB[j] == kNone) b.push_back(j);
        if (a.size() == 1 && b.size() == 1) Take(a[0], b[0]);
    }

    const Document& m_a;
    const Document& m_b;
    Canonical m_plainA, m_plainB;
    std::vector<bool> m_takenA;
    std::vector<std::size_t> m_ofB;
    MaterialMatching m_result;
};

}  // namespace

MaterialMatching MatchMaterials(const Document& a, const Document& b) {
    return MaterialMatcher(a, b).Run();
}

}  // namespace zr::compare
