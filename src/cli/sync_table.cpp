#include "cli/sync_table.h"

#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <string>

#include "conf/error_log.h"
#include "conf/files.h"
#include "conf/lock.h"
#include "conf/write_file.h"
#include "recording/selftest.h"
#include "sync/audio/audio.h"
#include "sync/audio/multicast.h"
#include "sync/network/accounts.h"
#include "sync/network/auth.h"
#include "sync/network/device.h"
#include "sync/network/network.h"
#include "sync/network/scopes.h"
#include "sync/ptz/osd.h"
#include "sync/ptz/presets.h"
#include "sync/video/appearance.h"
#include "sync/video/framerate.h"
#include "sync/video/imaging.h"
#include "sync/video/limits.h"
#include "sync/video/orientation.h"

namespace cli {

using shm::Slot;

namespace {

// Commands that only raise slots.
int sendPtzControl(SyncArgs& a) {
  a.block.set(Slot::ONVIF_CTRL, 17);
  a.block.set(Slot::PTZ_CONTROL, 4);
  a.block.set(Slot::WEB_SYNC_PROTECT, 0);
  return 0;
}

int setAudio(SyncArgs& a, int number, int support) {
  a.block.set(Slot::ONVIF_CTRL, number);
  a.block.set(Slot::ONVIF_AUDIO_SUPPORT, support);
  a.block.set(Slot::ONVIF_AUDIO_OUTPUT_SUPPORT, support);
  return 0;
}

int upgradeFirmware(SyncArgs& a) {
  a.block.set(Slot::ONVIF_CTRL, 30);
  a.block.set(Slot::ONVIF_UPGRADE_FW, 2);
  return 0;
}

int searchEvent(SyncArgs& a) {
  a.block.set(Slot::ONVIF_CTRL, 33);
  a.block.set(Slot::SEARCH_EVENT, 1);
  a.block.set(Slot::WEB_SYNC_PROTECT, 0);
  return 0;
}

int sendDiscovery(SyncArgs& a) {
  std::printf("=== Send Discovery MSG ===\n");
  a.block.set(Slot::ONVIF_CTRL, 98);
  a.block.put(shm::kDiscoverySlot, 1);
  return 0;
}

int packbitDecode(SyncArgs& a) {
  std::printf("=== Packbit Decode ===\n");
  a.block.set(Slot::ONVIF_CTRL, 99);
  rec::packbitDecodeSelfTest();
  return 0;
}

int packbitEncode(SyncArgs& a) {
  std::printf("=== Packbit Encode ===\n");
  a.block.set(Slot::ONVIF_CTRL, 100);
  rec::packbitEncodeSelfTest();
  return 0;
}

int hexToBinary(SyncArgs& a) {
  std::printf("=== Hex to Binary ===\n");
  a.block.set(Slot::ONVIF_CTRL, 101);
  rec::hexToBinarySelfTest();
  return 0;
}

const SyncCommand kCommands[] = {
    {1, Frame::Standard, "WEB Update_Network",
     [](SyncArgs& a) {
       return onvif::Update_Network(a.multiStream, a.block.get(Slot::ONVIF_DEVICE), a.block);
     }},
    {2, Frame::Standard, "WEB Update_Imapge_Appearance",
     [](SyncArgs& a) {
       return onvif::Update_Imapge_Appearance(a.multiStream, a.block.get(Slot::ONVIF_VIDEO_TYPE),
                                              a.block.get(Slot::ONVIF_DEVICE), a.block);
     }},
    {3, Frame::Standard, "WEB Update_Imapge_Source",
     [](SyncArgs& a) {
       return onvif::Update_Imapge_Source(a.multiStream, a.block.get(Slot::ONVIF_DEVICE),
                                          a.block.get(Slot::ONVIF_IO_TYPE), a.block);
     }},
    {4, Frame::Standard, "WEB Update_Audio_Source",
     [](SyncArgs& a) { return onvif::Update_Audio_Source(a.multiStream, a.block); }},
    {5, Frame::Standard, "WEB Update_framerate",
     [](SyncArgs& a) {
       return onvif::Update_framerate(a.multiStream, a.block.get(Slot::ONVIF_DEVICE), a.block);
     }},
    {6, Frame::Standard, "WEB Update_frameskip",
     [](SyncArgs& a) {
       return onvif::Update_frameskip(
           a.multiStream, a.block.get(Slot::ONVIF_DEVICE), a.block.get(Slot::ONVIF_VIDEO_TYPE),
           a.block.get(Slot::CHANGE_HEIGHT), a.block.get(Slot::CHANGE_WIDTH),
           a.block.get(Slot::ONVIF_CODEC));
     }},
    {7, Frame::Standard, "WEB Update_Flip_Vision",
     [](SyncArgs& a) { return onvif::Update_Flip_Vision(a.block); }},
    {8, Frame::Standard, "WEB Update_Hostname_To_Scopes",
     [](SyncArgs& a) { return onvif::Update_Hostname_To_Scopes(a.block); }},
    {9, Frame::Standard, "WEB Update_Multicast",
     [](SyncArgs& a) { return onvif::Update_Multicast(a.block); }},
    {10, Frame::Standard, "WEB Update_PTZ_Image_Flip",
     [](SyncArgs& a) { return onvif::Update_PTZ_Image_Flip(a.block); }},
    {11, Frame::Standard, "WEB Update_RS485Control",
     [](SyncArgs& a) { return onvif::Update_RS485Control(a.block); }},
    {12, Frame::Standard, "WEB Update_AlarmOutput_High_Low",
     [](SyncArgs& a) { return onvif::Update_AlarmOutput_High_Low(a.block); }},
    {13, Frame::Standard, "WEB Update_AvailableResolutionTable",
     [](SyncArgs& a) { return onvif::Update_AvailableResolutionTable(a.block); }},
    {14, Frame::Standard, "WEB Update_PresetTour",
     [](SyncArgs& a) { return onvif::Update_PresetTour(a.block); }},
    {15, Frame::Standard, "WEB Update_H264Profile",
     [](SyncArgs& a) { return onvif::Update_H264Profile(a.block); }},
    {16, Frame::Standard, "WEB Update_OSD", [](SyncArgs& a) { return onvif::Update_OSD(a.block); }},
    {17, Frame::None, nullptr, sendPtzControl},
    {18, Frame::Standard, "WEB Update_Recording",
     [](SyncArgs& a) { return onvif::Update_Recording(a.block); }},
    {19, Frame::Standard, "WEB Update_EncodingPriority",
     [](SyncArgs& a) { return onvif::Update_EncodingPriority(a.block); }},
    {20, Frame::Standard, "WEB Update_IPV6",
     [](SyncArgs& a) { return onvif::Update_IPV6(a.block); }},
    {21, Frame::Standard, "WEB Update_Brask_OnvifSetting",
     [](SyncArgs& a) { return onvif::Update_Brask_OnvifSetting(a.block); }},
    {22, Frame::Standard, "WEB STA_OnvifSetting_Protect",
     [](SyncArgs& a) { return onvif::STA_OnvifSetting_Protect(a.block); }},
    {23, Frame::Standard, "WEB ProfileQ_Authentication_Setting",
     [](SyncArgs& a) { return onvif::ProfileQ_Authentication_Setting(a.block); }},
    {24, Frame::Standard, "WEB Update_AddUser",
     [](SyncArgs& a) { return onvif::Update_AddUser(a.block); }},
    {25, Frame::Standard, "WEB Update_RemoveUser",
     [](SyncArgs& a) { return onvif::Update_RemoveUser(a.block); }},
    {26, Frame::Standard, "WEB Update_SetUser",
     [](SyncArgs& a) { return onvif::Update_SetUser(a.block); }},
    {27, Frame::NoWait, "API Set Without Audio", [](SyncArgs& a) { return setAudio(a, 27, 0); }},
    {28, Frame::NoWait, "API Set With Audio", [](SyncArgs& a) { return setAudio(a, 28, 1); }},
    {29, Frame::Standard, "WEB Update_IPAddr",
     [](SyncArgs& a) { return onvif::Update_IPAddr(a.block); }},
    {30, Frame::NoWait, "Upgrade FW from StartFirmwareUpgrade", upgradeFirmware},
    {31, Frame::Standard, "WEB Update_Recording_Channel",
     [](SyncArgs& a) { return onvif::Update_Recording_Channel(a.block); }},
    {32, Frame::Standard, "WEB Change_Onvif_Path",
     [](SyncArgs& a) { return onvif::Change_Onvif_Path(a.block); }},
    {33, Frame::WaitNoLog, nullptr, searchEvent},
    {34, Frame::Standard, "WEB Update_AdminUser",
     [](SyncArgs& a) { return onvif::Update_AdminUser(a.block); }},
    {35, Frame::Standard, "WEB Update_SD_CARD_STATUS",
     [](SyncArgs& a) { return onvif::Update_SD_CARD_STATUS(a.block); }},
    {36, Frame::Standard, "WEB Update_SmartCompression",
     [](SyncArgs&) { return onvif::Update_SmartCompression(); }},
    {98, Frame::None, nullptr, sendDiscovery},
    {99, Frame::None, nullptr, packbitDecode},
    {100, Frame::None, nullptr, packbitEncode},
    {101, Frame::None, nullptr, hexToBinary},
};

constexpr const char* kDebugLogWriter = "WriteDebugLog";  // names it in error-log lines

}  // namespace

const SyncCommand* findSyncCommand(int number) {
  for (const SyncCommand& c : kCommands)
    if (c.number == number) return &c;
  return nullptr;
}

int multiStreamFlag(int device, int brand) {
  if (device == 6 || device == 7) return 1;
  return brand > 11 ? 1 : 0;
}

int protectWait(shm::ShmBlock& block, Slot flag, const WaitLimits& wait) {
  int count = 0;
  do {
    usleep(wait.step);
    ++count;
  } while (count < wait.steps && block.get(flag) == 1);
  return count;
}

void writeDebugLog(const char* label, shm::ShmBlock& block, const WaitLimits& wait) {
  conf::holdWriteLock();
  if (block.get(Slot::ONVIF_DEBUG_LOG_USE) == 1) {
    protectWait(block, Slot::ONVIF_DEBUG_LOG_USE, wait);
  }
  block.set(Slot::ONVIF_DEBUG_LOG_USE, 1);
  std::time_t now = std::time(nullptr);
  struct tm utc {};
  gmtime_r(&now, &utc);
  char stamp[40];
  std::snprintf(stamp, sizeof stamp, "%02d:%02d:%02d ", utc.tm_hour, utc.tm_min, utc.tm_sec);
  const std::string line = stamp + std::string(label) + "\n";
  conf::AppendStatus s = conf::appendText(conf::kDebugLog, line);
  if (s == conf::AppendStatus::OpenFailed)
    conf::writeFile(kDebugLogWriter, conf::kDebugLog, line);  // a new log
  else if (s == conf::AppendStatus::WriteFailed)
    conf::logWriteFailed(kDebugLogWriter, conf::kDebugLog);
  block.set(Slot::ONVIF_DEBUG_LOG_USE, 0);
}

int dispatch(int number, shm::ShmBlock& block, const WaitLimits& wait) {
  const SyncCommand* cmd = findSyncCommand(number);
  if (cmd == nullptr) return 0;
  auto run = [&]() {
    int flag = multiStreamFlag(block.get(Slot::ONVIF_DEVICE), block.get(Slot::ONVIF_BRAND));
    SyncArgs args{block, flag};
    return cmd->run != nullptr ? cmd->run(args) : 0;
  };
  auto logIfDebug = [&]() {
    if (cmd->label != nullptr && block.get(Slot::ONVIF_DEBUG_LOG) == 1) {
      writeDebugLog(cmd->label, block, wait);
    }
  };

  int result = 0;
  switch (cmd->frame) {
    case Frame::Standard:
      conf::holdWriteLock();
      protectWait(block, Slot::WEB_SYNC_PROTECT, wait);
      block.set(Slot::WEB_SYNC_PROTECT, 1);
      block.set(Slot::ONVIF_CTRL, number);
      result = run();
      logIfDebug();
      block.set(Slot::WEB_SYNC_PROTECT, 0);
      break;
    case Frame::NoWait:
      result = run();
      logIfDebug();
      break;
    case Frame::WaitNoLog:
      protectWait(block, Slot::WEB_SYNC_PROTECT, wait);
      result = run();
      break;
    case Frame::None:
      result = run();
      break;
  }
  return result;
}

}  // namespace cli
