// The post-parse step: -a, -d and -s act after all options were read, in that
// order, whatever their order on the command line.
#pragma once

#include "shm/block.h"

namespace cli {

// `savedState` is the copy of SERVER_STATE that is written back at the end of
// the run; -s 0 and -s 1 change it, not the slot. Always returns 0.
int PostParse(int serverState, int checkPassword, int debug, shm::ShmBlock& block, int& savedState);

}  // namespace cli
