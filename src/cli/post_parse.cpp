#include "cli/post_parse.h"

#include <cstdio>

#include "cli/dumps.h"
#include "conf/lock.h"
#include "shm/slots.h"
#include "sync/network/auth.h"

namespace cli {

using shm::Slot;

namespace {

void passwordRequest(int request, shm::ShmBlock& block) {
  if (request >= 0 && request <= 2) conf::holdWriteLock();
  switch (request) {
    case 0:
      std::printf("Onvif don't check Password!\n");
      onvif::Update_Onvif_DoNot_Check_Password(block);
      break;
    case 1:
      std::printf("Onvif check Password!\n");
      onvif::Update_Onvif_Check_Password(block);
      break;
    case 2:
      std::printf("Update Administrator Username!\n");
      onvif::Update_Administrator_Username(block);
      break;
  }
}

void debugRequest(int request, shm::ShmBlock& block) {
  if (request == 1) {
    std::printf("[MAIN]ONVIF DEBUG MODE OPEN!!!\n");
    block.set(Slot::ONVIF_DEBUG_LOG, 1);
  } else if (request == 2) {
    std::printf("[MAIN]ONVIF DEBUG MODE CLOSE!!!\n");
    block.set(Slot::ONVIF_DEBUG_LOG, 0);
  }
}

void serverStateRequest(int request, shm::ShmBlock& block, int& savedState) {
  switch (request) {
    case 0:
      if (savedState != 0) {
        std::printf("Set ONVIF server stop.\n");
        savedState = 0;
      } else {
        std::printf("Onvif Server is already stop.\n");
      }
      break;
    case 1:
      savedState = 1;
      std::printf("Set ONVIF server Start.\n");
      break;
    case 2:
      dumpBlock(block);
      break;
    case 5:
      dumpSubscriptions(block);
      break;
    case 9:
      dumpImageQuality(block);
      break;
    default:
      dumpAuxSegment(request);
      break;
  }
}

}  // namespace

int PostParse(int serverState, int checkPassword, int debug, shm::ShmBlock& block,
              int& savedState) {
  passwordRequest(checkPassword, block);
  debugRequest(debug, block);
  serverStateRequest(serverState, block, savedState);
  return 0;
}

}  // namespace cli
