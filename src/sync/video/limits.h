// The encoder's option ranges (sync command 13): the available resolution
// combinations, split by channel count, and the frame-rate, bitrate and
// key-frame ceilings of the encoder option files.
#pragma once

#include <string>
#include <vector>

#include "shm/block.h"

namespace onvif {

struct EncoderLimits {
  int fps = 0;          // "root.Framerate.H264=1-%d"
  int bitrate[4] = {};  // H.264 streams 1 to 4, "64-%d"
  int gov[4] = {};      // H.264 streams 1 to 4, "2-%d"
};

int Update_AvailableResolutionTable(shm::ShmBlock& block);
int Update_FPS_GOV_BITRATE(shm::ShmBlock& block, const EncoderLimits& limits);

// Sorts the lines of /tmp/onvif/available_resolution into
// available_resolution_with_<n>_channel by their number of enabled fields.
// -1 when a channel file could not be written whole (the files after it are
// then left as they were).
int SAVE_MANY_CHANNELS_AVAILABLE_RESOLUTION();

// Adds the lines that give two or three channels the same resolution: the
// first of 1080p, sxga, 720p, xga, svga, d1, vga, cif, qcif that every
// channel of the list can use.
int FindSameMaxResolutionWithManyChannel();

// The lines written for an "&"-separated list: the first entry always; the
// others only when the list has two or more "&" (a single "&" drops the
// second entry, as the web pages expect).
std::vector<std::string> SplitAvailableResolutions(const std::string& list);

}  // namespace onvif
