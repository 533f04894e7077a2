#include "cli/dumps.h"

#include <cerrno>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "shm/segments.h"

namespace cli {

namespace {

using shm::Aux;
using shm::AuxSegment;

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

// Attaches the segment and prints its heading ("part" names the part dumped),
// or prints the failure line.
shm::Segment openDump(const AuxSegment& s, const std::string& part) {
  shm::LookupError err = shm::LookupError::None;
  shm::Segment seg = shm::findAuxSegment(s, &err);
  if (!seg) {
    std::printf("%s dump: %s error, errno=%d\n", s.name, stepName(err), errno);
    return seg;
  }
  std::string where =
      s.cameraPath != nullptr ? std::string(s.cameraPath) : "key " + std::to_string(s.key);
  std::printf("************ %s (%s, %d bytes)%s ************\n", s.name, where.c_str(),
              static_cast<int>(s.size), part.c_str());
  return seg;
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

// A segment printed whole: as slots or bytes, whichever it is made of.
void dumpWhole(Aux which, const char* const* byteNames) {
  const AuxSegment& s = shm::auxSegment(which);
  shm::Segment seg = openDump(s, "");
  if (!seg) return;
  if (s.unit == sizeof(std::int32_t))
    printSlots(seg, 0, seg.size / s.unit);
  else
    printBytes(seg, byteNames);
}

const char* const kStreamServerBytes[shm::kStreamServerSize] = {
    "stream 1 recording", "recording 1 request (1 start, 2 stop)", nullptr, "stream 2 recording"};

const AuxSegment& wearableHub() { return shm::auxSegment(Aux::WearableHub); }

void dumpWearableHeader() {
  shm::Segment seg = openDump(wearableHub(), ": hub");
  if (seg) printSlots(seg, 0, shm::kWearableHeaderSlots);
}

void printWearableEntry(const shm::Segment& seg, std::size_t entry) {
  std::size_t first = shm::kWearableHeaderSlots + entry * shm::kWearableEntrySlots;
  std::printf("------------ entry %d ------------\n", static_cast<int>(entry));
  printSlots(seg, first, shm::kWearableEntrySlots);
}

void dumpWearableEntries() {
  shm::Segment seg = openDump(wearableHub(), ": entries");
  if (!seg) return;
  for (std::size_t e = 0; e < shm::kWearableEntries; ++e) printWearableEntry(seg, e);
}

void dumpWearableEntry(std::size_t entry) {
  shm::Segment seg = openDump(wearableHub(), ": entry " + std::to_string(entry));
  if (seg) printWearableEntry(seg, entry);
}

}  // namespace

bool dumpAuxSegment(int request) {
  constexpr int kFirstEntryDump = 12;
  constexpr int kLastEntryDump = kFirstEntryDump + static_cast<int>(shm::kWearableEntries) - 1;
  switch (request) {
    case 6:
      dumpWhole(Aux::VideoAnalytics, nullptr);
      return true;
    case 7:
      dumpWhole(Aux::Recording, nullptr);
      return true;
    case 8:
      dumpWhole(Aux::StreamServer, kStreamServerBytes);
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
  if (request >= kFirstEntryDump && request <= kLastEntryDump) {
    dumpWearableEntry(static_cast<std::size_t>(request - kFirstEntryDump));
    return true;
  }
  return false;
}

}  // namespace cli
