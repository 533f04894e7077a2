// Resolution look-ups: web resolution names ("1080p", "d1", "2688x1520",
// "disable") to pixel sizes and to the resolution codes the server keeps in its
// channel slots. The codes and the legacy indices are a shared-memory format
// and never change.
#pragma once

#include "shm/block.h"

namespace onvif {

// True for the 625-line standards (video types 1, 19 and 21).
bool IsPalVideoType(int videoType);

// Width in pixels of a name, tested pattern by pattern (substring search) in
// the table's order; 0 when nothing matches.
int GetResolutionWidth(const char* name, int videoType, const shm::ShmBlock& block);

// Height in lines, likewise; "3m" reads ONVIF_BRAND (1152 lines on brand 9).
int GetResolutionHeight(const char* name, int videoType, const shm::ShmBlock& block);

// Resolution code of a name (slots 11, 13, 14, 15); 0 when unknown.
int GetResolutionCode(const char* name);

// The legacy per-codec index (slots 51 to 54) of a name compared whole.
struct LegacyResolution {
  bool known;  // false: none of the fourteen names; the slot is left alone
  int index;
  int width;
  int height;
};
LegacyResolution GetLegacyResolutionIndex(const char* name, int videoType);

}  // namespace onvif
