// onvif-shm: a host-side stand-in for onvifServer's side of the shared memory.
//
// It creates the server block as the server does, sets and reads slots by
// name or index, dumps and removes it, and creates the other segments the
// tool reads (the key-5678 time-zone segment, the key-3745 streaming server
// segment, and the video-analytics, recording and wearable hub segments keyed
// by their camera paths). Camera paths honour ONVIFCTRL_ROOT, as onvifCtrl's
// do.

#include <cerrno>
#include <cstdint>
#include <optional>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "host_shm.h"
#include "shm/block.h"
#include "shm/segments.h"
#include "shm/slots.h"

namespace {

int usage() {
  std::fprintf(stderr,
               "usage: onvif-shm COMMAND [ARGS]\n"
               "  create [SLOT=VALUE ...]    create the server block (all slots 0), then set slots\n"
               "  set SLOT VALUE [SLOT VALUE ...]\n"
               "                             set slots; SLOT is a name (ONVIF_BRAND) or an index\n"
               "  get SLOT                   print a slot's value\n"
               "  dump [--all]               print the named slots (with --all, every slot 0..1000)\n"
               "  remove                     remove the server block\n"
               "  tz-create TEXT             create the key-5678 segment with TEXT at byte 45\n"
               "  tz-remove                  remove it\n"
               "  stream-create              create the key-3745 streaming server segment (12 bytes)\n"
               "  stream-dump                print its 12 bytes\n"
               "  stream-remove              remove it\n"
               "  seg-create NAME            create an auxiliary segment (zero-filled); NAME is\n"
               "                             va (video analytics, 480 bytes), record (recording,\n"
               "                             50 bytes) or wearable (wearable hub, 1088 bytes)\n"
               "  seg-set NAME INDEX VALUE   set a 32-bit slot (va, wearable) or a byte (record,\n"
               "                             stream) of a segment\n"
               "  seg-remove NAME            remove an auxiliary segment\n"
               "Camera paths are resolved under ONVIFCTRL_ROOT when it is set.\n");
  return 2;
}

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
  if (errno != 0 || end == text.c_str() || *end != '\0' || v < 0 || v > shm::kDiscoverySlot) return -1;
  return static_cast<int>(v);
}

bool parseValue(const std::string& text, std::int32_t& out) {
  char* end = nullptr;
  errno = 0;
  long long v = std::strtoll(text.c_str(), &end, 0);
  if (errno != 0 || end == text.c_str() || *end != '\0' || v < INT32_MIN || v > INT32_MAX) return false;
  out = static_cast<std::int32_t>(v);
  return true;
}

