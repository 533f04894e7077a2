// Authentication settings: password checking (-a), the administrator's name,
// and sync commands 21, 22 and 23.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;

namespace {

const std::string kLive = "/tmp/onvif/onvif.conf";

// Both copies of onvif.conf and the slot follow the switch; a missing live
// copy leaves an empty temporary file, the persistent copy and the slot.
TEST(Auth, PasswordCheckSwitchesBothCopiesAndTheSlot) {
  const testkit::Files files = {{kLive, "A=1\n  xONVIF_CheckPassword=maybe\nB=%s\n"},
                                {"/usr/apache/htdocs/onvif/onvif.conf", "stale\n"}};
  testkit::Transcript t({{Slot::ONVIF_CHECK_PASSWORD, 7}});
  t.run("On", "-a 1", {}, files);
  t.run("Off", "-a 0", {}, files);
  t.run("Off without the live copy", "-a 0", {{Slot::ONVIF_CHECK_PASSWORD, 7}}, {{kLive, {}}});
  t.run("On without the live copy", "-a 1");
  t.expectGolden();
}

TEST(Auth, AdministratorName) {
  const std::string envir = "/tmp/envir.sh", conf = "/tmp/onvif/tmp/administrator.conf";
  testkit::Transcript t;
  t.run("The first export, one word", "-a 2", {},
        {{envir, "export PATH=/bin\nexport Administrator=root2 x\nexport Administrator=late\n"},
         {conf, "old\n"}});
  t.run("No export of the name", "-a 2", {}, {{envir, "export PATH=/bin\n"}, {conf, "old\n"}});
  t.run("An empty name", "-a 2", {}, {{envir, "export Administrator=\n"}});
  t.run("No environment file", "-a 2", {}, {{envir, {}}});
  t.expectGolden();
}

// -u 21: discovery and authentication; -u 22: settings protection; the last
// line of a key decides.
TEST(Auth, WebSwitchesSetCheckingDiscoveryAndProtection) {
  const std::string net = "/etc/sysconfig/network.conf", onvif = "/etc/sysconfig/onvif.conf";
  const std::string discovery = "root.Network.ONVIF.Discovery.Enabled=";
  const std::string check = "root.Network.Authentication.ONVIF=";
  const std::string setting = "root.Onvif.OnvifSetting=";
  const testkit::SlotValues marked = {{Slot::ONVIF_CHECK_PASSWORD, 9},
                                      {Slot::ONVIF_IPV4_STATUS, 9},
                                      {Slot::ONVIF_IPV6_STATUS, 9},
                                      {Slot::ONVIF_SETTING_CTRL, 5}};
  testkit::Transcript t;
  t.run("On", "-u 21", marked, {{net, discovery + "yes\n" + check + "enable\n"}});
  t.run("Off", "-u 21", marked, {{net, discovery + "no\n" + check + "disabled\n"}});
  t.run("Any word but yes", "-u 21", marked, {{net, discovery + "none\n" + check + "disable\n"}});
  t.run("The last line", "-u 21", marked, {{net, discovery + "no\n" + discovery + "yes\n"}});
  t.run("A key after other text", "-u 21", marked, {{net, "x " + check + "disable\n"}});
  t.run("No network settings", "-u 21", marked, {{net, {}}});
  t.run("Protection off", "-u 22", marked, {{onvif, setting + "off\n"}});
  t.run("A word starting with off", "-u 22", marked, {{onvif, setting + "offline\n"}});
  t.run("Protection on", "-u 22", marked, {{onvif, setting + "on\n"}});
  t.run("The last line", "-u 22", marked, {{onvif, setting + "off\n" + setting + "on\n"}});
  t.run("No settings", "-u 22", marked, {{onvif, {}}});
  t.expectGolden();
}

TEST(Auth, ProfileQLeavesTheFactoryStateOnlyOnce) {
  const std::string setting = "/usr/apache/htdocs/onvif/UserSetting.conf";
  const Slot q = Slot::PROFILE_Q_AUTHENTICATION;
  testkit::Transcript t;
  t.run("The factory state", "-u 23", {}, {{setting, "A=1\nProfileQ_FactoryDefaultState=true\n"}});
  t.run("Once left, the file stays", "-u 23", {{q, 5}},
        {{setting, "ProfileQ_FactoryDefaultState=true\n"}});
  t.run("No file", "-u 23", {{q, 0}},
        {{setting, {}}, {"/tmp/onvif/tmp/WS_ProfileQ_Authentication_Setting", {}}});
  t.expectGolden();
}

}  // namespace
