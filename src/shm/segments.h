// The other System V segments the tool reads or writes besides the server
// block. Creating and removing them is the server's part (tools/host_shm.h).
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace shm {

// Time-zone segment: the TZ text starts at byte 45.
inline constexpr key_t kTimeZoneKey = 5678;
inline constexpr std::size_t kTimeZoneSize = 222;
inline constexpr std::size_t kTimeZoneTextOffset = 45;

// Streaming server segment: recording flags of the two streams, and the
// start/stop request of the first recording (1 start, 2 stop; the streaming
// server clears it to 0 when it has acted).
inline constexpr key_t kStreamServerKey = 3745;
inline constexpr std::size_t kStreamServerSize = 12;
inline constexpr std::size_t kStreamRecording1Byte = 0;
inline constexpr std::size_t kStreamRecordRequestByte = 1;
inline constexpr std::size_t kStreamRecording2Byte = 3;
inline constexpr std::uint8_t kRecordStart = 1;
inline constexpr std::uint8_t kRecordStop = 2;

// Wearable hub: a header of 16 slots, then 8 entries of 32 slots.
inline constexpr std::size_t kWearableHeaderSlots = 16;
inline constexpr std::size_t kWearableEntries = 8;
inline constexpr std::size_t kWearableEntrySlots = 32;

// The server's auxiliary segments: the -s dumps print them and onvif-shm
// makes them on a host. All but the streaming server's are keyed by ftok of a
// camera path with project id 0. Their layouts belong to the server; the tool
// reads them as whole 32-bit slots or as bytes.
struct AuxSegment {
  const char* tag;          // onvif-shm's name for it
  const char* name;         // the dump's heading and failure lines
  const char* cameraPath;   // the ftok path, or nullptr for `key`
  key_t key;                // the fixed key when cameraPath is nullptr
  std::size_t size;         // bytes
  std::size_t unit;         // 4: read as 32-bit slots; 1: as bytes
};

// The rows of kAuxSegments, in order.
enum class Aux { VideoAnalytics, Recording, WearableHub, StreamServer };

inline constexpr AuxSegment kAuxSegments[] = {
    {"va", "Video analytics shm", "/tmp/ONVIF_VA_SHM/onvif", 0, 480, sizeof(std::int32_t)},
    {"record", "Recording shm", "/tmp/ONVIF_SHM/onvifrecord", 0, 50, 1},
    {"wearable", "Wearable hub shm", "/tmp/ONVIF_SHM/onvifwearable", 0,
     (kWearableHeaderSlots + kWearableEntries * kWearableEntrySlots) * sizeof(std::int32_t),
     sizeof(std::int32_t)},
    {"stream", "StreamServer shm", nullptr, kStreamServerKey, kStreamServerSize, 1},
};

constexpr const AuxSegment& auxSegment(Aux which) {
  return kAuxSegments[static_cast<std::size_t>(which)];
}

// An attached segment; bytes beyond `size` are never touched.
struct Segment {
  std::uint8_t* bytes = nullptr;
  std::size_t size = 0;
  explicit operator bool() const { return bytes != nullptr; }
};

enum class LookupError { None, Key, Get, Attach };

// Looks a segment up with permissions 0666 (never creating it) and attaches
// it. On failure `error` says which step failed and errno is left as it was.
Segment findSegment(key_t key, std::size_t size, LookupError* error);

// The ftok key of a camera path (resolved under ONVIFCTRL_ROOT), or -1.
key_t cameraKey(const std::string& cameraPath, int projectId);

// findSegment for an auxiliary segment; a camera path without a key fails
// with LookupError::Key.
Segment findAuxSegment(const AuxSegment& aux, LookupError* error);

}  // namespace shm
