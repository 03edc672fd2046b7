// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/array.h"

namespace zrt {

// The keys of a track, in order, to be edited as a whole and written back: inserting into or removing from
// the host's array moves all that follow each time.
template <typename Key>
std::vector<Key*> ReadKeys(vl::Array* track) {
    const vl::ArrayOf<Key*> keys(track);
    return {keys.begin(), keys.end()};
}

// The array must be at least as long as `keys` (MakeRoom). Allocates nothing.
template <typename Key>
void WriteKeys(vl::Array* track, const std::vector<Key*>& keys) {
    const int count = static_cast<int>(keys.size());
    for (int i = 0; i < count; ++i) track->SetAt(i, vl::ToWord(keys[static_cast<std::size_t>(i)]));
    for (int i = track->m_nCount; i-- > count;) track->RemoveAt(i);
}

// Extends a track to at least `count` keys with nulls, which WriteKeys replaces or removes.
inline void MakeRoom(vl::Array* track, std::size_t count) {
    while (static_cast<std::size_t>(track->m_nCount) < count) track->Add(0);
}

}  // namespace zrt
