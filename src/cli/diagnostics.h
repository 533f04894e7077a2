// Diagnostics acted on while the options are parsed: -i, -t and -r.
#pragma once

#include "shm/block.h"

namespace cli {

// -i 0: the version and build-time lines.
void printVersion();

// -t 0: the time in UTC, then local time in the zone of the key-5678 segment.
void printTime();

// -t 1..4: recording name mode and cell-motion debugging switches.
void setDebugSwitch(int value, shm::ShmBlock& block);

// -r N: recording control: 0 the help lines, 1 and 2 start and stop the first
// recording, 3 the recording summary, 4 the database read.
void recordingControl(int value);

}  // namespace cli
