// onvif-shm: a host-side stand-in for onvifServer's side of the shared memory.
//
// It creates the server block as the server does, sets and reads slots by
// name or index, dumps and removes it, and creates the other segments the
// tool reads (the key-5678 time-zone segment, the key-3745 streaming server
// segment, and the video-analytics, recording and wearable hub segments keyed
// by their camera paths). Camera paths honour ONVIFCTRL_ROOT, as onvifCtrl's
// do. One command a run, looked up in kCommands.

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "host_shm.h"
#include "shm/block.h"
#include "shm/segments.h"
#include "shm/slots.h"

namespace {

using Args = std::vector<std::string>;

int usage();

int fail(const std::string& message) {
  std::fprintf(stderr, "onvif-shm: %s\n", message.c_str());
  return 1;
}

// A slot given by name or by index (0..1000).
int parseSlot(const std::string& text) {
  int named = shm::slotIndex(text.c_str());
  if (named >= 0) return named;
  char* end = nullptr;
  errno = 0;
  long v = std::strtol(text.c_str(), &end, 10);
  if (errno != 0 || end == text.c_str() || *end != '\0') return -1;
  return v >= 0 && v <= shm::kDiscoverySlot ? static_cast<int>(v) : -1;
}

bool parseValue(const std::string& text, std::int32_t& out) {
  char* end = nullptr;
  errno = 0;
  long long v = std::strtoll(text.c_str(), &end, 0);
  if (errno != 0 || end == text.c_str() || *end != '\0') return false;
  if (v < INT32_MIN || v > INT32_MAX) return false;
  out = static_cast<std::int32_t>(v);
  return true;
}

// The server block.

std::optional<shm::ShmBlock> attach() {
  std::optional<shm::ShmBlock> block = host::attachServerBlock();
  if (!block) fail("no server block (run 'onvif-shm create' first)");
  return block;
}

int setSlots(shm::ShmBlock& block, const Args& pairs) {
  for (const std::string& p : pairs) {
    std::string::size_type eq = p.find('=');
    if (eq == std::string::npos) return fail("expected SLOT=VALUE, got '" + p + "'");
    int slot = parseSlot(p.substr(0, eq));
    std::int32_t value = 0;
    if (slot < 0) return fail("unknown slot '" + p.substr(0, eq) + "'");
    if (!parseValue(p.substr(eq + 1), value)) return fail("bad value in '" + p + "'");
    block.put(slot, value);
  }
  return 0;
}

int createBlock(const Args& args) {
  std::string error;
  if (!host::createServerBlock(&error)) return fail(error);
  std::optional<shm::ShmBlock> block = attach();
  return block ? setSlots(*block, args) : 1;
}

int setBlock(const Args& args) {
  if (args.empty() || args.size() % 2 != 0) return usage();
  std::optional<shm::ShmBlock> block = attach();
  if (!block) return 1;
  Args pairs;
  for (std::size_t i = 0; i < args.size(); i += 2) pairs.push_back(args[i] + "=" + args[i + 1]);
  return setSlots(*block, pairs);
}

int getSlot(const Args& args) {
  if (args.size() != 1) return usage();
  int slot = parseSlot(args[0]);
  if (slot < 0) return fail("unknown slot '" + args[0] + "'");
  std::optional<shm::ShmBlock> block = attach();
  if (!block) return 1;
  std::printf("%d\n", block->at(slot));
  return 0;
}

// The named slots, or with --all every slot 0..1000.
int dumpBlock(const Args& args) {
  std::optional<shm::ShmBlock> block = attach();
  if (!block) return 1;
  if (!args.empty() && args[0] == "--all") {
    for (int i = 0; i <= shm::kDiscoverySlot; ++i) {
      const char* name = shm::slotName(i);
      std::printf("%4d %-40s %d\n", i, name ? name : "-", block->at(i));
    }
    return 0;
  }
  for (std::size_t i = 0; i < shm::kSlotNameCount; ++i) {
    int index = shm::index(shm::kSlotNames[i].slot);
    std::printf("%4d %-40s %d\n", index, shm::kSlotNames[i].name, block->at(index));
  }
  return 0;
}

int removeBlock(const Args&) {
  return host::removeServerBlock() ? 0 : fail("no server block to remove");
}

// The segments with fixed keys.

int createTimeZone(const Args& args) {
  if (args.size() != 1) return usage();
  std::size_t room = shm::kTimeZoneSize - shm::kTimeZoneTextOffset;
  if (args[0].size() >= room) return fail("time-zone text too long");
  if (!host::createSegment(shm::kTimeZoneKey, shm::kTimeZoneSize))
    return fail(std::string("cannot create the time-zone segment: ") + std::strerror(errno));
  shm::Segment seg = shm::findSegment(shm::kTimeZoneKey, shm::kTimeZoneSize, nullptr);
  if (!seg) return fail("cannot attach the time-zone segment");
  std::memcpy(seg.bytes + shm::kTimeZoneTextOffset, args[0].c_str(), args[0].size() + 1);
  return 0;
}

int removeTimeZone(const Args&) {
  return host::removeSegment(shm::kTimeZoneKey) ? 0 : fail("no time-zone segment");
}

int createStream(const Args&) {
  if (host::createSegment(shm::kStreamServerKey, shm::kStreamServerSize)) return 0;
  return fail(std::string("cannot create the streaming server segment: ") + std::strerror(errno));
}

int dumpStream(const Args&) {
  shm::Segment seg = shm::findSegment(shm::kStreamServerKey, shm::kStreamServerSize, nullptr);
  if (!seg) return fail("no streaming server segment");
  for (std::size_t i = 0; i < seg.size; ++i) std::printf("%zu %u\n", i, seg.bytes[i]);
  return 0;
}

int removeStream(const Args&) {
  return host::removeSegment(shm::kStreamServerKey) ? 0 : fail("no streaming server segment");
}

// The auxiliary segments, named by their tag in shm::kAuxSegments.

int onAux(const Args& args, int (*run)(const shm::AuxSegment&, const Args&)) {
  if (args.empty()) return usage();
  for (const shm::AuxSegment& a : shm::kAuxSegments)
    if (args[0] == a.tag) return run(a, args);
  return fail("unknown segment '" + args[0] + "'");
}

int createAux(const shm::AuxSegment& a, const Args&) {
  if (a.cameraPath == nullptr) return fail("use stream-create for the streaming server segment");
  std::string error;
  return host::createCameraSegment(a.cameraPath, a.size, &error) ? 0 : fail(error);
}

int removeAux(const shm::AuxSegment& a, const Args& args) {
  if (a.cameraPath == nullptr) return fail("use stream-remove for the streaming server segment");
  return host::removeCameraSegment(a.cameraPath) ? 0 : fail("no " + args[0] + " segment");
}

// INDEX counts the segment's units: slots (va, wearable) or bytes.
int setAux(const shm::AuxSegment& a, const Args& args) {
  if (args.size() != 3) return usage();
  std::int32_t index = 0;
  std::int32_t value = 0;
  if (!parseValue(args[1], index) || index < 0 ||
      static_cast<std::size_t>(index) >= a.size / a.unit)
    return fail("bad index '" + args[1] + "'");
  if (!parseValue(args[2], value)) return fail("bad value '" + args[2] + "'");
  shm::Segment seg = shm::findAuxSegment(a, nullptr);
  if (!seg) return fail("no " + args[0] + " segment");
  if (a.unit == 1)
    seg.bytes[index] = static_cast<std::uint8_t>(value);
  else
    std::memcpy(seg.bytes + static_cast<std::size_t>(index) * a.unit, &value, sizeof value);
  return 0;
}

struct Command {
  const char* name;
  const char* help;  // its lines of the usage text
  int (*run)(const Args& args);
};

const Command kCommands[] = {
    {"create",
     "  create [SLOT=VALUE ...]    create the server block (all slots 0), then set slots\n",
     createBlock},
    {"set",
     "  set SLOT VALUE [SLOT VALUE ...]\n"
     "                             set slots; SLOT is a name (ONVIF_BRAND) or an index\n",
     setBlock},
    {"get", "  get SLOT                   print a slot's value\n", getSlot},
    {"dump",
     "  dump [--all]               print the named slots (with --all, every slot 0..1000)\n",
     dumpBlock},
    {"remove", "  remove                     remove the server block\n", removeBlock},
    {"tz-create",
     "  tz-create TEXT             create the key-5678 segment with TEXT at byte 45\n",
     createTimeZone},
    {"tz-remove", "  tz-remove                  remove it\n", removeTimeZone},
    {"stream-create",
     "  stream-create              create the key-3745 streaming server segment (12 bytes)\n",
     createStream},
    {"stream-dump", "  stream-dump                print its 12 bytes\n", dumpStream},
    {"stream-remove", "  stream-remove              remove it\n", removeStream},
    {"seg-create",
     "  seg-create NAME            create an auxiliary segment (zero-filled); NAME is\n"
     "                             va (video analytics, 480 bytes), record (recording,\n"
     "                             50 bytes) or wearable (wearable hub, 1088 bytes)\n",
     [](const Args& args) { return onAux(args, createAux); }},
    {"seg-set",
     "  seg-set NAME INDEX VALUE   set a 32-bit slot (va, wearable) or a byte (record,\n"
     "                             stream) of a segment\n",
     [](const Args& args) { return onAux(args, setAux); }},
    {"seg-remove", "  seg-remove NAME            remove an auxiliary segment\n",
     [](const Args& args) { return onAux(args, removeAux); }},
};

int usage() {
  std::fprintf(stderr, "usage: onvif-shm COMMAND [ARGS]\n");
  for (const Command& c : kCommands) std::fputs(c.help, stderr);
  std::fprintf(stderr, "Camera paths are resolved under ONVIFCTRL_ROOT when it is set.\n");
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return usage();
  std::string name = argv[1];
  for (const Command& c : kCommands)
    if (name == c.name) return c.run(Args(argv + 2, argv + argc));
  return usage();
}
