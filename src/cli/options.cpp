#include "cli/options.h"

#include <getopt.h>

#include <cstdlib>

#include "cli/diagnostics.h"
#include "cli/sync_table.h"
#include "conf/defaults.h"
#include "conf/lock.h"
#include "sync/ptz/presets.h"

namespace cli {

long optionValue(const char* text) { return std::strtol(text, nullptr, 10); }

bool optionValueAccepted(int option, long v) {
  switch (option) {
    case 'u':
      return v == 0 || (v >= 1 && v <= 36) || (v >= 98 && v <= 101);
    case 's':
      return v >= 0 && v <= 19;
    case 't':
    case 'r':
      return v >= 0 && v <= 4;
    case 'p':
    case 'q':
      return v >= 1 && v <= 256;
    case 'i':
      return v == 0;
    case 'a':
    case 'd':
      return v >= 0 && v <= 2;
    default:
      return false;
  }
}

namespace {

// Look-up stops at the first match, so only the first "onvif_ctrl" row is
// reachable; the three later rows are kept as the table has always been.
const struct option kLongOptions[] = {
    {"server_state", required_argument, nullptr, 's'},
    {"onvif_ctrl", required_argument, nullptr, 't'},
    {"onvif_ctrl", required_argument, nullptr, 'p'},
    {"onvif_ctrl", required_argument, nullptr, 'q'},
    {"onvif_ctrl", required_argument, nullptr, 'r'},
    {"onvif_conf_update", required_argument, nullptr, 'u'},
    {nullptr, 0, nullptr, 0},
};

// Acts on one accepted option.
void act(int option, int v, shm::ShmBlock* block, Requests& req) {
  switch (option) {
    case 'u':
      if (block != nullptr && v != 0) dispatch(v, *block);
      break;
    case 's':
      req.serverState = v;
      if (block != nullptr && (v == 3 || v == 4)) conf::holdWriteLock();
      if (block != nullptr && v == 3) onvif::Soft_Default_All_Conf(*block);
      if (block != nullptr && v == 4) onvif::Hard_Default_All_Conf(*block);
      break;
    case 't':
      if (v == 0)
        printTime();
      else if (block != nullptr)
        setDebugSwitch(v, *block);
      break;
    case 'r':
      recordingControl(v);
      break;
    case 'p':
    case 'q':
      if (block == nullptr) break;
      conf::holdWriteLock();
      if (option == 'p')
        onvif::Update_SetPreset(*block, v);
      else
        onvif::Update_DeletePreset(*block, v);
      break;
    case 'i':
      printVersion();
      break;
    case 'a':
      req.checkPassword = v;
      break;
    case 'd':
      req.debug = v;
      break;
  }
}

}  // namespace

bool parseOptions(int argc, char** argv, shm::ShmBlock* block, Requests& req) {
  opterr = 0;
  int option;
  while ((option = getopt_long(argc, argv, "a:d:i:p:q:r:s:t:u:", kLongOptions, nullptr)) != -1) {
    if (option < 'a' || option > 'u') return false;
    long v = optionValue(optarg);
    if (!optionValueAccepted(option, v)) return false;
    act(option, static_cast<int>(v), block, req);
  }
  return true;
}

}  // namespace cli
