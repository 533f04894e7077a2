// Single device settings carried from the web interface's files into the
// server block or an ONVIF file: RS-485 PTZ control, alarm output idle states,
// recording file names and channels, the device I/O path, the SD card event
// interval and smart compression.
#pragma once

#include "shm/block.h"

namespace onvif {

int Update_RS485Control(shm::ShmBlock& block);          // sync command 11
int Update_AlarmOutput_High_Low(shm::ShmBlock& block);  // 12
int Update_Recording(shm::ShmBlock& block);             // 18
int Update_Recording_Channel(shm::ShmBlock& block);     // 31
int Change_Onvif_Path(shm::ShmBlock& block);            // 32
int Update_SD_CARD_STATUS(shm::ShmBlock& block);        // 35
int Update_SmartCompression();                          // 36

}  // namespace onvif
