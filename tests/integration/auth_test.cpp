// Authentication settings: password checking (-a), the administrator's name,
// and sync commands 21, 22 and 23.
#include <gtest/gtest.h>

#include "camera.h"

using shm::Slot;
using testkit::Camera;

namespace {

const char* const kLive = "/tmp/onvif/onvif.conf";
const char* const kPersist = "/usr/apache/htdocs/onvif/onvif.conf";

TEST(Auth, PasswordCheckSwitchesBothCopiesAndTheSlot) {
  struct Case {
    const char* request;
    const char* out;
    const char* line;
    int slot;
    const char* temp;
  } cases[] = {
      {"1", "Onvif check Password!\n", "ONVIF_CheckPassword=true", 1, "WS_Update_Onvif_Check_Password"},
      {"0", "Onvif don't check Password!\n", "ONVIF_CheckPassword=false", 0,
       "WS_Update_Onvif_DoNot_Check_Password"},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_CHECK_PASSWORD, 7}});
    cam.write(kLive, "A=1\n  xONVIF_CheckPassword=maybe\nB=%s\n");
    cam.write(kPersist, "stale\n");
    testkit::RunResult r = cam.run({"-a", c.request});
    EXPECT_EQ(r.out, c.out);
    std::string expect = std::string("A=1\n") + c.line + "\nB=(null)\n";
    EXPECT_EQ(cam.read(kLive), expect);
    EXPECT_EQ(cam.read(kPersist), expect);
    EXPECT_EQ(cam.slot(Slot::ONVIF_CHECK_PASSWORD), c.slot);
    std::string temp = std::string("/tmp/onvif/tmp/") + c.temp;
    EXPECT_EQ(cam.shellTrace(), (std::vector<std::string>{"cp " + temp + " " + kLive, "cp " + temp + " " + kPersist}));
    EXPECT_TRUE(cam.exists(temp));
  }
}

// A missing source leaves an empty temporary file, the target and the slot as
// they were, and one error-log line per run.
TEST(Auth, PasswordCheckWithoutTheLiveFileLogsAndKeepsTheSlot) {
  Camera cam;
  cam.startServer({{Slot::ONVIF_CHECK_PASSWORD, 7}});
  cam.remove(kLive);
  cam.write(kPersist, "persistent\n");
  cam.run({"-a", "0"});
  cam.run({"-a", "1"});
  EXPECT_EQ(cam.slot(Slot::ONVIF_CHECK_PASSWORD), 7);
  EXPECT_EQ(cam.read(kPersist), "persistent\n");
  EXPECT_EQ(cam.errorLog(), (std::vector<std::string>{
                                "Update_Onvif_DoNot_Check_Password /tmp/onvif/onvif.conf missing",
                                "Update_Onvif_Check_Password /tmp/onvif/onvif.conf missing"}));
  EXPECT_TRUE(cam.exists("/tmp/onvif/tmp/WS_Update_Onvif_Check_Password"));
  EXPECT_EQ(cam.read("/tmp/onvif/tmp/WS_Update_Onvif_Check_Password"), "");
  EXPECT_TRUE(cam.shellTrace().empty());
}

TEST(Auth, AdministratorName) {
  struct Case {
    const char* envir;  // nullptr: no file
    const char* conf;   // administrator.conf after the run
    const char* log;
  } cases[] = {
      {"export PATH=/bin\nexport Administrator=root2 x\nexport Administrator=late\n", "Administrator=root2\n", nullptr},
      {"export PATH=/bin\n", "old\n", "Update_Administrator_Username: No Find Username."},
      {"export Administrator=\n", "old\n", "Update_Administrator_Username: No Find Username."},
      {nullptr, "old\n", "Update_Administrator_Username:/tmp/envir.sh missing"},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer();
    if (c.envir)
      cam.write("/tmp/envir.sh", c.envir);
    else
      cam.remove("/tmp/envir.sh");
    cam.write("/tmp/onvif/tmp/administrator.conf", "old\n");
    EXPECT_EQ(cam.run({"-a", "2"}).out, "Update Administrator Username!\n");
    EXPECT_EQ(cam.read("/tmp/onvif/tmp/administrator.conf"), c.conf);
    if (c.log) {
      EXPECT_EQ(cam.errorLog(), std::vector<std::string>{c.log});
    } else {
      EXPECT_TRUE(cam.errorLog().empty());
    }
  }
}

