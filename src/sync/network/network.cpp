#include "sync/network/network.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "conf/error_log.h"
#include "conf/field.h"
#include "conf/files.h"
#include "conf/keys.h"
#include "conf/rewrite.h"
#include "sync/network/timezone.h"

namespace onvif {

using conf::Field;
using shm::Slot;

namespace {

constexpr const char* kTimeConf = "/etc/sysconfig/time_handler.conf";
constexpr const char* kZoneConf = "/etc/sysconfig/systime.conf";
constexpr const char* kHttpsConf = "/etc/sysconfig/https.conf";
constexpr const char* kNameScope = "onvif://www.onvif.org/name/";

// Bits of one mask part, by its value.
struct MaskPart {
  int value;
  int bits;
};
constexpr MaskPart kMaskParts[] = {{255, 8}, {254, 7}, {252, 6}, {248, 5},
                                   {240, 4}, {224, 3}, {192, 2}, {128, 1}};

int partBits(const char* part) {
  long v = std::strtol(part, nullptr, 10);
  for (const MaskPart& p : kMaskParts)
    if (p.value == v) return p.bits;
  return 0;
}

std::string prefixText(const char* mask) { return std::to_string(prefixLength(mask)); }

// What Update_Network reads from the system files.
struct NetworkValues {
  Field<32> bootProto, address, mask, router, dns1, dns2, httpPort, rtspPort, friendlyName;
  Field<64> hostName;
  Field<32> mtu, ntpServer;
  Field<8> dst;
  Field<32> timeZone;
  Field<16> syncSource;
  Field<32> httpsPort;
  bool dhcp = false;
};

void readNetwork(NetworkValues& v) {
  auto bootProto = [&v](const char* line) {
    conf::scan(line, "root.Network.BootProto=%s\n", v.bootProto);
    if (v.bootProto.is("dhcp")) v.dhcp = true;
    if (v.bootProto.is("none")) v.dhcp = false;
  };
  if (!conf::scanConf(conf::kNetworkConf,
                      {
                          conf::on("root.Network.BootProto=", bootProto),
                          conf::str("root.Network.IPAddress=", v.address),
                          conf::str("root.Network.SubnetMask=", v.mask),
                          conf::str("root.Network.Routing.DefaultRouter=", v.router),
                          conf::str("root.Network.DNSServer1=", v.dns1),
                          conf::str("root.Network.DNSServer2=", v.dns2),
                          conf::str("root.Network.Port=", v.httpPort),
                          conf::str("root.Network.RTSP.Port=", v.rtspPort),
                          conf::str("root.Network.UPnP.FriendlyName=", v.friendlyName),
                          conf::rest("root.Network.HostName=", v.hostName),
                          conf::str("root.Network.Interface.I0.Link.MTU=", v.mtu),
                      }))
    conf::logError("[Update_Network]SYSTEM_NETWORK_CONFIG missing");

  if (!conf::scanConf(kTimeConf, {conf::str("root.Time.NTP.Server=", v.ntpServer),
                                  conf::str("root.Time.DST.Enabled=", v.dst)}))
    conf::logError("[Update_Network]SYSTEM_TIME_CONFIG missing");

  if (conf::scanConf(kZoneConf, {conf::str("root.Time.TimeZone=", v.timeZone),
                                 conf::str("root.Time.SynSource=", v.syncSource)}))
    v.timeZone = onvifTimeZone(v.timeZone.c_str());
  else
    conf::logError("[Update_Network]SYSTEM_TIMEZONE_CONFIG missing");
}

}  // namespace

int prefixLength(const char* mask) {
  int sum = 0;
  int parts = 0;
  const char* p = mask;
  while (parts < 4) {
    const char* dot = std::strchr(p, '.');
    std::size_t n = dot != nullptr ? static_cast<std::size_t>(dot - p) : std::strlen(p);
    Field<8> part;  // one part is held in 8 characters
    part.assign(p, n);
    sum += partBits(part.c_str());
    ++parts;
    if (dot == nullptr) break;
    p = dot + 1;
  }
  return parts == 4 ? sum : 0;
}

int Update_Network(int /*multiStream*/, int device, shm::ShmBlock& block) {
  NetworkValues v;
  readNetwork(v);
  if (device == 2) {
    v.httpsPort = "NONE";
  } else if (!conf::scanConf(kHttpsConf, {conf::str("root.HTTPS.Port=", v.httpsPort)})) {
    conf::logError("[Update_Network]SYSTEM_HTTPS_CONFIG missing");
  }

  const int brand = block.get(Slot::ONVIF_BRAND);
  const bool dhcp = v.dhcp;
  const std::string prefix = prefixText(v.mask.c_str());
  const std::string fixedName = std::string("FixedScopes=") + kNameScope;
  const std::string configurableName = std::string("ConfigurableScopes=") + kNameScope;

  const bool manual = !dhcp;
  return conf::rewrite(
             conf::onvifConf("Update_Network", "[Update_Network]ONVIF_CONF_FILE missing"),
             {
                 conf::set("Time.TimeZone=", v.timeZone.str()),
                 conf::when(manual,
                            conf::set("Network.IPv4.Config.Manual.Address=", v.address.str())),
                 conf::when(manual, conf::set("Network.IPv4.Config.Manual.PrefixLength=", prefix)),
                 conf::when(dhcp,
                            conf::set("Network.IPv4.Config.FromDHCP.Address=", v.address.str())),
                 conf::set("Network.IPv4.Config.DHCP=", dhcp ? "true" : "false"),
                 conf::when(manual,
                            conf::set("DNSInformation.DNSManual.IPv4Address=", v.dns1.str())),
                 conf::set("NetworkProtocol1.Port=", v.httpPort.str()),
                 conf::when(device != 2, conf::set("NetworkProtocol2.Port=", v.httpsPort.str())),
                 conf::set("NetworkProtocol3.Port=", v.rtspPort.str()),
                 conf::set("Time.Type=", v.syncSource.is("NTP") ? "NTP" : "Manual"),
                 conf::set("NTPInformation.FromDHCP=", "false"),
                 conf::set("NTPInformation.NTPManual.IPv4Address=", v.ntpServer.str()),
                 conf::set("NTPInformation.NTPManual.DNSname=", v.ntpServer.str()),
                 conf::set("NetworkGateway.IPv4Address=", v.router.str()),
                 conf::when(brand == 24, conf::set("Model=", v.friendlyName.str())),
                 conf::set("HostnameInformation.Name=", v.hostName.str()),
                 conf::when(brand == 40 || brand == 17,
                            conf::set("Network.Info.MTU=", v.mtu.str())),
                 conf::when(brand == 9, conf::set(fixedName, v.hostName.str())),
                 conf::set("Time.DaylightSavings=", v.dst.is("yes") ? "true" : "false"),
                 conf::when(brand == 49, conf::set(configurableName, v.hostName.str())),
             })
      .shell;
}

int Update_IPAddr(shm::ShmBlock&) {
  Field<64> address;
  Field<64> mask;
  // Reading stops at the first mask line: an address after it is not seen.
  if (!conf::scanConf(conf::kNetworkConf, {conf::str("root.Network.SubnetMask=", mask).first(),
                                           conf::str("root.Network.IPAddress=", address)}))
    conf::logError("[Update_IPAddr] %s missing", conf::kNetworkConf);
  const std::string prefix = prefixText(mask.c_str());

  // The live copy alone: the persistent copy is left as it is.
  return conf::rewrite(
             conf::inPlace("Update_IPAddr", conf::kLiveOnvifConf, "[Update_IPAddr] %s missing"),
             {
                 conf::set("Network.IPv4.Config.Manual.Address=", address.str()),
                 conf::set("Network.IPv4.Config.Manual.PrefixLength=", prefix),
                 conf::set("Network.IPv4.Config.LinkLocal.Address=", address.str()),
                 conf::set("Network.IPv4.Config.LinkLocal.PrefixLength=", prefix),
                 conf::set("Network.IPv4.Config.FromDHCP.Address=", address.str()),
                 conf::set("Network.IPv4.Config.FromDHCP.PrefixLength=", prefix),
             })
      .shell;
}

int Update_IPV6(shm::ShmBlock& block) {
  Field<32> enabled;
  bool found = false;
  if (!conf::scanConf(conf::kNetworkConf,
                      {conf::on("root.Network.IPv6.Enabled=", [&](const char* line) {
                         conf::scan(line, "root.Network.IPv6.Enabled=%s\n", enabled);
                         found = true;
                       }).first()}))
    return conf::logError("Update_IPV6: %s missing", conf::kNetworkConf);
  if (found) block.set(Slot::ONVIF_IPV6_STATUS, enabled.is("yes") ? 2 : 3);
  return 0;
}

}  // namespace onvif
