// Network, time and scopes sync: -u 1, -u 29, -u 20 and -u 8.
#include <gtest/gtest.h>

#include "sync_helpers.h"

using shm::Slot;
using testkit::Camera;
using testkit::put;
using V = testkit::Lines;

namespace {

const std::string kLive = "/tmp/onvif/onvif.conf", kPersist = "/usr/apache/htdocs/onvif/onvif.conf";
const std::string kNet = "/etc/sysconfig/network.conf";

TEST(Network, UpdateNetworkWritesEveryRuleByModeBrandAndDevice) {
  // The keys in rule order; the DHCP key comes after blanks, the last line also holds "Model=".
  const V keys = {"Time.TimeZone=", "Network.IPv4.Config.Manual.Address=", "Network.IPv4.Config.Manual.PrefixLength=",
                  "Network.IPv4.Config.FromDHCP.Address=", "Network.IPv4.Config.DHCP=", "DNSInformation.DNSManual.IPv4Address=",
                  "NetworkProtocol1.Port=", "NetworkProtocol2.Port=", "NetworkProtocol3.Port=", "Time.Type=",
                  "NTPInformation.FromDHCP=", "NTPInformation.NTPManual.IPv4Address=", "NTPInformation.NTPManual.DNSname=",
                  "NetworkGateway.IPv4Address=", "Model=", "HostnameInformation.Name=", "Network.Info.MTU=",
                  "FixedScopes=onvif://www.onvif.org/name/", "Time.DaylightSavings=",
                  "ConfigurableScopes=onvif://www.onvif.org/name/", "Time.TimeZone="};
  const std::string net =
      "root.Network.BootProto=none\nroot.Network.IPAddress=10.0.0.5\nroot.Network.SubnetMask=255.255.252.0\n"
      "root.Network.Routing.DefaultRouter=10.0.0.1\nroot.Network.DNSServer1=10.0.0.9\nroot.Network.DNSServer2=10.0.0.99\n"
      "root.Network.Port=8080\nroot.Network.RTSP.Port=8554\nroot.Network.UPnP.FriendlyName=Friendly\n"
      "root.Network.HostName=my cam\nroot.Network.Interface.I0.Link.MTU=1400\nx root.Network.IPAddress=1.1.1.1\n";
  const std::string sys = "/etc/sysconfig/";
  const struct {
    int brand, device;
    testkit::Files files;
    std::string values;  // written after each key; "x" is the line kept
  } cases[] = {
      {40, 6, {{kNet, net}}, "GMT+1:00:00|10.0.0.5|22|x|false|10.0.0.9|8080|443|8554|NTP|false|pool.ntp.org|pool.ntp.org|"
                             "10.0.0.1|x|my cam|1400|x|true|x|GMT+1:00:00|"},
      {24, 6, {{kNet, net + "root.Network.BootProto=dhcp\nroot.Network.BootProto=static\n"}}, "GMT+1:00:00|x|x|10.0.0.5|true|x|"
       "8080|443|8554|NTP|false|pool.ntp.org|pool.ntp.org|10.0.0.1|Friendly|my cam|x|x|true|x|GMT+1:00:00|"},
      // https.conf is not read; the sync source and DST must be exactly "NTP" and "yes".
      {9, 2, {{kNet, net}, {sys + "https.conf", {}}, {sys + "systime.conf", "root.Time.SynSource=ntp\nroot.Time.TimeZone=HST10"},
              {sys + "time_handler.conf", "root.Time.DST.Enabled=yes1"}},
       "GMT-10:00:00|10.0.0.5|22|x|false|10.0.0.9|8080|x|8554|Manual|false|||10.0.0.1|x|my cam|x|my cam|false|x|GMT-10:00:00|"},
      {49, 6, {{kNet, {}}, {sys + "systime.conf", {}}, {sys + "time_handler.conf", {}}},
       "||0|x|false|||||Manual|false||||x||x|x|false|||"},
  };
  Camera cam;
  cam.startServer();
  std::string conf;
  for (std::size_t i = 0; i < keys.size(); ++i) conf += (i == 4 ? "  " : i == 20 ? "Model=a " : "") + keys[i] + "x\n";
  for (const auto& c : cases) {
    cam.setSlot(Slot::ONVIF_BRAND, c.brand);
    cam.setSlot(Slot::ONVIF_DEVICE, c.device);
    put(cam, c.files);
    cam.write(kLive, conf + "Rate=%s\n");
    cam.clearTrace();
    cam.run({"-u", "1"});
    std::string expect;
    for (std::size_t i = 0, at = 0; i < keys.size(); ++i, at = c.values.find('|', at) + 1)
      expect += keys[i] + c.values.substr(at, c.values.find('|', at) - at) + "\n";
    EXPECT_EQ(cam.read(kLive), expect + "Rate=(null)\n") << c.brand;
    EXPECT_EQ(cam.read(kPersist), cam.read(kLive));
    EXPECT_EQ(cam.shellTrace(), (V{"cp /tmp/onvif/tmp/WS_Update_Network " + kLive, "cp /tmp/onvif/tmp/WS_Update_Network " + kPersist}));
  }
  const std::string log = "[Update_Network]SYSTEM_";
  EXPECT_EQ(cam.errorLog(), (V{log + "NETWORK_CONFIG missing", log + "TIME_CONFIG missing", log + "TIMEZONE_CONFIG missing",
                               log + "HTTPS_CONFIG missing"}));
  // A missing onvif.conf ends the routine before any copy.
  cam.remove(kLive);
  cam.run({"-u", "1"});
  EXPECT_EQ(cam.errorLog().back(), "[Update_Network]ONVIF_CONF_FILE missing");
  EXPECT_EQ(cam.shellTrace().size(), 2u);  // the last case's
}

// -u 29 reads up to the first mask line and writes the live copy only; -u 8 works for brand 40 only.
TEST(Network, UpdateIPAddrAndScopes) {
  std::string before, after;
  for (std::string k : {"Manual.Address=", "Manual.PrefixLength=", "LinkLocal.Address=", "LinkLocal.PrefixLength=", "FromDHCP.Address=",
                        "FromDHCP.PrefixLength="}) {
    before += "  Network.IPv4.Config." + k + "x\n";
    after += "Network.IPv4.Config." + k + (k.find("Prefix") == std::string::npos ? "10.1.1.1\n" : "25\n");
  }
  const std::string name = "FixedScopes=onvif://www.onvif.org/name/", loc = "/etc/sysconfig/location.conf";
  const std::string place = "ConfigurableScopes=onvif://www.onvif.org/location/", host = "Lobby " + std::string(70, 'n');
  const std::string conf = "A=%d\n" + name + "old\n" + place + "old\nx" + name + "2\n", cut = host.substr(0, 63);
  const std::string written = "A=0\n" + name + cut + "\n" + place + "Hall, 2F\n" + name + cut + "\n";
  const std::string h = "Update_Hostname_To_Scopes ", l = "Update_Location_To_Scopes ";
  Camera cam;
  cam.startServer();
  testkit::runCases(cam, {
      {"29", {}, {{kNet, "root.Network.IPAddress=10.1.1.1\nroot.Network.SubnetMask=255.255.255.128\nroot.Network.IPAddress=9.9.9.9"},
                  {kLive, before + "A=%d\n"}}, {{kLive, after + "A=0\n"}}, {}, {}, "", V{"cp /tmp/onvif/tmp/WS_Update_IPAddr " + kLive}},
      {"29", {}, {{kNet, {}}, {kLive, {}}}, {}, {}, {"[Update_IPAddr] " + kNet + " missing", "[Update_IPAddr] " + kLive + " missing"}},
      {"8", {{Slot::ONVIF_BRAND, 9}},
       {{kLive, conf}, {kNet, "root.Network.HostName=" + host + "\nroot.Network.HostName=second"}, {loc, "root.Orvane.Location=Hall, 2F"}},
       {{kLive, conf}}, {}, {h + "is only for Orvane & Quillon"}, "", V{}},
      {"8", {{Slot::ONVIF_BRAND, 40}}, {}, {{kLive, written}, {kPersist, written}}},
      {"8", {}, {{loc, "root.Orvane.Place=x"}, {kNet, {}}}, {{kLive, "A=0\n" + name + "\n" + place + "country\n" + name + "\n"}}, {},
       {h + kNet + " missing"}},
      {"8", {}, {{loc, {}}, {kLive, {}}}, {}, {}, {h + kNet + " missing", l + loc + " missing", l + kLive + " missing"}},
  });
}

}  // namespace
