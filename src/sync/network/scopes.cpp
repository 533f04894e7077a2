#include "sync/network/scopes.h"

#include <string>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/rewrite.h"

namespace onvif {

using conf::Field;

namespace {

constexpr const char* kLocationConf = "/etc/sysconfig/location.conf";
constexpr const char* kNameScope = "FixedScopes=onvif://www.onvif.org/name/";
constexpr const char* kLocationScope = "ConfigurableScopes=onvif://www.onvif.org/location/";

}  // namespace

int Update_Hostname_To_Scopes(shm::ShmBlock& block) {
  if (block.get(shm::Slot::ONVIF_BRAND) != 40)
    return conf::logError("Update_Hostname_To_Scopes is only for Orvane & Quillon");

  Field<64> hostName;
  if (!conf::scanConf(conf::kNetworkConf, {conf::rest("root.Network.HostName=", hostName).first()}))
    conf::logError("Update_Hostname_To_Scopes %s missing", conf::kNetworkConf);
  Field<64> location;
  location = "country";
  if (!conf::scanConf(kLocationConf, {conf::rest("root.Orvane.Location=", location).first()}))
    conf::logError("Update_Location_To_Scopes %s missing", kLocationConf);

  // Both are written as read, blanks included: the server takes the scope
  // text as it stands.
  return conf::rewrite(
             conf::onvifConf("Update_Hostname_To_Scopes", "Update_Location_To_Scopes %s missing"),
             {conf::set(kNameScope, hostName.str()), conf::set(kLocationScope, location.str())})
      .shell;
}

}  // namespace onvif
