// Multicast sync (sync command 9): the web's RTP multicast addresses, ports
// and TTLs carried into the video and audio encoder records, and
// MULTICASTING raised when the video protocol is multicast (4).
#pragma once

#include "shm/block.h"

namespace onvif {

// Which record gets which address and port depends on the platform
// (ONVIF_DEVICE), the brand, the stream layout and the codec enable slots.
int Update_Multicast(shm::ShmBlock& block);

}  // namespace onvif
