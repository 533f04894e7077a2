// Multicast sync (-u 9): every platform branch and variant, the layout and
// codec-slot tables, the brand-28 audio records and the branch messages.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;

namespace {

const std::string P = "/usr/apache/htdocs/onvif/", kVariable = "/etc/sysconfig/variable.conf";

std::string record(int k) {  // VideoEncoder1 to 4, then AudioEncoder1 to 4
  return std::string("/tmp/onvif/") + (k <= 4 ? "Video" : "Audio") + "Encoder" +
         std::to_string((k - 1) % 4 + 1) + (k <= 4 ? ".VEncoder" : ".AEncoder");
}

// Each run starts from the same files: the RTP keys with short values, the
// records with "o" values, the sample's lists; multicast is on.
TEST(Multicast, PlatformsBranchesAndVariants) {
  const struct {
    int device, brand, layout;
    const char* enabled;  // ONVIF_RESOLUTION_H264, _H264_2, _JPEG, _MPEG4
    const char* why;
    std::string path = {};
    std::optional<std::string> text = std::nullopt;  // the file's text, or none
  } cases[] = {
      {6, 0, 5, "0000", "the layout's streams"},
      {6, 0, 4, "0000", "a layout without a table row"},
      {6, 28, 7, "0000", "brand 28: the fourth TTL key is never found"},
      {6, 28, 8, "0000", "brand 28 without an audio record", "/tmp/onvif/AudioEncoder3.AEncoder"},
      {6, 28, 0, "0000", "brand 28 without the audio list", P + "AudioEncoder.conf"},
      {6, 0, 8, "0000", "without a video record", "/tmp/onvif/VideoEncoder2.VEncoder"},
      {5, 0, 0, "0000", "platform 5: each record's codec picks its port"},
      {5, 0, 0, "0000", "platform 5, an MPEG-4 record with its lines in another order", record(1),
       "Encoding=MPEG4\nMultiPort=o\nMultiIPv4Address=o\nMultiTTL=o\n"},
      {2, 0, 0, "0000", "brands below 12: each record's codec and channel"},
      {1, 0, 0, "0000", "a list with a missing record and a blank line", P + "VideoEncoder.conf",
       "VideoEncoder1.VEncoder\nGone.VEncoder\n\nVideoEncoder4.VEncoder\n"},
      {-1, 0, 0, "0000", "without the audio list", P + "AudioEncoder.conf"},
      {2, 12, 0, "1001", "brands 12 and above: the codec enable slots"},
      {3, 12, 0, "1001", "the codec enable slots on platform 3"},
      {2, 20, 0, "0011", "JPEG and MPEG-4 enabled"},
      {0, 12, 0, "5100", "without the second video record", "/tmp/onvif/VideoEncoder2.VEncoder"},
      {6, 0, 8, "0000", "multicast off", kVariable, "root.Variable.Videoprotocol=3\n"},
      {1, 0, 8, "0000", "without the variables", kVariable},
      {7, 0, 8, "0000", "an unknown platform"},
      {6, 0, 8, "0000", "without the network settings", "/etc/sysconfig/network.conf"}};
  const char* codecs[] = {"H264\nChannel=1", "H264\nChannel=2", "JPEG\nChannel=1",
                          "MPEG4\nChannel=1"};
  const Slot enables[] = {Slot::ONVIF_RESOLUTION_H264, Slot::ONVIF_RESOLUTION_H264_2,
                          Slot::ONVIF_RESOLUTION_JPEG, Slot::ONVIF_RESOLUTION_MPEG4};
  testkit::Transcript t;
  testkit::Files start = {
      {"/etc/sysconfig/network.conf", testkit::golden("Multicast.network.conf.data")}};
  for (const std::string& path : {kVariable, P + "AudioEncoder.conf", P + "VideoEncoder.conf"})
    start.push_back({path, t.cam().read(path)});
  for (int k = 1; k <= 8; ++k)
    start.push_back({record(k), std::string("Encoding=") + codecs[(k - 1) % 4] +
                                    "\nMultiIPv4Address=o\nMultiPort=o\nMultiTTL=o\n"});
  for (const auto& c : cases) {
    testkit::SlotValues slots = {{Slot::ONVIF_DEVICE, c.device},
                                 {Slot::ONVIF_BRAND, c.brand},
                                 {Slot::ONVIF_MULTIPLE_STREAM, c.layout},
                                 {Slot::MULTICASTING, 9}};
    for (int i = 0; i < 4; ++i) slots.push_back({enables[i], c.enabled[i] - '0'});
    testkit::Files files = start;
    if (!c.path.empty()) files.push_back({c.path, c.text});
    t.run(testkit::format("Device %d, brand %d, layout %d, enabled %s: %s", c.device, c.brand,
                          c.layout, c.enabled, c.why),
          "-u 9", slots, files);
  }
  t.expectGolden();
}

}  // namespace
