// Multicast sync (-u 9): every platform branch and variant, the layout and
// codec-slot tables, the brand-28 audio records and the branch messages.
#include <gtest/gtest.h>

#include "camera.h"

using shm::Slot;
using testkit::Camera;

namespace {

std::string record(int k) {  // VideoEncoder1 to 4, then AudioEncoder1 to 4
  return std::string("/tmp/onvif/") + (k <= 4 ? "Video" : "Audio") + "Encoder" + std::to_string((k - 1) % 4 + 1) +
         (k <= 4 ? ".VEncoder" : ".AEncoder");
}

// "address port ttl" of VideoEncoder1 to 4 and AudioEncoder1 to 4 ("-": untouched).
std::string multicastOf(const Camera& cam) {
  std::string out;
  for (int k = 1; k <= 8; ++k) {
    std::string v;
    for (const std::string& l : cam.lines(record(k)))
      if (l.rfind("Multi", 0) == 0) v += (v.empty() ? "" : " ") + l.substr(l.find('=') + 1);
    out += (v == "o o o" ? "-" : v) + (k < 8 ? "|" : "");
  }
  return out;
}

TEST(Multicast, PlatformsBranchesAndVariants) {
  struct Case {
    int device, brand, layout;
    const char* enabled;  // ONVIF_RESOLUTION_H264, _H264_2, _JPEG, _MPEG4
    const char* records;
    int multicasting;
    const char* log = nullptr;
    const char *path = nullptr, *content = nullptr;  // a file changed before the run (content nullptr: removed)
  } cases[] = {
      {6, 0, 5, "0000", "ha1 hp1 t|ha2 hp2 t|ha3 hp3 t|-|aa ap t|-|-|-", 1},
      {6, 0, 4, "0000", "-|-|-|-|aa ap t|-|-|-", 1, "Update_Multicast ONVIF_MULTIPLE_STREAM ERROR!"},
      // Brand 28: the fourth TTL key is never found, so that TTL is written empty.
      {6, 28, 7, "0000", "ha1 hp1 t|ha2 hp2 t|ha3 hp3 t|ha4 hp4 t|aa hap1 ht1|aa hap2 ht2|aa hap3 ht3|aa hap4 ", 1},
      {6, 28, 8, "0000", "ha1 hp1 t|ha2 hp2 t|ha3 hp3 t|ma mp t|aa hap1 ht1|aa hap2 ht2||aa map mt", 1,
       "Update_Multicast audio:/tmp/onvif/AudioEncoder1.AEncoder missing!", "/tmp/onvif/AudioEncoder3.AEncoder"},
      {6, 28, 0, "0000", "ma mp t|-|-|-|-|-|-|-", 1,
       "Update_Multicast audio:/usr/apache/htdocs/onvif/AudioEncoder.conf missing!",
       "/usr/apache/htdocs/onvif/AudioEncoder.conf"},
      {6, 0, 8, "0000", "ha1 hp1 t||ha3 hp3 t|ma mp t|aa ap t|-|-|-", 1,
       "Update_Multicast:/tmp/onvif/VideoEncoder2.VEncoder missing!", "/tmp/onvif/VideoEncoder2.VEncoder"},
      // Platform 5: each record's codec picks its port; the audio takes the video address.
      {5, 0, 0, "0000", "va hp1 t|va hp2 t|-|-|va ap t|-|-|-", 1},
      {5, 0, 0, "0000", "o va t|va hp2 t|-|-|va ap t|-|-|-", 1, nullptr, "/tmp/onvif/VideoEncoder1.VEncoder",
       "Encoding=MPEG4\nMultiPort=o\nMultiIPv4Address=o\nMultiTTL=o\n"},
      // Brands below 12: the video list, each record's codec and channel.
      {2, 0, 0, "0000", "va hp1 t|va hp2 t|va mp t|va pp t|va ap t|va ap t|va ap t|va ap t", 1},
      {1, 0, 0, "0000", "va hp1 t|-|-|va o t|va ap t|va ap t|va ap t|va ap t", 1,
       "A2 nonbrand Update_Multicast video:/tmp/onvif/Gone.VEncoder missing!",
       "/usr/apache/htdocs/onvif/VideoEncoder.conf",
       "VideoEncoder1.VEncoder\nGone.VEncoder\n\nVideoEncoder4.VEncoder\n"},
      {-1, 0, 0, "0000", "va hp1 t|va hp2 t|va mp t|va o t|-|-|-|-", 1,
       "A2&N3 nonbrand Update_Multicast audio:/usr/apache/htdocs/onvif/AudioEncoder.conf missing!",
       "/usr/apache/htdocs/onvif/AudioEncoder.conf"},
      // Brands 12 and above: the codec enable slots.
      {2, 12, 0, "1001", "-|-|-|-|va ap t|va ap t|va ap t|va ap t", 1,
       "N3 SP Update_Multicast ONVIF_MULTIPLE_STREAM ERROR!"},
      {3, 12, 0, "1001", "va hp1 t|-|-|-|va ap t|va ap t|va ap t|va ap t", 1},
      {2, 20, 0, "0011", "va pp t|va mp t|-|-|va ap t|va ap t|va ap t|va ap t", 1},
      {0, 12, 0, "5100", "va hp1 t||-|-|va ap t|va ap t|va ap t|va ap t", 1,
       "A2 SP Update_Multicast video:/tmp/onvif/VideoEncoder2.VEncoder missing!", "/tmp/onvif/VideoEncoder2.VEncoder"},
      // Multicast off, an unknown platform, missing system files.
      {6, 0, 8, "0000", "-|-|-|-|-|-|-|-", 0, nullptr, "/etc/sysconfig/variable.conf",
       "root.Variable.Videoprotocol=3\n"},
      {1, 0, 8, "0000", "-|-|-|-|-|-|-|-", 0, "Update_Multicast:/etc/sysconfig/variable.conf missing!",
       "/etc/sysconfig/variable.conf"},
      {7, 0, 8, "0000", "-|-|-|-|-|-|-|-", 9},
      {6, 0, 8, "0000", "-|-|-|-|-|-|-|-", 9, "Update_Multicast:/etc/sysconfig/network.conf missing!",
       "/etc/sysconfig/network.conf"},
  };
  std::string rtp;
  for (const char* kv : {"VideoAddress=va",       "H264VideoPort=hp1",     "H264VideoPort2=hp2",
                         "H264VideoPort3=hp3",    "H264VideoPort4=hp4",    "MjpegVideoPort=mp",
                         "MpegVideoPort=pp",      "AudioPort=ap",          "TTL=t",
                         "AudioTTL=at",           "AudioAddress=aa",       "MjpegVideoAddress=ma",
                         "H264VideoAddress=ha1",  "H264VideoAddress2=ha2", "H264VideoAddress3=ha3",
                         "H264VideoAddress4=ha4", "H264AudioPort=hap1",    "H264AudioPort2=hap2",
                         "H264AudioPort3=hap3",   "H264AudioPort4=hap4",   "MjpegAudioPort=map",
                         "H264TTL=ht1",           "H264TTL2=ht2",          "H264TTL3=ht3",
                         "H264TTL4=ht4",          "MjpegTTL=mt",           "MjpegTTL2=mt2"})
    rtp += std::string("root.Network.RTP.R0.") + kv + "\n";
  const char* codecs[] = {"H264\nChannel=1", "H264\nChannel=2", "JPEG\nChannel=1", "MPEG4\nChannel=1"};
  const Slot enables[] = {Slot::ONVIF_RESOLUTION_H264, Slot::ONVIF_RESOLUTION_H264_2, Slot::ONVIF_RESOLUTION_JPEG,
                          Slot::ONVIF_RESOLUTION_MPEG4};
  for (const Case& c : cases) {
    Camera cam;  // the sample's lists name VideoEncoder1 to 4 and AudioEncoder1 to 4; multicast is on
    cam.startServer({{Slot::ONVIF_DEVICE, c.device},
                     {Slot::ONVIF_BRAND, c.brand},
                     {Slot::ONVIF_MULTIPLE_STREAM, c.layout},
                     {Slot::MULTICASTING, 9}});
    cam.write("/etc/sysconfig/network.conf", rtp);
    for (int k = 1; k <= 8; ++k)
      cam.write(record(k),
                std::string("Encoding=") + codecs[(k - 1) % 4] + "\nMultiIPv4Address=o\nMultiPort=o\nMultiTTL=o\n");
    if (c.path) c.content ? cam.write(c.path, c.content) : cam.remove(c.path);
    for (int i = 0; i < 4; ++i) cam.setSlot(enables[i], c.enabled[i] - '0');
    cam.run({"-u", "9"});
    EXPECT_EQ(multicastOf(cam), c.records) << c.device << "/" << c.brand << "/" << c.layout;
    EXPECT_EQ(cam.slot(Slot::MULTICASTING), c.multicasting) << c.records;
    EXPECT_EQ(cam.errorLog(), c.log ? std::vector<std::string>{c.log} : std::vector<std::string>{}) << c.records;
  }
}

}  // namespace
