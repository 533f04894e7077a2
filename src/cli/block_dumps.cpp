#include "cli/dumps.h"

#include <cstdio>
#include <string>

#include "shm/features.h"
#include "shm/slots.h"

namespace cli {

using shm::Slot;

namespace {

// Tabs that carry a column that starts after `printed` characters to `column`
// (tab stops every 8 characters; at least one tab).
std::string tabsTo(std::size_t printed, std::size_t column) {
  std::string tabs = "\t";
  std::size_t at = (printed / 8 + 1) * 8;
  while (at < column) {
    tabs += '\t';
    at += 8;
  }
  return tabs;
}

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
      printSlot("ONVIF_SEND_NOTIFY", shm::index(Slot::ONVIF_SEND_NOTIFY),
                block.get(Slot::ONVIF_SEND_NOTIFY), kEventColumn);
    std::printf("%s\n", std::string(47, '=').c_str());
  }
  if (!any) std::printf("NO EVENT Subscribe fot all %d Clients!!!\n", shm::kEventRecordCount);
}

void dumpImageQuality(shm::ShmBlock& block) {
  std::printf("[1] *(shm + ONVIF_SIGNALLOSS)\t\t=%d\n", block.get(Slot::ONVIF_SIGNALLOSS));
  std::printf("[2] *(shm + ONVIF_VIDEOSHADING)\t\t=%d\n", block.get(Slot::ONVIF_VIDEOSHADING));
  std::printf("[3] *(shm + ONVIF_IMAGETOOBLURRY)\t=%d\n", block.get(Slot::ONVIF_IMAGETOOBLURRY));
  std::printf("[4] *(shm + ONVIF_COLORCAST)\t\t=%d\n", block.get(Slot::ONVIF_COLORCAST));
  std::printf("[5] *(shm + ONVIF_IMAGETOOBRIGHT)\t=%d\n", block.get(Slot::ONVIF_IMAGETOOBRIGHT));
  std::printf("[6] *(shm + ONVIF_IMAGETOODARK)\t\t=%d\n", block.get(Slot::ONVIF_IMAGETOODARK));
}

}  // namespace cli
