#include "cli/diagnostics.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "recording/recording.h"
#include "shm/segments.h"

namespace cli {

using shm::Slot;

// The build time is the compiler's clock when this file was compiled; GCC
// takes it from SOURCE_DATE_EPOCH when that is set, which is what makes two
// builds of the same source give the same binary.
void printVersion() {
  std::printf("ONVIF_Versions=%s %s\n", "2018", "0208_01");
  std::printf("ONVIFCTRL_BuildTime=%s %s\n", __DATE__, __TIME__);
}

namespace {

// The two-digit year is the format the firmware reads.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-y2k"
std::string formatTime(const struct tm& t, bool compact) {
  char buf[128];
  std::size_t n = compact ? std::strftime(buf, sizeof buf, "%y%m%d%H%M%S", &t)
                          : std::strftime(buf, sizeof buf, "%c", &t);
  return std::string(buf, n);
}
#pragma GCC diagnostic pop

// The zone text at byte 45 of the key-5678 segment, NUL-terminated within the
// segment. Returns false (after perror) when the segment is not there.
bool zoneFromSegment(std::string& zone) {
  shm::LookupError err;
  shm::Segment seg = shm::findSegment(shm::kTimeZoneKey, shm::kTimeZoneSize, &err);
  if (!seg) {
    std::fflush(stdout);
    std::perror(err == shm::LookupError::Get ? "shmget: " : "shmat: ");
    return false;
  }
  const char* text = reinterpret_cast<const char*>(seg.bytes) + shm::kTimeZoneTextOffset;
  std::size_t room = seg.size - shm::kTimeZoneTextOffset;
  zone.assign(text, strnlen(text, room));
  return true;
}

}  // namespace

void printTime() {
  std::time_t now = std::time(nullptr);
  struct tm utc {};
  gmtime_r(&now, &utc);
  std::printf("UTC time=%s\n", formatTime(utc, false).c_str());
  std::printf("UTC time YYMMDDhhmmss=%s\n", formatTime(utc, true).c_str());

  std::string zone;
  if (zoneFromSegment(zone)) {
    setenv("TZ", zone.c_str(), 1);
    tzset();
  }
  now = std::time(nullptr);
  struct tm local {};
  localtime_r(&now, &local);
  std::printf("Local time=%s\n", formatTime(local, false).c_str());
}

void setDebugSwitch(int value, shm::ShmBlock& block) {
  switch (value) {
    case 1:
      block.set(Slot::RECORDING_NAME_FORMAT, 1);
      std::printf("DEBUG : SET RECORDING NAME WITH ENDTIME.\n");
      break;
    case 2:
      block.set(Slot::RECORDING_NAME_FORMAT, 0);
      std::printf("DEBUG : SET RECORDING NAME WITHOUT ENDTIME.\n");
      break;
    case 3:
      block.set(Slot::DEBUG_CELL_MOTION, 1);
      std::printf("DEBUG : SET CELL MOTION ON\n");
      std::printf("FILE AT : /tmp/onvif/debug_CM.txt\n");
      break;
    case 4:
      block.set(Slot::DEBUG_CELL_MOTION, 0);
      std::printf("DEBUG : SET CELL MOTION OFF\n");
      break;
  }
}

void recordingControl(int value) {
  switch (value) {
    case 0:
      std::printf("---r1: start O1 recording.\n");
      std::printf("---r2: stop O1 recording.\n");
      std::printf("---r3: GetRecordingSummary.\n");
      std::printf("---r4: Read DB file.\n");
      break;
    case 1:
      std::printf("Profile G Start Recording.\n");
      rec::requestRecording(true);
      break;
    case 2:
      std::printf("Profile G Stop Recording.\n");
      rec::requestRecording(false);
      break;
    case 3:
      std::printf("Profile G GetRecordingSummary\n");
      rec::GetRecordingSummary();
      break;
    case 4:
      std::printf("Read DB file.\n");
      rec::readDbFile();
      break;
  }
}

}  // namespace cli
