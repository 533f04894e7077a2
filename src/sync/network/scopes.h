// Discovery scopes: the host name into the fixed name scope and the location
// into the configurable location scope of onvif.conf.
#pragma once

#include "shm/block.h"

namespace onvif {

// Sync command 8; brand 40 only. Its two halves report as
// Update_Hostname_To_Scopes (host name) and Update_Location_To_Scopes
// (location, onvif.conf).
int Update_Hostname_To_Scopes(shm::ShmBlock& block);

}  // namespace onvif
