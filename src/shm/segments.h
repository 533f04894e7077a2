// The other System V segments the tool reads or writes besides the server
// block, and the helpers that create them on a host (onvif-shm, tests).
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

// Streaming server segment: recording flags of the two streams.
inline constexpr key_t kStreamServerKey = 3745;
inline constexpr std::size_t kStreamServerSize = 12;

// An attached segment; bytes beyond `size` are never touched.
struct Segment {
  std::uint8_t* bytes = nullptr;
  std::size_t size = 0;
  explicit operator bool() const { return bytes != nullptr; }
};

enum class LookupError { None, Get, Attach };

// Looks a segment up with permissions 0666 (never creating it) and attaches
// it. On failure `error` says which step failed and errno is left as it was.
Segment findSegment(key_t key, std::size_t size, LookupError* error);

// The ftok key of a camera path (resolved under ONVIFCTRL_ROOT), or -1.
key_t cameraKey(const std::string& cameraPath, int projectId);

// Host-side helpers (the server's part): create a segment with 0666, failing
// when it exists already; remove one; both return false on failure.
bool createSegment(key_t key, std::size_t size);
bool removeSegment(key_t key);

}  // namespace shm

#include <optional>

#include "shm/block.h"

namespace shm {

// The server's side of its block, for hosts: creates "/tmp/ONVIF_SHM/onvif"
// (under ONVIFCTRL_ROOT) when missing and the 4000-byte segment of its key.
// Fails when the segment exists already.
bool createServerBlock(std::string* error);
// Attaches an existing server block without printing anything.
std::optional<ShmBlock> attachServerBlock();
bool removeServerBlock();

}  // namespace shm
