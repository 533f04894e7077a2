#include "shm/slots.h"

#include <cstring>

namespace shm {

const SlotName kSlotNames[] = {
#define ONVIF_SLOT_NAME(name, index) {Slot::name, #name},
    ONVIF_SLOTS(ONVIF_SLOT_NAME)
#undef ONVIF_SLOT_NAME
};
const std::size_t kSlotNameCount = sizeof kSlotNames / sizeof kSlotNames[0];

const char* const kEventFieldNames[kEventRecordSlots] = {
    "EVENT_INDEX",           "EVENT_IP_ADDRESS_1",    "EVENT_IP_ADDRESS_2",
    "EVENT_IP_ADDRESS_3",    "EVENT_IP_ADDRESS_4",    "EVENT_CLIENT_NO(Idx+1)",
    "EVENT_TOPIC_1",         "EVENT_TOPIC_2",         "EVENT_TERMINAION_YEAR",
    "EVENT_TERMINAION_MON",  "EVENT_TERMINAION_DAY",  "EVENT_TERMINAION_HOUR",
    "EVENT_TERMINAION_MIN",  "EVENT_TERMINAION_SEC",  "EVENT_TERMINAION_TYPE",
    "EVENT_FIRST_TOPIC_1",   "EVENT_FIRST_TOPIC_2",
};

const char* slotName(int index) {
  for (const SlotName& s : kSlotNames)
    if (static_cast<int>(s.slot) == index) return s.name;
  return nullptr;
}

int slotIndex(const char* name) {
  for (const SlotName& s : kSlotNames)
    if (std::strcmp(s.name, name) == 0) return static_cast<int>(s.slot);
  return -1;
}

}  // namespace shm
