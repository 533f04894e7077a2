// The auxiliary segment dumps of the post-parse step (-s 6, 7, 8, 10..19).
//
// Each dump looks its segment up without creating it, prints a heading naming
// the segment and then its contents. Layouts the server keeps to itself are
// printed as numbered 32-bit slots (segments made of whole slots) or numbered
// bytes (the others); the bytes whose meaning the tool knows carry their name.
// A dump that cannot find or attach its segment prints one line naming itself
// and the failure, and reads nothing.
#pragma once

namespace cli {

// True when `request` is one of the dumps above (and it ran).
bool dumpAuxSegment(int request);

}  // namespace cli
