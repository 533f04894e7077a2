// Audio sync (sync command 4): the web's audio codec, bit rate, output gain,
// duplex mode and storage recording carried into the audio encoder, output and
// decoder records and the media profiles, the back channel told to the
// streaming server, and the bit-rate code left in the block for the server.
#pragma once

#include "shm/block.h"

namespace onvif {

// Multi-stream flag 0 takes the legacy path (every listed encoder keeps its
// codec and gets the web bit rate; output level only), 1 the current path
// (the first encoder, the profiles, the back channel and the use counts).
int Update_Audio_Source(int multiStream, shm::ShmBlock& block);

// Binds "AudioEncoder1" to each profile whose video stream has audio switched
// on in the streaming server's own settings.
int Sync_AudioEncoder_By_StreamServer();

}  // namespace onvif
