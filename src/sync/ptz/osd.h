// OSD sync (-u 16): the web's text overlay settings carried into the ONVIF
// server's OSD list and records.
#pragma once

#include <optional>
#include <string>

#include "shm/block.h"

namespace onvif {

int Update_OSD(shm::ShmBlock& block);

// A colour in full-range YCbCr (0..255 each), as the OSD records hold it.
struct YCbCr {
  double y;
  double cb;
  double cr;
};

// Full-range ITU-R BT.601 (the JPEG/JFIF form), clamped to 0..255.
YCbCr ycbcrFromRgb(int r, int g, int b);

// The web's colour names ("black", "white", "red", "green", "blue",
// "yellow", "cyan", "magenta"); none for any other text.
std::optional<YCbCr> osdColour(const std::string& name);

}  // namespace onvif