TEST(Auth, WebSwitchesSetCheckingAndDiscovery) {
  struct Case {
    const char* network;  // nullptr: no file
    int check, ipv4, ipv6;
  } cases[] = {
      {"root.Network.ONVIF.Discovery.Enabled=yes\nroot.Network.Authentication.ONVIF=enable\n", 1, 1, 2},
      {"root.Network.ONVIF.Discovery.Enabled=no\nroot.Network.Authentication.ONVIF=disabled\n", 0, 2, 3},
      {"root.Network.ONVIF.Discovery.Enabled=none\nroot.Network.Authentication.ONVIF=disable\n", 0, 2, 3},
      {"root.Network.ONVIF.Discovery.Enabled=no\nroot.Network.ONVIF.Discovery.Enabled=yes\n", 1, 1, 2},
      {"x root.Network.Authentication.ONVIF=disable\n", 1, 1, 2},
      {nullptr, 1, 1, 2},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_CHECK_PASSWORD, 9}, {Slot::ONVIF_IPV4_STATUS, 9}, {Slot::ONVIF_IPV6_STATUS, 9}});
    if (c.network)
      cam.write("/etc/sysconfig/network.conf", c.network);
    else
      cam.remove("/etc/sysconfig/network.conf");
    cam.run({"-u", "21"});
    EXPECT_EQ(cam.slot(Slot::ONVIF_CHECK_PASSWORD), c.check) << (c.network ? c.network : "missing");
    EXPECT_EQ(cam.slot(Slot::ONVIF_IPV4_STATUS), c.ipv4);
    EXPECT_EQ(cam.slot(Slot::ONVIF_IPV6_STATUS), c.ipv6);
    if (!c.network) {
      EXPECT_EQ(cam.errorLog(),
                std::vector<std::string>{"Update_Brask_OnvifSetting: /etc/sysconfig/network.conf missing"});
    }
  }
}

TEST(Auth, SettingsProtection) {
  struct Case {
    const char* conf;
    int slot;
  } cases[] = {
      {"root.Onvif.OnvifSetting=off\n", 1},     {"root.Onvif.OnvifSetting=offline\n", 1},
      {"root.Onvif.OnvifSetting=on\n", 0},      {"root.Onvif.OnvifSetting=off\nroot.Onvif.OnvifSetting=on\n", 0},
      {nullptr, 0},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_SETTING_CTRL, 5}});
    if (c.conf)
      cam.write("/etc/sysconfig/onvif.conf", c.conf);
    else
      cam.remove("/etc/sysconfig/onvif.conf");
    cam.run({"-u", "22"});
    EXPECT_EQ(cam.slot(Slot::ONVIF_SETTING_CTRL), c.slot);
    if (!c.conf) {
      EXPECT_EQ(cam.errorLog(), std::vector<std::string>{"STA_OnvifSetting_Protect: /etc/sysconfig/onvif.conf missing"});
    }
  }
}

TEST(Auth, ProfileQLeavesTheFactoryStateOnlyOnce) {
  const char* setting = "/usr/apache/htdocs/onvif/UserSetting.conf";
  Camera cam;
  cam.startServer();
  cam.write(setting, "A=1\nProfileQ_FactoryDefaultState=true\n");
  cam.run({"-u", "23"});
  EXPECT_EQ(cam.read(setting), "A=1\nProfileQ_FactoryDefaultState=false\n");
  EXPECT_EQ(cam.slot(Slot::PROFILE_Q_AUTHENTICATION), 1);
  EXPECT_EQ(cam.shellTrace(),
            std::vector<std::string>{"cp /tmp/onvif/tmp/WS_ProfileQ_Authentication_Setting " + std::string(setting)});

  cam.clearTrace();
  cam.write(setting, "ProfileQ_FactoryDefaultState=true\n");
  cam.setSlot(Slot::PROFILE_Q_AUTHENTICATION, 5);
  cam.run({"-u", "23"});
  EXPECT_EQ(cam.read(setting), "ProfileQ_FactoryDefaultState=true\n");
  EXPECT_EQ(cam.slot(Slot::PROFILE_Q_AUTHENTICATION), 1);
  EXPECT_TRUE(cam.shellTrace().empty());

  cam.setSlot(Slot::PROFILE_Q_AUTHENTICATION, 0);
  cam.remove(setting);
  cam.remove("/tmp/onvif/tmp/WS_ProfileQ_Authentication_Setting");
  cam.run({"-u", "23"});
  EXPECT_EQ(cam.slot(Slot::PROFILE_Q_AUTHENTICATION), 1);
  EXPECT_EQ(cam.errorLog(), std::vector<std::string>{"ProfileQ_Authentication_Setting:" + std::string(setting) + " missing"});
  EXPECT_FALSE(cam.exists("/tmp/onvif/tmp/WS_ProfileQ_Authentication_Setting"));
}

}  // namespace
