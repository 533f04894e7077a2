#include "sync/network/auth.h"

#include <cstdio>

#include "conf/error_log.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/lines.h"
#include "conf/paths.h"
#include "conf/rewrite.h"
#include "conf/write_file.h"

namespace onvif {

using conf::Field;
using shm::Slot;

namespace {

constexpr const char* kSystemOnvifConf = "/etc/sysconfig/onvif.conf";
constexpr const char* kEnvironment = "/tmp/envir.sh";
constexpr const char* kAdministratorConf = "/tmp/onvif/tmp/administrator.conf";
constexpr const char* kUserSetting = "/usr/apache/htdocs/onvif/UserSetting.conf";

// Sets "ONVIF_CheckPassword=" in both copies of onvif.conf and, when the live
// copy was there, the slot.
int setCheckPassword(shm::ShmBlock& block, const char* routine, bool check) {
  conf::Result r = conf::rewrite(conf::onvifConf(routine, std::string(routine) + " %s missing"),
                                 {conf::set("ONVIF_CheckPassword=", check ? "true" : "false")});
  if (r.done()) block.set(Slot::ONVIF_CHECK_PASSWORD, check ? 1 : 0);
  return r.shell;
}

}  // namespace

int Update_Onvif_Check_Password(shm::ShmBlock& block) {
  return setCheckPassword(block, "Update_Onvif_Check_Password", true);
}

int Update_Onvif_DoNot_Check_Password(shm::ShmBlock& block) {
  return setCheckPassword(block, "Update_Onvif_DoNot_Check_Password", false);
}

int Update_Administrator_Username(shm::ShmBlock&) {
  Field<32> name;
  if (!conf::scanConf(kEnvironment, {conf::str("export Administrator=", name).first()}))
    return conf::logError("Update_Administrator_Username:%s missing", kEnvironment);
  if (name.empty())
    return conf::logError("Update_Administrator_Username: No Find Username.");

  std::remove(conf::hostPath(kAdministratorConf).c_str());
  return conf::writeFile("Update_Administrator_Username", kAdministratorConf,
                         std::string("Administrator=") + name.c_str() + "\n")
             ? 0
             : -1;
}

int Update_Brask_OnvifSetting(shm::ShmBlock& block) {
  Field<8> discovery;
  Field<8> authentication;
  int shell = 0;
  if (!conf::scanConf(conf::kNetworkConf,
                      {conf::str("root.Network.ONVIF.Discovery.Enabled=", discovery),
                       conf::str("root.Network.Authentication.ONVIF=", authentication)}))
    shell = conf::logError("Update_Brask_OnvifSetting: %s missing", conf::kNetworkConf);

  block.set(Slot::ONVIF_CHECK_PASSWORD, authentication.holds("disable") ? 0 : 1);
  bool off = discovery.holds("no");
  block.set(Slot::ONVIF_IPV4_STATUS, off ? 2 : 1);
  block.set(Slot::ONVIF_IPV6_STATUS, off ? 3 : 2);
  return shell;
}

int STA_OnvifSetting_Protect(shm::ShmBlock& block) {
  Field<8> setting;
  int shell = 0;
  if (!conf::scanConf(kSystemOnvifConf, {conf::str("root.Onvif.OnvifSetting=", setting)}))
    shell = conf::logError("STA_OnvifSetting_Protect: %s missing", kSystemOnvifConf);
  block.set(Slot::ONVIF_SETTING_CTRL, setting.holds("off") ? 1 : 0);
  return shell;
}

int ProfileQ_Authentication_Setting(shm::ShmBlock& block) {
  if (block.get(Slot::PROFILE_Q_AUTHENTICATION) != 0) {
    block.set(Slot::PROFILE_Q_AUTHENTICATION, 1);
    return 0;
  }
  const char* routine = "ProfileQ_Authentication_Setting";
  conf::Result r =
      conf::rewrite(conf::inPlace(routine, kUserSetting, std::string(routine) + ":%s missing")
                        .unsynced()
                        .sourceFirst()
                        .wPlus(),
                    {conf::set("ProfileQ_FactoryDefaultState=", "false")});
  block.set(Slot::PROFILE_Q_AUTHENTICATION, 1);
  return r.shell;
}

}  // namespace onvif
