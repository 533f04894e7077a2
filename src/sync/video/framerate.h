// Frame-rate limits of the video encoders: frame rates per stream (sync
// command 5) and frame-skip codes (sync command 6).
#pragma once

#include "shm/block.h"

namespace onvif {

int Update_framerate(int multiStream, int device, shm::ShmBlock& block);

// height, width and codec are the CHANGE_HEIGHT, CHANGE_WIDTH and ONVIF_CODEC
// slots; every device type takes the general skip-code table.
int Update_frameskip(int multiStream, int device, int videoType, int height, int width, int codec);

// The frame rate of a skip code: 0 -> 30, 1 -> 15, 2 -> 6, anything else 1.
int FrameRateOfSkip(int skip);

}  // namespace onvif
