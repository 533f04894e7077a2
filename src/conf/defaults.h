// Factory defaults: put the ONVIF files back to their shipped ".default"
// copies. Both routines first stamp the camera's brand word into the name
// scope of "onvif.conf.default" and mark the initial synchronisation as done.
#pragma once

#include "shm/block.h"

namespace onvif {

// -s 3: restores the records the current list files name.
int Soft_Default_All_Conf(shm::ShmBlock& block);
// -s 4: removes every record file by wildcard, then recreates the shipped ones.
int Hard_Default_All_Conf(shm::ShmBlock& block);

}  // namespace onvif
