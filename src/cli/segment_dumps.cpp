#include "cli/segment_dumps.h"

#include <cerrno>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "shm/segments.h"

namespace cli {

namespace {

// One segment: how to find it and how to print it.
struct AuxSegment {
  const char* name;         // heading and failure lines
  const char* cameraPath;   // ftok path, or nullptr for a fixed key
  key_t key;                // the fixed key when cameraPath is nullptr
  std::size_t size;
};

const AuxSegment kVideoAnalytics{"Video analytics shm", shm::kVideoAnalyticsShmPath, 0,
                                 shm::kVideoAnalyticsShmSize};
const AuxSegment kRecording{"Recording shm", shm::kRecordingShmPath, 0, shm::kRecordingShmSize};
const AuxSegment kStreamServer{"StreamServer shm", nullptr, shm::kStreamServerKey, shm::kStreamServerSize};
const AuxSegment kWearableHub{"Wearable hub shm", shm::kWearableHubShmPath, 0, shm::kWearableHubShmSize};

const char* stepName(shm::LookupError e) {
  switch (e) {
    case shm::LookupError::Key:
      return "ftok";
    case shm::LookupError::Get:
      return "shmget";
    default:
      return "shmat";
  }
}

shm::Segment attach(const AuxSegment& s) {
  shm::LookupError err = shm::LookupError::None;
  shm::Segment seg = s.cameraPath != nullptr ? shm::findCameraSegment(s.cameraPath, s.size, &err)
                                             : shm::findSegment(s.key, s.size, &err);
  if (!seg) std::printf("%s dump: %s error, errno=%d\n", s.name, stepName(err), errno);
  return seg;
}

void heading(const AuxSegment& s, const std::string& part) {
  std::string where = s.cameraPath != nullptr ? std::string(s.cameraPath) : "key " + std::to_string(s.key);
  std::printf("************ %s (%s, %d bytes)%s ************\n", s.name, where.c_str(),
              static_cast<int>(s.size), part.c_str());
}

std::int32_t slotAt(const shm::Segment& seg, std::size_t index) {
  std::int32_t v;
  std::memcpy(&v, seg.bytes + index * sizeof v, sizeof v);
  return v;
}

// Slots [first, first + count) as "[index]\tdecimal\t0xhex".
void printSlots(const shm::Segment& seg, std::size_t first, std::size_t count) {
  for (std::size_t i = first; i < first + count; ++i) {
    std::int32_t v = slotAt(seg, i);
    std::printf("[%3d]\t%d\t0x%08X\n", static_cast<int>(i), v, static_cast<unsigned>(v));
  }
}

// Every byte as "[index]\tdecimal\t0xhex\t'c'" (the character when printable),
// then the name the tool knows it by.
void printBytes(const shm::Segment& seg, const char* const* names) {
  for (std::size_t i = 0; i < seg.size; ++i) {
    unsigned b = seg.bytes[i];
    char c = std::isprint(static_cast<int>(b)) ? static_cast<char>(b) : '.';
    const char* name = names != nullptr && names[i] != nullptr ? names[i] : "";
    std::printf("[%2d]\t%u\t0x%02X\t'%c'\t%s\n", static_cast<int>(i), b, b, c, name);
  }
}

void dumpVideoAnalytics() {
  shm::Segment seg = attach(kVideoAnalytics);
  if (!seg) return;
  heading(kVideoAnalytics, "");
  printSlots(seg, 0, seg.size / sizeof(std::int32_t));
}

void dumpRecording() {
  shm::Segment seg = attach(kRecording);
  if (!seg) return;
  heading(kRecording, "");
  printBytes(seg, nullptr);
}

void dumpStreamServer() {
  static const char* const kNames[shm::kStreamServerSize] = {
      "stream 1 recording", "recording 1 request (1 start, 2 stop)", nullptr, "stream 2 recording"};
  shm::Segment seg = attach(kStreamServer);
  if (!seg) return;
  heading(kStreamServer, "");
  printBytes(seg, kNames);
}

void dumpWearableHeader() {
  shm::Segment seg = attach(kWearableHub);
  if (!seg) return;
  heading(kWearableHub, ": hub");
  printSlots(seg, 0, shm::kWearableHeaderSlots);
}

void printWearableEntry(const shm::Segment& seg, std::size_t entry) {
  std::size_t first = shm::kWearableHeaderSlots + entry * shm::kWearableEntrySlots;
  std::printf("------------ entry %d ------------\n", static_cast<int>(entry));
  printSlots(seg, first, shm::kWearableEntrySlots);
}

void dumpWearableEntries() {
  shm::Segment seg = attach(kWearableHub);
  if (!seg) return;
  heading(kWearableHub, ": entries");
  for (std::size_t e = 0; e < shm::kWearableEntries; ++e) printWearableEntry(seg, e);
}

void dumpWearableEntry(std::size_t entry) {
  shm::Segment seg = attach(kWearableHub);
  if (!seg) return;
  heading(kWearableHub, ": entry " + std::to_string(entry));
  printWearableEntry(seg, entry);
}

}  // namespace

bool dumpAuxSegment(int request) {
  constexpr int kFirstEntryDump = 12;
  switch (request) {
    case 6:
      dumpVideoAnalytics();
      return true;
    case 7:
      dumpRecording();
      return true;
    case 8:
      dumpStreamServer();
      return true;
    case 10:
      dumpWearableHeader();
      return true;
    case 11:
      dumpWearableEntries();
      return true;
    default:
      break;
  }
  if (request >= kFirstEntryDump && request < kFirstEntryDump + static_cast<int>(shm::kWearableEntries)) {
    dumpWearableEntry(static_cast<std::size_t>(request - kFirstEntryDump));
    return true;
  }
  return false;
}

}  // namespace cli
