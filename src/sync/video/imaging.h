// Imaging settings of the first video source (sync command 3): brightness,
// contrast, saturation, sharpness, white balance, WDR, backlight, IR cut
// filter and exposure, from the sensor's scales to the 0-100 scales.
#pragma once

#include <string>

#include "shm/block.h"

namespace onvif {

int Update_Imapge_Source(int multiStream, int device, int ioType, shm::ShmBlock& block);

// "%.1f" of x / divisor * 100, divided in double and narrowed to float.
std::string ScaledSetting(double x, double divisor);

}  // namespace onvif
