// The post-parse step: -a, -d and -s act after all options were read, in that
// order, whatever their order on the command line.
#pragma once

#include <string>

#include "shm/block.h"

namespace cli {

// `savedState` is the copy of SERVER_STATE that is written back at the end of
// the run; -s 0 and -s 1 change it, not the slot. Always returns 0.
int PostParse(int serverState, int checkPassword, int debug, shm::ShmBlock& block, int& savedState);

// "-s 2": the full dump of the block.
void dumpBlock(shm::ShmBlock& block);
// "-s 5": the event subscription dump.
void dumpSubscriptions(shm::ShmBlock& block);

// Tabs that carry a column that starts after `printed` characters to `column`
// (tab stops every 8 characters; at least one tab).
std::string tabsTo(std::size_t printed, std::size_t column);

}  // namespace cli
