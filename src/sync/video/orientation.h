// Image rotation (sync command 7), the PTZ image flip (10), the H.264 profile
// of each encoder (15) and the encoding priority (19).
#pragma once

#include <string>

#include "conf/field.h"
#include "shm/block.h"

namespace onvif {

int Update_Flip_Vision(shm::ShmBlock& block);
int Update_PTZ_Image_Flip(shm::ShmBlock& block);
int Update_H264Profile(shm::ShmBlock& block);
int Update_EncodingPriority(shm::ShmBlock& block);

// Writes each encoder's "H264Profile=" from the web words of H.264 streams 1
// to 4, as the layout code places the streams on the encoders.
int START_SYNC_H264PROFILE(shm::ShmBlock& block, const conf::Field<16> (&words)[4]);

// The ONVIF_ROTATE_MODE code of a web rotation word.
int RotationCode(const char* word);

}  // namespace onvif
