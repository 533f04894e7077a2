// The server's shared-memory block: signed 32-bit slots polled by onvifServer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "shm/slots.h"

namespace shm {

// A view of the attached block. Reads and writes are plain 32-bit loads and
// stores (no lock: the server polls the flags). Indices outside the mapped
// pages read as 0 and are not written, so a short segment never leads to an
// access outside the mapping.
class ShmBlock {
 public:
  ShmBlock(void* base, std::size_t mappedBytes)
      : base_(static_cast<volatile std::int32_t*>(base)),
        slots_(mappedBytes / sizeof(std::int32_t)) {}

  std::int32_t get(Slot s) const { return at(index(s)); }
  void set(Slot s, std::int32_t v) { put(index(s), v); }

  std::int32_t at(int i) const {
    return inRange(i) ? base_[i] : 0;
  }
  void put(int i, std::int32_t v) {
    if (inRange(i)) base_[i] = v;
  }
  std::size_t slotCount() const { return slots_; }

 private:
  bool inRange(int i) const { return i >= 0 && static_cast<std::size_t>(i) < slots_; }

  volatile std::int32_t* base_;
  std::size_t slots_;
};

// The path whose ftok key (project id 0) names the server's block.
inline constexpr const char* kServerShmPath = "/tmp/ONVIF_SHM/onvif";

// Looks the block up (never creates it) and attaches it. The tool passes a
// size of 1000 where the server created 1000 slots of 4 bytes: a size not
// larger than the segment is accepted, so the lookup succeeds. On failure the
// "[ONVIFCtrl]getShareMemory: ..." lines are printed and nothing is returned.
std::optional<ShmBlock> getShareMemory(const char* path, std::size_t size);

// Attaches segment `id`; the view covers the whole pages of the mapping.
std::optional<ShmBlock> attachBlock(int id);

}  // namespace shm
