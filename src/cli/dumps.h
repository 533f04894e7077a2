// The -s dumps the post-parse step runs: the server block (block_dumps.cpp)
// and the auxiliary segments (segment_dumps.cpp).
#pragma once

#include "shm/block.h"

namespace cli {

// "-s 2": the feature switches, live debug values and every named slot.
void dumpBlock(shm::ShmBlock& block);
// "-s 5": the event subscription records in use.
void dumpSubscriptions(shm::ShmBlock& block);
// "-s 9": the image-quality flags.
void dumpImageQuality(shm::ShmBlock& block);

// "-s 6, 7, 8, 10..19": the auxiliary segment dumps.
//
// Each dump looks its segment up without creating it, prints a heading naming
// the segment and then its contents. Layouts the server keeps to itself are
// printed as numbered 32-bit slots (segments made of whole slots) or numbered
// bytes (the others); the bytes whose meaning the tool knows carry their name.
// A dump that cannot find or attach its segment prints one line naming itself
// and the failure, and reads nothing.
// True when `request` is one of these dumps (and it ran).
bool dumpAuxSegment(int request);

}  // namespace cli