int setSlots(shm::ShmBlock& block, const std::vector<std::string>& pairs) {
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

std::optional<shm::ShmBlock> attach() {
  std::optional<shm::ShmBlock> block = host::attachServerBlock();
  if (!block) fail("no server block (run 'onvif-shm create' first)");
  return block;
}

int dump(shm::ShmBlock& block, bool all) {
  if (all) {
    for (int i = 0; i <= shm::kDiscoverySlot; ++i) {
      const char* name = shm::slotName(i);
      std::printf("%4d %-40s %d\n", i, name ? name : "-", block.at(i));
    }
    return 0;
  }
  for (std::size_t i = 0; i < shm::kSlotNameCount; ++i) {
    int index = shm::index(shm::kSlotNames[i].slot);
    std::printf("%4d %-40s %d\n", index, shm::kSlotNames[i].name, block.at(index));
  }
  return 0;
}

shm::Segment attachFixed(key_t key, std::size_t size) {
  return shm::findSegment(key, size, nullptr);
}

// The auxiliary segment onvif-shm calls `tag`, or nullptr.
const shm::AuxSegment* auxSegment(const std::string& tag) {
  for (const shm::AuxSegment& a : shm::kAuxSegments)
    if (tag == a.tag) return &a;
  return nullptr;
}

int auxCommand(const std::string& cmd, const std::vector<std::string>& args) {
  if (args.empty()) return usage();
  const shm::AuxSegment* a = auxSegment(args[0]);
  if (a == nullptr) return fail("unknown segment '" + args[0] + "'");
  if (cmd == "seg-create") {
    if (a->cameraPath == nullptr) return fail("use stream-create for the streaming server segment");
    std::string error;
    return host::createCameraSegment(a->cameraPath, a->size, &error) ? 0 : fail(error);
  }
  if (cmd == "seg-remove") {
    if (a->cameraPath == nullptr) return fail("use stream-remove for the streaming server segment");
    return host::removeCameraSegment(a->cameraPath) ? 0 : fail("no " + args[0] + " segment");
  }
  if (args.size() != 3) return usage();
  std::int32_t index = 0;
  std::int32_t value = 0;
  if (!parseValue(args[1], index) || index < 0 || static_cast<std::size_t>(index) >= a->size / a->unit)
    return fail("bad index '" + args[1] + "'");
  if (!parseValue(args[2], value)) return fail("bad value '" + args[2] + "'");
  shm::Segment seg = shm::findAuxSegment(*a, nullptr);
  if (!seg) return fail("no " + args[0] + " segment");
  if (a->unit == 1)
    seg.bytes[index] = static_cast<std::uint8_t>(value);
  else
    std::memcpy(seg.bytes + static_cast<std::size_t>(index) * a->unit, &value, sizeof value);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return usage();
  std::string cmd = argv[1];
  std::vector<std::string> args(argv + 2, argv + argc);

  if (cmd == "create") {
    std::string error;
    if (!host::createServerBlock(&error)) return fail(error);
    std::optional<shm::ShmBlock> block = attach();
    return block ? setSlots(*block, args) : 1;
  }
  if (cmd == "set") {
    if (args.empty() || args.size() % 2 != 0) return usage();
    std::optional<shm::ShmBlock> block = attach();
    if (!block) return 1;
    std::vector<std::string> pairs;
    for (std::size_t i = 0; i < args.size(); i += 2) pairs.push_back(args[i] + "=" + args[i + 1]);
    return setSlots(*block, pairs);
  }
  if (cmd == "get") {
    if (args.size() != 1) return usage();
    int slot = parseSlot(args[0]);
    if (slot < 0) return fail("unknown slot '" + args[0] + "'");
    std::optional<shm::ShmBlock> block = attach();
    if (!block) return 1;
    std::printf("%d\n", block->at(slot));
    return 0;
  }
  if (cmd == "dump") {
    std::optional<shm::ShmBlock> block = attach();
    if (!block) return 1;
    return dump(*block, !args.empty() && args[0] == "--all");
  }
  if (cmd == "remove") return host::removeServerBlock() ? 0 : fail("no server block to remove");

  if (cmd == "tz-create") {
    if (args.size() != 1) return usage();
    std::size_t room = shm::kTimeZoneSize - shm::kTimeZoneTextOffset;
    if (args[0].size() >= room) return fail("time-zone text too long");
    if (!host::createSegment(shm::kTimeZoneKey, shm::kTimeZoneSize))
      return fail(std::string("cannot create the time-zone segment: ") + std::strerror(errno));
    shm::Segment seg = attachFixed(shm::kTimeZoneKey, shm::kTimeZoneSize);
    if (!seg) return fail("cannot attach the time-zone segment");
    std::memcpy(seg.bytes + shm::kTimeZoneTextOffset, args[0].c_str(), args[0].size() + 1);
    return 0;
  }
  if (cmd == "tz-remove") return host::removeSegment(shm::kTimeZoneKey) ? 0 : fail("no time-zone segment");

  if (cmd == "stream-create") {
    if (!host::createSegment(shm::kStreamServerKey, shm::kStreamServerSize))
      return fail(std::string("cannot create the streaming server segment: ") + std::strerror(errno));
    return 0;
  }
  if (cmd == "stream-dump") {
    shm::Segment seg = attachFixed(shm::kStreamServerKey, shm::kStreamServerSize);
    if (!seg) return fail("no streaming server segment");
    for (std::size_t i = 0; i < seg.size; ++i) std::printf("%zu %u\n", i, seg.bytes[i]);
    return 0;
  }
  if (cmd == "stream-remove")
    return host::removeSegment(shm::kStreamServerKey) ? 0 : fail("no streaming server segment");

  if (cmd == "seg-create" || cmd == "seg-set" || cmd == "seg-remove") return auxCommand(cmd, args);

  return usage();
}
