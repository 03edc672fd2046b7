// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/array.h"

namespace zrt {

// The keys of a track, in order, to be changed as a whole and put back: removing and inserting in the host's
// array one by one costs a move of all that follows.
template <typename Key>
std::vector<Key*> ReadKeys(vl::Array* track) {
    const vl::ArrayOf<Key*> keys(track);
    return {keys.begin(), keys.end()};
}

// The room must suffice (MakeRoom), which it does when keys went: this asks for no memory.
template <typename Key>
void WriteKeys(vl::Array* track, const std::vector<Key*>& keys) {
    const int count = static_cast<int>(keys.size());
    for (int i = 0; i < count; ++i) track->SetAt(i, vl::ToWord(keys[static_cast<std::size_t>(i)]));
    for (int i = track->m_nCount; i-- > count;) track->RemoveAt(i);
}

// Lengthens a track by null keys, which WriteKeys replaces or takes away.
inline void MakeRoom(vl::Array* track, std::size_t count) {
    while (static_cast<std::size_t>(track->m_nCount) < count) track->Add(0);
}

}  // namespace zrt
