// Network, time and scopes sync: -u 1, -u 29 and -u 8.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;
using testkit::golden;

namespace {

const std::string kLive = "/tmp/onvif/onvif.conf", kNet = "/etc/sysconfig/network.conf";
const std::string kSys = "/etc/sysconfig/";

// onvif.conf holds every key of the rules, in their order, with the value
// "x": the DHCP key comes after blanks, the last line also holds "Model=".
TEST(Network, UpdateNetworkWritesEveryRuleByModeBrandAndDevice) {
  const std::string net = golden("Network.network.conf.data");
  const std::string dhcp = net + "root.Network.BootProto=dhcp\nroot.Network.BootProto=static\n";
  const std::pair<std::string, std::optional<std::string>> conf = {
      kLive, golden("Network.onvif.conf.data")};
  const Slot brand = Slot::ONVIF_BRAND, device = Slot::ONVIF_DEVICE;
  testkit::Transcript t;
  t.run("Static addresses of brand 40", "-u 1", {{brand, 40}, {device, 6}}, {{kNet, net}, conf});
  t.run("DHCP (the first BootProto line) of brand 24", "-u 1", {{brand, 24}}, {{kNet, dhcp}, conf});
  t.run("https.conf is not read; the sync source and DST must be exactly NTP and yes", "-u 1",
        {{brand, 9}, {device, 2}},
        {{kNet, net},
         {kSys + "https.conf", {}},
         {kSys + "systime.conf", "root.Time.SynSource=ntp\nroot.Time.TimeZone=HST10"},
         {kSys + "time_handler.conf", "root.Time.DST.Enabled=yes1"},
         conf});
  t.run("Without the system files", "-u 1", {{brand, 49}, {device, 6}},
        {{kNet, {}}, {kSys + "systime.conf", {}}, {kSys + "time_handler.conf", {}}, conf});
  t.run("A missing onvif.conf ends the routine before any copy", "-u 1", {}, {{kLive, {}}});
  t.expectGolden();
}

// -u 29 reads up to the first mask line and writes the live copy only; -u 8
// works for brand 40 only.
TEST(Network, UpdateIPAddrAndScopes) {
  std::string addresses;
  for (std::string k : {"Manual.Address=", "Manual.PrefixLength=", "LinkLocal.Address=",
                        "LinkLocal.PrefixLength=", "FromDHCP.Address=", "FromDHCP.PrefixLength="})
    addresses += "  Network.IPv4.Config." + k + "x\n";
  const std::string name = "FixedScopes=onvif://www.onvif.org/name/";
  const std::string place = "ConfigurableScopes=onvif://www.onvif.org/location/";
  const std::string loc = "/etc/sysconfig/location.conf";
  const std::string host = "root.Network.HostName=Lobby " + std::string(70, 'n');
  testkit::Transcript t;
  t.run("The address and the prefix of the first mask line", "-u 29", {},
        {{kNet,
          "root.Network.IPAddress=10.1.1.1\nroot.Network.SubnetMask=255.255.255.128\n"
          "root.Network.IPAddress=9.9.9.9"},
         {kLive, addresses + "A=%d\n"}});
  t.run("Missing files", "-u 29", {}, {{kNet, {}}, {kLive, {}}});
  t.run("Other brands keep the scopes", "-u 8", {{Slot::ONVIF_BRAND, 9}},
        {{kLive, "A=%d\n" + name + "old\n" + place + "old\nx" + name + "2\n"},
         {kNet, host + "\nroot.Network.HostName=second"},
         {loc, "root.Orvane.Location=Hall, 2F"}});
  t.run("Brand 40 writes the first host name, cut to 63 characters, and the location", "-u 8",
        {{Slot::ONVIF_BRAND, 40}});
  t.run("Without a host name and a location", "-u 8", {},
        {{loc, "root.Orvane.Place=x"}, {kNet, {}}});
  t.run("Without the files", "-u 8", {}, {{loc, {}}, {kLive, {}}});
  t.expectGolden();
}

}  // namespace
