// The sync command table (-u N) and the frame around each command.
#pragma once

#include <sys/types.h>

#include "shm/block.h"

namespace cli {

// How the dispatcher wraps a command.
enum class Frame {
  Standard,   // wait, protect, record the number, run, log, unprotect
  NoWait,     // run, log when debug logging is on
  WaitNoLog,  // wait, run
  None,       // run
};

struct SyncArgs {
  shm::ShmBlock& block;
  int multiStream;  // the multi-stream flag, computed before the command runs
};

struct SyncCommand {
  int number;
  Frame frame;
  const char* label;            // the DebugLog text, or nullptr
  int (*run)(SyncArgs& args);   // the routine and its arguments
};

// The row of command `number`, or nullptr.
const SyncCommand* findSyncCommand(int number);

// 1 when ONVIF_DEVICE is 6 or 7, else 1 when ONVIF_BRAND is above 11, else 0.
int multiStreamFlag(int device, int brand);

// The wait for a protect flag: sleeps of `step` microseconds, at most `steps`
// of them. The tool waits in 100 ms steps for up to 30 s.
struct WaitLimits {
  useconds_t step = 100000;
  int steps = 300;
};

// Waits while `flag` is 1, at least one step. Returns the steps slept.
int protectWait(shm::ShmBlock& block, shm::Slot flag, const WaitLimits& wait = {});

// Appends "hh:mm:ss label" (UTC) to the DebugLog, paced by ONVIF_DEBUG_LOG_USE.
void writeDebugLog(const char* label, shm::ShmBlock& block, const WaitLimits& wait = {});

// Runs sync command `number` inside its frame. Returns the routine's result,
// which nobody inspects.
int dispatch(int number, shm::ShmBlock& block, const WaitLimits& wait = {});

}  // namespace cli
