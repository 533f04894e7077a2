// The server's side of the shared memory, for hosts (onvif-shm and the test
// kit): creating and removing the block and the other segments the tool
// reads. The camera's server does this itself, so none of it is in onvifCtrl.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string>

#include "shm/block.h"

namespace host {

// Creates a segment with 0666, failing when it exists already; removes one.
// Both return false on failure (errno tells why).
bool createSegment(key_t key, std::size_t size);
bool removeSegment(key_t key);

// Creates the camera path (under ONVIFCTRL_ROOT) and its folders when missing,
// then the zero-filled segment of its ftok key (project id 0). Fails when the
// segment exists already, with the reason in `error`.
bool createCameraSegment(const std::string& cameraPath, std::size_t size, std::string* error);
bool removeCameraSegment(const std::string& cameraPath);

// The server block as the server makes it: 1000 slots keyed by
// "/tmp/ONVIF_SHM/onvif".
bool createServerBlock(std::string* error);
bool removeServerBlock();
// Attaches an existing server block without printing anything.
std::optional<shm::ShmBlock> attachServerBlock();

}  // namespace host
