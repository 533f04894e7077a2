// User accounts: the ONVIF account list ("/usr/apache/htdocs/onvif/Users.conf",
// lines name:level:password) kept in line with the web server's accounts
// ("/etc/appWeb/appweb.pass", name:password) and privilege masks
// ("/etc/appWeb/appweb.privacy", name:mask).
#pragma once

#include "shm/block.h"

namespace onvif {

// Sync command 24: adds the web accounts the ONVIF list lacks.
int Update_AddUser(shm::ShmBlock& block);
// Sync command 25: drops the ONVIF accounts the web server no longer has.
int Update_RemoveUser(shm::ShmBlock& block);
// Sync command 26: sets the level and password of the existing accounts.
int Update_SetUser(shm::ShmBlock& block);
// Sync command 34: the first web account's password onto the ONVIF
// administrator of the same name.
int Update_AdminUser(shm::ShmBlock& block);

// The per-account steps on the working copy "/tmp/onvif/tmp/Users.conf":
// pass 1 is the privilege pass (name and mask), pass 2 the password pass
// (name and password); any other pass does nothing.
int update_conf_add_user(int pass, const char* name, const char* mask, const char* password,
                         shm::ShmBlock& block);
int update_conf_set_user(int pass, const char* name, const char* mask, const char* password,
                         shm::ShmBlock& block);

// True when "/etc/appWeb/appweb.pass" has an account of exactly this name.
// The file is read anew on every call.
bool CheckSystemUser(const char* name);

}  // namespace onvif
