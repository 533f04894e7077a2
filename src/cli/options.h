// Command-line options: "a:d:i:p:q:r:s:t:u:" and the long names
// "server_state" (-s), "onvif_ctrl" (-t) and "onvif_conf_update" (-u).
#pragma once

#include "shm/block.h"

namespace cli {

// Values stored for the post-parse step; -1 when the option was not given.
struct Requests {
  int serverState = -1;    // -s
  int checkPassword = -1;  // -a
  int debug = -1;          // -d
};

// An option's value as the tool reads it: base-10 strtol with no check of
// trailing characters ("3x" is 3, "x" is 0).
long optionValue(const char* text);

// Whether `value` is in the accepted set of option letter `option`.
bool optionValueAccepted(int option, long value);

// Parses the command line left to right, acting on each option as it is met.
// `block` is null when the server is not running: options whose action needs
// the block then only have their value checked. Returns false at the first
// unknown option, missing argument or value outside its accepted set.
bool parseOptions(int argc, char** argv, shm::ShmBlock* block, Requests& req);

}  // namespace cli
