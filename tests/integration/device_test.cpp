// Device settings sync (-u 11, 12, 18, 31, 32, 35, 36) and the PTZ scope and
// profile binding that RS-485 control drives.
#include <gtest/gtest.h>

#include "sync_helpers.h"

using shm::Slot;
using testkit::Camera;
using testkit::put;
using V = testkit::Lines;

namespace {

const std::string kLive = "/tmp/onvif/onvif.conf", kPersist = "/usr/apache/htdocs/onvif/onvif.conf";
const std::string kStreaming = "FixedScopes=onvif://www.onvif.org/Profile/Streaming\n";
const std::string kPtz = "FixedScopes=onvif://www.onvif.org/type/ptz\n";

TEST(Device, RS485ControlSetsPanTiltZoomScopeAndProfiles) {
  const struct {
    int brand, on, zf, bak;
    const char *slots, *binding;  // PT, ZF and its saved value after; "PTZ=" of the profiles
  } cases[] = {{40, 0, 5, 3, "0 0 5", "NONE"},    {40, 0, 0, 3, "0 0 3", "NONE"}, {40, 1, 0, 4, "1 4 4", "PTZConf1"},
               {40, 1, 2, 4, "1 2 4", "PTZConf1"}, {0, 0, 5, 0, "0 0 0", "x"},     {0, 0, 5, 3, "0 5 3", "x"},
               {0, 1, 0, 9, "1 6 0", "x"},         {0, 2, 2, 9, "1 2 9", "x"}};
  const std::string on = "A=%s\n" + kStreaming + "B=1\n" + kStreaming, off = "A=%s\n" + kStreaming + kPtz + "B=1\n" + kPtz;
  Camera cam;
  cam.startServer();
  for (const auto& c : cases) {
    for (auto [s, v] : {std::pair{Slot::ONVIF_BRAND, c.brand}, {Slot::ONVIF_ZF_SUPPORT, c.zf}, {Slot::ONVIF_ZF_SUPPORT_BAKEUP, c.bak}})
      cam.setSlot(s, v);
    put(cam, {{"/etc/sysconfig/rs485protocol.conf", "root.RS485Control.Switch=" + std::to_string(c.on)},
              {kLive, c.on ? on : off}, {"/tmp/onvif/Profile4.profile", "Name=P\nPTZ=x\n"}});
    cam.run({"-u", "11"});
    cam.run({"-u", "11"});  // the scope is there (or not) as asked: the file is left alone
    EXPECT_EQ(std::to_string(cam.slot(Slot::ONVIF_PT_SUPPORT)) + " " + std::to_string(cam.slot(Slot::ONVIF_ZF_SUPPORT)) + " " +
                  std::to_string(cam.slot(Slot::ONVIF_ZF_SUPPORT_BAKEUP)), c.slots);
    EXPECT_EQ(cam.read(kLive), c.on ? "A=(null)\n" + kStreaming + kPtz + "B=1\n" + kStreaming + kPtz
                                    : "A=(null)\n" + kStreaming + "B=1\n");
    EXPECT_EQ(cam.read(kPersist), cam.read(kLive));
    EXPECT_EQ(cam.read("/tmp/onvif/Profile4.profile"), "Name=P\nPTZ=" + std::string(c.binding) + "\n");
  }
  // Missing files are logged and skipped; a profile name from the list is one shell word.
  const std::string odd = "/tmp/onvif/P;$(touch${IFS}pwned)'.profile", list = "/tmp/onvif/Profiles.conf";
  const std::string p = "update_onvif_profile_ptzconf:", scopes = "update_onvif_conf_file_ptzscopes:" + kLive + " missing";
  testkit::runCases(cam, {
      {"11", {{Slot::ONVIF_BRAND, 40}},
       {{kLive, {}}, {list, "profile filename=Gone.profile\nprofile filename=" + odd.substr(11)}, {odd, "PTZ=NONE\nxPTZ=y\n"}},
       {{odd, "PTZ=PTZConf1\nPTZ=PTZConf1\n"}}, {}, {p + "/tmp/onvif/Gone.profile missing", scopes}, "",
       V{"cp /tmp/onvif/tmp/WS_update_onvif_profile_ptzconf " + odd}},
      {"11", {}, {{list, {}}}, {}, {}, {p + list + " missing", scopes}},
      {"11", {{Slot::ONVIF_PT_SUPPORT, 7}}, {{"/etc/sysconfig/rs485protocol.conf", {}}}, {}, {{Slot::ONVIF_PT_SUPPORT, 7}},
       {"Update_RS485Control /etc/sysconfig/rs485protocol.conf missing"}, "", V{}},
  });
  EXPECT_FALSE(cam.exists("/pwned") || cam.exists("/tmp/onvif/pwned"));
}

TEST(Device, RecordingNamesAndChannels) {
  testkit::FixedKeyLock lock;
  Camera cam;
  cam.startServer();
  cam.runShm({"stream-remove"});
  EXPECT_EQ(cam.run({"-u", "31"}).out, "StreamServerSHM: shmget error.\nStreamServerSHM: SHMSZ=12\nStreamServerSHM: key=3745\n");
  ASSERT_EQ(cam.runShm({"stream-create"}).status, 0);
  for (std::string c : {"S1:1000", "S2:0001", "both:1001", "s1:0000", "both:1001", "-:0000"}) {
    std::string source = c.substr(0, c.find(':')), bytes = source + ":";
    const std::string text = "root.Storage.RecordingSource=" + source + "\nroot.Storage.RecordingSource=S2";
    put(cam, {{"/etc/sysconfig/storage.conf", source == "-" ? std::nullopt : std::optional(text)}});
    cam.run({"-u", "31"});
    for (const std::string& l : testkit::splitLines(cam.runShm({"stream-dump"}).out)) bytes += l.substr(l.find(' ') + 1);
    EXPECT_EQ(bytes, c + std::string(8, '0'));
  }
  cam.runShm({"stream-remove"});
  EXPECT_EQ(cam.errorLog(), V{"Update_Recording_Channel /etc/sysconfig/storage.conf missing"});
  const std::string rec = "/usr/apache/htdocs/onvif/Recordings.conf", storage = "/etc/sysconfig/storage.conf", k = "RecordingFile=";
  const std::string a6 = k + "A1\n" + k + "M1\n" + k + "N1\n" + k + "T1\n" + k + "R1\n" + k + "U1\n", f = "root.Storage.FileNameFormat=";
  const Slot name = Slot::RECORDING_NAME_FORMAT, brand = Slot::ONVIF_BRAND;
  testkit::runCases(cam, {
      {"18", {{brand, 5}, {name, 7}}, {{storage, f + "0"}, {rec, k + "O1\n" + a6 + "x" + k + "O2\n"}}, {{rec, k + "O1\nx" + k + "O2\n"}},
       {{name, 0}}},
      {"18", {{name, 7}}, {{storage, {}}, {rec, k + "O1\n" + a6}}, {{rec, k + "O1\n"}}, {{name, 0}},
       {"Update_Recording " + storage + " missing"}},
      {"18", {}, {{storage, f + "1"}, {rec, a6}}, {{rec, a6 + k + "V0\n"}}, {{name, 1}}},
      {"18", {}, {{rec, {}}}, {{rec, a6 + k + "V0\n"}}, {{name, 1}}, {"Update_Recording:" + rec + " missing"}},
      {"18", {{brand, 9}, {name, 7}}, {{storage, f + "0"}, {rec, a6 + k + "V1\n"}}, {{rec, a6 + k + "V1\n"}}, {{name, 1}}, {}, "", V{}},
      {"18", {}, {{rec, k + "V1\n" + k + "A1 " + k + "M1\n"}}, {{rec, k + "V1\n" + k + "A1 " + k + "M1\n" + k + "M1\n" + a6.substr(34)}}},
  });
}

// The alarm outputs' idle states (-u 12), the commands that only set a slot (-u 20 IPv6, -u 32 device I/O
// path, -u 35 SD card interval), and smart compression (-u 36).
TEST(Device, AlarmOutputsSlotSettingsAndSmartCompression) {
  const std::string out1 = "/tmp/onvif/IO_Output1.conf", out2 = "/tmp/onvif/IO_Output2.conf", list = "/usr/apache/htdocs/onvif/IO";
  const std::string log = "Update_AlarmOutput_High_Low:", gone = log + "/tmp/onvif/IO_Output9.conf missing";
  auto outputs = [&](const std::string& o0, const std::string& o1) -> testkit::Files {
    return {{"/etc/sysconfig/outputs.conf", "root.Output.O0.Active=" + o0 + "\nroot.Output.O1.Active=" + o1},
            {out1, "token=IO_Output1\nIdleState=x\nN=%d\n"}, {out2, "token=IO_Output2\nIdleState=x\n"},
            {list + ".conf", "IO_Input1.conf\nIO_Output9.conf\nIO_Output1.conf\nIO_Output2.conf\n"}};
  };
  // The idle state is the opposite of the active state.
  auto idle = [&](const std::string& i1, const std::string& i2) -> testkit::Files {
    return {{out1, "token=IO_Output1\nIdleState=" + i1 + "\nN=0\n"}, {out2, "token=IO_Output2\nIdleState=" + i2 + "\n"}};
  };
  const Slot o1 = Slot::ONVIF_OUTPUT1_ACTIVE_STATE, o2 = Slot::ONVIF_OUTPUT2_ACTIVE_STATE;
  const std::string net = "/etc/sysconfig/network.conf", clink = "/etc/sysconfig/clink.conf", v6 = "root.Network.IPv6.Enabled=";
  const std::string path = "root.Network.ONVIF.DeviceIO.Path=/onvif/", sd = "root.CLink.Onvif.Notification.SD.Interval=";
  const Slot ipv6 = Slot::ONVIF_IPV6_STATUS, io = Slot::PATH_DEVICE_IO, interval = Slot::SD_CARD_EVENT_INTERVAL;
  const std::string conf = "/usr/apache/htdocs/onvif/SmartCompression.conf", key = "root.Image.I0.RateControl.H264";
  const std::string rate = "/etc/sysconfig/image_ratecontrol.conf", s1 = "Stream1_DynamicGOP_", s2 = "Stream2_DynamicGOP_";
  auto said = [](int seconds) { return "[PKW] Update Send SD CARD EVENT INTERVAL is " + std::to_string(seconds) + " seconds\n"; };
  Camera cam;
  cam.startServer({{ipv6, 7}, {io, 7}, {interval, 7}, {Slot::ONVIF_IO_TYPE, 1}});
  testkit::runCases(cam, {
      {"12", {{o1, 7}, {o2, 7}}, outputs("closed", "open"), idle("open", "closed"), {{o1, 0}, {o2, 1}}, {gone}},
      {"12", {{o1, 7}, {o2, 7}}, outputs("open", "closed"), idle("closed", "open"), {{o1, 1}, {o2, 0}}, {gone}},
      {"12", {{o1, 7}, {o2, 7}}, outputs("Closed", ""), idle("x", "x"), {{o1, 7}, {o2, 7}}, {gone}},
      // I/O type 5 reads IOPTZ.conf but names IO.conf when it is missing.
      {"12", {{Slot::ONVIF_IO_TYPE, 5}}, {{list + "PTZ.conf", {}}}, {}, {}, {log + list + ".conf missing"}},
      {"12", {{Slot::ONVIF_IO_TYPE, 3}}, {}, {}, {}, {log + list + "PTZ.conf missing"}},
      {"20", {}, {{net, v6 + "yes\n" + v6 + "no"}}, {}, {{ipv6, 2}}},
      {"20", {}, {{net, v6 + "YES"}}, {}, {{ipv6, 3}}},
      {"20", {{ipv6, 7}}, {{net, "a=b"}}, {}, {{ipv6, 7}}},
      {"20", {}, {{net, {}}}, {}, {{ipv6, 7}}, {"Update_IPV6: " + net + " missing"}},
      {"32", {}, {{net, path + "deviceIO_service"}}, {}, {{io, 1}}},
      {"32", {}, {{net, path + "deviceio"}}, {}, {{io, 0}}},
      {"32", {{io, 7}}, {{net, {}}}, {}, {{io, 0}}, {"Change_Onvif_Path: " + net + " missing"}},
      {"35", {}, {{clink, sd + "30\n" + sd + "45"}}, {}, {{interval, 45}}, {}, said(45)},
      {"35", {}, {{clink, sd + "abc"}}, {}, {{interval, 45}}, {}, said(45)},
      {"35", {}, {{clink, {}}}, {}, {{interval, 45}}, {"Update_SD_CARD_STATUS:" + clink + " missing"}, said(45)},
      {"36", {}, {{conf, "Smart_Compression_Enabled=x\n" + s1 + "Enabled=x\n" + s1 + "MaxGOP=x\n" + s2 + "Enabled=x\n" + s2 + "MaxGOP=x"},
                  {rate, key + "Mode.LBR.Auto=middle\n" + key + "VideoKeyFrameInterval.Mode=dynamic\n" + key +
                             "VideoKeyFrameInterval.Dynamic=60\n" + key + "_2VideoKeyFrameInterval.Mode=Dynamic\n"}},
       {{conf, "Smart_Compression_Enabled=middle\n" + s1 + "Enabled=on\n" + s1 + "MaxGOP=60\n" + s2 + "Enabled=off\n" + s2 + "MaxGOP=\n"}},
       {}, {}, "", V{"cp /tmp/onvif/tmp/WS_Update_SmartCompression " + conf}},
      {"36", {}, {{rate, {}}, {conf, {}}}, {}, {},
       {"[Update_SmartCompression] " + rate + " missing", "[Update_SmartCompression] " + conf + " missing"}},
  });
}

}  // namespace
