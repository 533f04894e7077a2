// Authentication settings: password checking, the administrator's name, the
// web interface's authentication and discovery switches, settings protection
// and the Profile Q factory-default state.
#pragma once

#include "shm/block.h"

namespace onvif {

int Update_Onvif_Check_Password(shm::ShmBlock& block);
int Update_Onvif_DoNot_Check_Password(shm::ShmBlock& block);
int Update_Administrator_Username(shm::ShmBlock& block);
int Update_Brask_OnvifSetting(shm::ShmBlock& block);
int STA_OnvifSetting_Protect(shm::ShmBlock& block);
int ProfileQ_Authentication_Setting(shm::ShmBlock& block);

}  // namespace onvif
