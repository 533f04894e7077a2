// Device settings sync (-u 11, 12, 18, 20, 31, 32, 35, 36) and the PTZ scope
// and profile binding that RS-485 control drives.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;
using testkit::format;

namespace {

const std::string kLive = "/tmp/onvif/onvif.conf", kRs485 = "/etc/sysconfig/rs485protocol.conf";
const std::string kStreaming = "FixedScopes=onvif://www.onvif.org/Profile/Streaming\n";
const std::string kPtz = "FixedScopes=onvif://www.onvif.org/type/ptz\n";

// Brand 40 binds the profiles to PTZConf1 and saves the zoom-focus support
// while RS-485 is off; other brands only save it. A second run finds the
// scope as asked and leaves the files alone. Missing files are logged and
// skipped; a profile name from the list is one shell word.
TEST(Device, RS485ControlSetsPanTiltZoomScopeAndProfiles) {
  const int cases[][4] = {{40, 0, 5, 3}, {40, 0, 0, 3}, {40, 1, 0, 4}, {40, 1, 2, 4},
                          {0, 0, 5, 0},  {0, 0, 5, 3},  {0, 1, 0, 9},  {0, 2, 2, 9}};
  const std::string on = "A=%s\n" + kStreaming + "B=1\n" + kStreaming;
  const std::string off = "A=%s\n" + kStreaming + kPtz + "B=1\n" + kPtz;
  const std::string odd = "/tmp/onvif/P;$(touch${IFS}pwned)'.profile";
  const std::string list = "/tmp/onvif/Profiles.conf";
  testkit::Transcript t;
  for (const auto& [brand, switched, zf, saved] : cases) {
    t.run(
        format("Brand %d, switch %d, zoom-focus support %d, saved %d", brand, switched, zf, saved),
        "-u 11",
        {{Slot::ONVIF_BRAND, brand},
         {Slot::ONVIF_ZF_SUPPORT, zf},
         {Slot::ONVIF_ZF_SUPPORT_BAKEUP, saved}},
        {{kRs485, format("root.RS485Control.Switch=%d", switched)},
         {kLive, switched ? on : off},
         {"/tmp/onvif/Profile4.profile", "Name=P\nPTZ=x\n"}});
    t.run("Again", "-u 11");
  }
  t.run("Without onvif.conf, and a hostile profile name", "-u 11", {{Slot::ONVIF_BRAND, 40}},
        {{kLive, {}},
         {list, "profile filename=Gone.profile\nprofile filename=" + odd.substr(11)},
         {odd, "PTZ=NONE\nxPTZ=y\n"}});
  t.run("Without the profile list", "-u 11", {}, {{list, {}}});
  t.run("Without the RS-485 settings", "-u 11", {{Slot::ONVIF_PT_SUPPORT, 7}}, {{kRs485, {}}});
  t.expectGolden();
  EXPECT_FALSE(t.cam().exists("/pwned") || t.cam().exists("/tmp/onvif/pwned"));
}

// Bytes 0 and 3 of the streaming server's segment are the recording sources
// of the first line.
TEST(Device, RecordingChannelsInTheStreamSegment) {
  const std::string storage = "/etc/sysconfig/storage.conf";
  testkit::FixedKeyLock lock;
  testkit::Transcript t;
  t.cam().runShm({"stream-remove"});  // one an interrupted run left
  t.run("The segment is missing", "-u 31");
  t.run("The segment", "onvif-shm stream-create");
  for (const char* source : {"S1", "S2", "both", "s1", "both"}) {
    t.run(format("Source %s", source), "-u 31", {},
          {{storage,
            format("root.Storage.RecordingSource=%s\nroot.Storage.RecordingSource=S2", source)}});
    t.run("Its bytes", "onvif-shm stream-dump");
  }
  t.run("No storage settings", "-u 31", {}, {{storage, {}}});
  t.run("Its bytes", "onvif-shm stream-dump");
  t.run("Removed", "onvif-shm stream-remove");
  t.expectGolden();
}

// Format 0 drops the records with an end time; format 1 adds V0 unless a
// brand 9 list has V1.
TEST(Device, RecordingNames) {
  const std::string rec = "/usr/apache/htdocs/onvif/Recordings.conf";
  const std::string storage = "/etc/sysconfig/storage.conf", f = "root.Storage.FileNameFormat=";
  const std::string k = "RecordingFile=";
  const std::string six =
      k + "A1\n" + k + "M1\n" + k + "N1\n" + k + "T1\n" + k + "R1\n" + k + "U1\n";
  const Slot name = Slot::RECORDING_NAME_FORMAT, brand = Slot::ONVIF_BRAND;
  testkit::Transcript t;
  t.run("Without end time", "-u 18", {{brand, 5}, {name, 7}},
        {{storage, f + "0"}, {rec, k + "O1\n" + six + "x" + k + "O2\n"}});
  t.run("Without the storage settings", "-u 18", {{name, 7}},
        {{storage, {}}, {rec, k + "O1\n" + six}});
  t.run("With end time", "-u 18", {}, {{storage, f + "1"}, {rec, six}});
  t.run("Without the list", "-u 18", {}, {{rec, {}}});
  t.run("Brand 9 keeps V1", "-u 18", {{brand, 9}, {name, 7}},
        {{storage, f + "0"}, {rec, six + k + "V1\n"}});
  t.run("A line holding two names", "-u 18", {}, {{rec, k + "V1\n" + k + "A1 " + k + "M1\n"}});
  t.expectGolden();
}

// The alarm outputs' idle states (-u 12), the commands that only set a slot
// (-u 20 IPv6, -u 32 device I/O path, -u 35 SD card interval), and smart
// compression (-u 36).
TEST(Device, AlarmOutputsSlotSettingsAndSmartCompression) {
  const std::string out1 = "/tmp/onvif/IO_Output1.conf", out2 = "/tmp/onvif/IO_Output2.conf";
  const std::string list = "/usr/apache/htdocs/onvif/IO";
  auto outputs = [&](const std::string& o0, const std::string& o1) -> testkit::Files {
    return {
        {"/etc/sysconfig/outputs.conf",
         "root.Output.O0.Active=" + o0 + "\nroot.Output.O1.Active=" + o1},
        {out1, "token=IO_Output1\nIdleState=x\nN=%d\n"},
        {out2, "token=IO_Output2\nIdleState=x\n"},
        {list + ".conf", "IO_Input1.conf\nIO_Output9.conf\nIO_Output1.conf\nIO_Output2.conf\n"}};
  };
  const std::string net = "/etc/sysconfig/network.conf", clink = "/etc/sysconfig/clink.conf";
  const std::string v6 = "root.Network.IPv6.Enabled=";
  const std::string path = "root.Network.ONVIF.DeviceIO.Path=/onvif/";
  const std::string sd = "root.CLink.Onvif.Notification.SD.Interval=";
  const std::string conf = "/usr/apache/htdocs/onvif/SmartCompression.conf";
  const std::string rate = "/etc/sysconfig/image_ratecontrol.conf";
  const Slot io = Slot::ONVIF_IO_TYPE;
  testkit::Transcript t({{Slot::ONVIF_IPV6_STATUS, 7},
                         {Slot::PATH_DEVICE_IO, 7},
                         {Slot::SD_CARD_EVENT_INTERVAL, 7},
                         {io, 1}});
  t.run("The idle state is the opposite of the active state", "-u 12", {},
        outputs("closed", "open"));
  t.run("The other way round", "-u 12", {}, outputs("open", "closed"));
  t.run("Other words leave the outputs", "-u 12", {}, outputs("Closed", ""));
  t.run("I/O type 5 reads IOPTZ.conf but names IO.conf when it is missing", "-u 12", {{io, 5}},
        {{list + "PTZ.conf", {}}});
  t.run("I/O type 3 reads IOPTZ.conf", "-u 12", {{io, 3}});
  t.run("IPv6 on: the first line", "-u 20", {}, {{net, v6 + "yes\n" + v6 + "no"}});
  t.run("IPv6 off: any other word", "-u 20", {}, {{net, v6 + "YES"}});
  t.run("No IPv6 line", "-u 20", {{Slot::ONVIF_IPV6_STATUS, 7}}, {{net, "a=b"}});
  t.run("No network settings", "-u 20", {}, {{net, {}}});
  t.run("The device I/O path", "-u 32", {}, {{net, path + "deviceIO_service"}});
  t.run("Another device I/O path", "-u 32", {}, {{net, path + "deviceio"}});
  t.run("No network settings", "-u 32", {{Slot::PATH_DEVICE_IO, 7}}, {{net, {}}});
  t.run("The SD card interval: the last line", "-u 35", {}, {{clink, sd + "30\n" + sd + "45"}});
  t.run("A word is no interval", "-u 35", {}, {{clink, sd + "abc"}});
  t.run("No interval settings", "-u 35", {}, {{clink, {}}});
  t.run("Smart compression", "-u 36", {}, testkit::fixture("Device.smartcompression.data"));
  t.run("Smart compression without its files", "-u 36", {}, {{rate, {}}, {conf, {}}});
  t.expectGolden();
}

}  // namespace
