// Video encoder appearance (sync command 2): stream layout, codec, size,
// quality, bitrate, GOP length and H.264 profile of each encoder, and the
// profiles' binding to the encoders.
#pragma once

#include <array>
#include <string>

#include "shm/block.h"

namespace onvif {

int Update_Imapge_Appearance(int multiStream, int videoType, int device, shm::ShmBlock& block);

// Binds Profile1 to Profile4 to the encoders the layout code (slot 10) uses;
// on brand 28 the audio encoders follow.
int CheckResolutionToAddOrMinusVideoEncoderInProfile(shm::ShmBlock& block);

// The number of profiles that use VideoEncoder1 to VideoEncoder4, as "%d".
void Sync_VideoEncoderUseCount(std::array<std::string, 4>& counts);

// The JPEG quality written for a web quality factor: ceil(Q / 70 * 100), and
// 1 for a factor of 0.
int JpegQuality(int factor);

}  // namespace onvif
