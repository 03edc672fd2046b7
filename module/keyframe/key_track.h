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

template <typename Key>
void WriteKeys(vl::Array* track, const std::vector<Key*>& keys) {
    track->RemoveAll();
    for (Key* key : keys) track->Add(vl::ToWord(key));
}

inline std::vector<float> ReadTimes(vl::Array* times) {
    const vl::ArrayOf<float> view(times);
    return {view.begin(), view.end()};
}

}  // namespace zrt
