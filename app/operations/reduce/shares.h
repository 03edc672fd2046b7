// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/reduce/motion.h"
#include "app/operations/reduce/reduce_tolerance.h"

namespace zr::reduce {

// Thins the tracks of the motion until what hangs on them uses up the tolerance. A node's curves get a share
// of it, from which the bound on the error that they cause follows.
//
// By motion: the shares grow, are moved between the nodes and are tried one by one, for as long as the
// motion, played beside the original, stays within the tolerance. Returns how far each of its watches strays
// in the end.
std::vector<Stray> ThinByMotion(const Motion& motion, std::vector<Track>& tracks,
                                const ReduceTolerance& tolerance);

// By the bound alone, for a motion that costs too much to be played.
void ThinByBound(const Motion& motion, std::vector<Track>& tracks, const ReduceTolerance& tolerance);

}  // namespace zr::reduce
