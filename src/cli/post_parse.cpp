#include "cli/post_parse.h"

#include <cstdio>
#include <cstring>

#include "cli/segment_dumps.h"
#include "shm/features.h"
#include "shm/slots.h"
#include "sync/network/auth.h"

namespace cli {

using shm::Slot;

std::string tabsTo(std::size_t printed, std::size_t column) {
  std::string tabs = "\t";
  std::size_t at = (printed / 8 + 1) * 8;
  while (at < column) {
    tabs += '\t';
    at += 8;
  }
  return tabs;
}

namespace {

// Columns the dumps align their values to.
constexpr std::size_t kSwitchColumn = 48;
constexpr std::size_t kSlotColumn = 40;
constexpr std::size_t kEventColumn = 32;

void printSwitch(const shm::FeatureSwitch& s) {
  std::string head = std::string(s.profileGSub ? "------" : "---") + s.name;
  std::printf("%s%s=%d\n", head.c_str(), tabsTo(head.size(), kSwitchColumn).c_str(), s.value);
}

// "*(shm + NAME<tabs>=%d)\t=%d\n": name, index, value.
void printSlot(const char* name, int index, int value, std::size_t column) {
  std::string head = std::string("*(shm + ") + name;
  std::printf("%s%s=%d)\t=%d\n", head.c_str(), tabsTo(head.size(), column).c_str(), index, value);
}

// "*(shm + NAME)<tabs>=%d\n": a live value.
void printLive(const char* name, int value) {
  std::string head = std::string("*(shm + ") + name + ")";
  std::printf("%s%s=%d\n", head.c_str(), tabsTo(head.size(), kSwitchColumn).c_str(), value);
}

void passwordRequest(int request, shm::ShmBlock& block) {
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

void dumpImageQuality(shm::ShmBlock& block) {
  std::printf("[1] *(shm + ONVIF_SIGNALLOSS)\t\t=%d\n", block.get(Slot::ONVIF_SIGNALLOSS));
  std::printf("[2] *(shm + ONVIF_VIDEOSHADING)\t\t=%d\n", block.get(Slot::ONVIF_VIDEOSHADING));
  std::printf("[3] *(shm + ONVIF_IMAGETOOBLURRY)\t=%d\n", block.get(Slot::ONVIF_IMAGETOOBLURRY));
  std::printf("[4] *(shm + ONVIF_COLORCAST)\t\t=%d\n", block.get(Slot::ONVIF_COLORCAST));
  std::printf("[5] *(shm + ONVIF_IMAGETOOBRIGHT)\t=%d\n", block.get(Slot::ONVIF_IMAGETOOBRIGHT));
  std::printf("[6] *(shm + ONVIF_IMAGETOODARK)\t\t=%d\n", block.get(Slot::ONVIF_IMAGETOODARK));
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

void dumpBlock(shm::ShmBlock& block) {
  std::printf("************ Big Change ************\n");
  for (std::size_t i = 0; i < shm::kFeatureSwitchCount; ++i) printSwitch(shm::kFeatureSwitches[i]);
  printLive("ONVIF_DEBUG_LOG", block.get(Slot::ONVIF_DEBUG_LOG));
  printLive("ONVIF_DEBUG_LOG_USE", block.get(Slot::ONVIF_DEBUG_LOG_USE));
  printLive("DEBUG_CELL_MOTION", block.get(Slot::DEBUG_CELL_MOTION));
  std::printf("************ THREAD Created ************\n");
  for (std::size_t i = 0; i < shm::kThreadSwitchCount; ++i) printSwitch(shm::kThreadSwitches[i]);
  std::printf("************ Current shm memory of onvifServer ************\n");
  for (std::size_t i = 0; i < shm::kSlotNameCount; ++i) {
    int index = shm::index(shm::kSlotNames[i].slot);
    printSlot(shm::kSlotNames[i].name, index, block.at(index), kSlotColumn);
  }
}

void dumpSubscriptions(shm::ShmBlock& block) {
  bool any = false;
  for (int r = 0; r < shm::kEventRecordCount; ++r) {
    int eventIndex = block.at(shm::eventSlot(r, 0));
    if (eventIndex <= 0) continue;
    any = true;
    for (int f = 0; f < shm::kEventRecordSlots; ++f) {
      int slot = shm::eventSlot(r, f);
      printSlot(shm::kEventFieldNames[f], slot, block.at(slot), kEventColumn);
    }
    if (eventIndex == 2 || eventIndex == 4 || eventIndex == 6)
      printSlot("ONVIF_SEND_NOTIFY", shm::index(Slot::ONVIF_SEND_NOTIFY), block.get(Slot::ONVIF_SEND_NOTIFY),
                kEventColumn);
    std::printf("%s\n", std::string(47, '=').c_str());
  }
  if (!any) std::printf("NO EVENT Subscribe fot all %d Clients!!!\n", shm::kEventRecordCount);
}

int PostParse(int serverState, int checkPassword, int debug, shm::ShmBlock& block, int& savedState) {
  passwordRequest(checkPassword, block);
  debugRequest(debug, block);
  serverStateRequest(serverState, block, savedState);
  return 0;
}

}  // namespace cli
