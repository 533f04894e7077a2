// Audio sync (-u 4): the bit-rate table on the legacy and current paths, the
// back channel told to the streaming server, the profiles and use counts, the
// streaming server's audio switches (brand 40) and the error-log texts.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "camera.h"

using shm::Slot;
using testkit::Camera;
using Lines = std::vector<std::string>;

namespace {

const std::string L = "/tmp/onvif/", P = "/usr/apache/htdocs/onvif/",
                  kCtlLog = "/home/ostrin2/StreamingServer/streamctl.log";

// The streaming server's control program, recording each argument in [].
void recordStreamctl(const Camera& cam) {
  cam.write("/home/ostrin2/StreamingServer/streamctl",
            "#!/bin/sh\nfor a; do printf '[%s]' \"$a\"; done >> \"$0.log\"\necho >> \"$0.log\"\n");
  chmod(cam.host("/home/ostrin2/StreamingServer/streamctl").c_str(), 0755);
}

TEST(Audio, BitRateTableOnBothPaths) {
  struct Case {
    const char *token, *family, *encoding, *rate;  // family: the legacy records' codec
    int code;                                      // 0: the current record's bit rate and the slots are left alone
    bool legacyMatches;                            // the token belongs to the legacy records' codec
  } cases[] = {
      {"16000", "G726", "G726", "16", 1, true}, {"024000x", "G726", "G726", "24", 2, true},
      {"32000", "G726", "G726", "32", 3, true}, {"40000", "G711", "G726", "40", 4, false},
      {"ulaw", "G711", "G711", "64", 5, true},  {"alaw", "G711", "G711", "80", 6, true},
      {"alaw", "G726", "G711", "80", 6, false}, {"aac_128000", "G711", "AAC", "9", 0, false},
      {"ULAW", "G711", "G711", "9", 0, false},
  };
  Camera cam;
  cam.startServer();
  cam.write(P + "AudioEncoder.conf", "AudioEncoder1.AEncoder\nAudioEncoder2.AEncoder x\n");
  for (const Case& c : cases) {
    cam.write("/etc/sysconfig/audio_source.conf",
              std::string("root.AudioSource.A0.BitRate=") + c.token + "\nroot.AudioSource.A0.OutputGain=77\n");
    for (int legacy : {0, 1}) {
      for (Slot s : {Slot::ONVIF_AUDIO, Slot::ONVIF_CHANGE_AUDIO}) cam.setSlot(s, 99);
      cam.setSlot(Slot::ONVIF_DEVICE, legacy ? 0 : 6);
      for (const char* r : {"AudioEncoder1.AEncoder", "AudioEncoder2.AEncoder"})
        cam.write(L + r, std::string("Bitrate=9\nEncoding=") + c.family + "\nN=%s\n");
      cam.run({"-u", "4"});
      // Legacy: a bit rate met before any codec line is dropped, but the codec
      // mark of one record carries over to the next; the codec is kept.
      bool changed = legacy ? c.legacyMatches : c.code != 0;
      std::string rate = std::string("Bitrate=") + (changed ? c.rate : "9") + "\n";
      std::string tail = std::string("Encoding=") + (legacy ? c.family : c.encoding) + "\nN=(null)\n";
      EXPECT_EQ(cam.read(L + "AudioEncoder1.AEncoder"), (legacy ? "" : rate) + tail) << c.token << " legacy " << legacy;
      EXPECT_EQ(cam.read(L + "AudioEncoder2.AEncoder"),
                legacy ? rate + tail : std::string("Bitrate=9\nEncoding=") + c.family + "\nN=%s\n");
      EXPECT_EQ(cam.slot(Slot::ONVIF_AUDIO), changed ? c.code : 99) << c.token << " legacy " << legacy;
      EXPECT_EQ(cam.slot(Slot::ONVIF_CHANGE_AUDIO), changed ? c.code : 99);
      EXPECT_TRUE(testkit::hasLine(cam.lines(P + "AudioOutput1.conf"), "OutputLevel=77"));
    }
  }
}

TEST(Audio, CurrentPathProfilesBackChannelAndCounts) {
  struct Case {
    int layout, brand, region;
    const char *duplex, *storage;  // storage nullptr: no key
    const char* on;                // back channels of jpeg, h264_1 to h264_4; nullptr: no command
    const char* profile;           // the profile's audio values afterwards
    int uses, record;
  } cases[] = {
      {0, 0, 0, "full", "enable", "10000", "x x AudioOutput1 AudioDecoder1", 2, 1},
      {1, 34, 0, "full", nullptr, "01000", "AudioSource1 AudioEncoder1 AudioOutput1 AudioDecoder1", 2, 1},
      {2, 44, 6, "full", "x", "01100", "x x AudioOutput1 AudioDecoder1", 2, 1},
      {3, 0, 0, "full", "x", "11000", "x x AudioOutput1 AudioDecoder1", 2, 1},
      {5, 0, 0, "full", "x", "01110", "x x AudioOutput1 AudioDecoder1", 2, 1},
      {6, 0, 0, "full", "x", "11100", "x x AudioOutput1 AudioDecoder1", 2, 1},
      {7, 0, 0, "half", "x", "01111", "x x AudioOutput1 AudioDecoder1", 2, 1},
      {8, 0, 0, "full", "x", "11110", "x x AudioOutput1 AudioDecoder1", 2, 1},
      {4, 0, 0, "full", "x", nullptr, "x x AudioOutput1 AudioDecoder1", 2, 1},
      {8, 44, 7, "disable", "disabled", "00000", "NONE NONE NONE NONE", 0, 0},
      {4, 44, 6, "disable", "disable", "00000", "x x NONE NONE", 0, 0},
  };
  Camera cam("/tmp/onvifctrl audio $HOME-");  // the control program's path needs quoting
  cam.startServer({{Slot::ONVIF_DEVICE, 6}});
  recordStreamctl(cam);
  const char* names[] = {"[jpeg][jpeg", "[h264][h264_1", "[h264][h264_2", "[h264][h264_3", "[h264][h264_4"};
  for (const Case& c : cases) {
    for (auto [s, v] : {std::pair{Slot::ONVIF_MULTIPLE_STREAM, c.layout},
                        {Slot::ONVIF_BRAND, c.brand},
                        {Slot::BRAND_REGION, c.region}})
      cam.setSlot(s, v);
    cam.write("/etc/sysconfig/audio.conf",
              std::string("root.Audio.DuplexMode=") + c.duplex + "\n" +
                  (c.storage ? std::string("root.Audio.StorageRecording=") + c.storage : ""));
    cam.write(L + "Profiles.conf", "profile filename=P1\nprofile filename=Gone\nprofile filename=P2\n");
    for (const char* p : {"P1", "P2"})
      cam.write(L + p, "AudioSource=x\nAudioEncoder=x\nAudioOutput=x\nAudioDecoder=x\n");
    for (const std::string& f : {kCtlLog, std::string("/tmp/onvif_error")}) cam.remove(f);
    cam.run({"-u", "4"});
    std::string line, values;
    for (int i = 0; c.on && i < 5; ++i)
      line += names[i] + std::string("_backchannel=") + (c.on[i] == '1' ? "on]" : "off]");
    EXPECT_EQ(cam.lines(kCtlLog), c.on ? Lines(2, line) : Lines()) << c.layout << c.duplex;  // once per profile
    for (const std::string& l : cam.lines(L + "P2")) values += (values.empty() ? "" : " ") + l.substr(l.find('=') + 1);
    EXPECT_EQ(values, c.profile) << c.brand;
    EXPECT_TRUE(testkit::hasLine(cam.lines(P + "AudioOutput1.conf"), "UseCount=" + std::to_string(c.uses)));
    EXPECT_TRUE(testkit::hasLine(cam.lines(P + "AudioDecoder1.ADecoder"), "UseCount=" + std::to_string(c.uses)));
    EXPECT_EQ(cam.slot(Slot::RECORD_AUDIO), c.record);
    EXPECT_EQ(cam.errorLog(), Lines({"ONVIF SYNC:Update_Audio_Source: /tmp/onvif/Gone missing",
                                     "Update_Audio_Source: /tmp/onvif/Gone missing"}));
  }
}

TEST(Audio, StreamServerSwitchesBindTheAudioEncoder) {
  const std::string conf = "/home/ostrin2/StreamingServer/StreamServer.conf";
  Camera cam;
  cam.startServer({{Slot::ONVIF_DEVICE, 6}, {Slot::ONVIF_BRAND, 40}});
  cam.write(conf, "h264_1_audio_enable=on\nh264_2_audio_enable=off\njpeg_1_audio_enable=on\n");
  cam.write(L + "Profiles.conf",
            "profile filename=A\nprofile filename=B\nprofile filename=C\nprofile filename=D\nprofile filename=E\n");
  for (auto [p, text] : {std::pair{"A", "VideoEncoder=VideoEncoder1\nAudioEncoder=x\n"},  // H.264, on
                         {"B", "VideoEncoder=VideoEncoder2\nAudioEncoder=x\n"},           // H.264, off
                         {"C", "AudioEncoder=x\nVideoEncoder=VideoEncoder4\n"},           // judged by B's encoder
                         {"D", "VideoEncoder=VideoEncoder4\nAudioEncoder=x\n"},           // JPEG, on
                         {"E", "VideoEncoder=Gone\nAudioEncoder=x\n"}})                   // codec kept from D
    cam.write(L + p, text);
  cam.run({"-u", "4"});
  std::string bound;
  for (const char* p : {"A", "B", "C", "D", "E"})
    bound += testkit::hasLine(cam.lines(L + p), "AudioEncoder=AudioEncoder1") ? "1" : "0";
  EXPECT_EQ(bound, "10011");
  EXPECT_EQ(cam.errorLog(), Lines{"check_codec: /tmp/onvif/Gone.VEncoder missing"});

  for (const std::string& path : {conf, L + "Profiles.conf", P + "AudioEncoder.conf", std::string("/tmp/onvif_error")})
    cam.remove(path);
  cam.run({"-u", "4"});
  EXPECT_EQ(cam.errorLog(), Lines({"ONVIF SYNC:Update_Audio_Source:/usr/apache/htdocs/onvif/AudioEncoder.conf missing",
                                   "ONVIF SYNC:Update_Audio_Source: /tmp/onvif/Profiles.conf missing",
                                   "Sync_AudioEncoder_By_StreamServer: " + conf + " missing",
                                   "Sync_AudioEncoder_By_StreamServer: /tmp/onvif/Profiles.conf missing",
                                   "ONVIF SYNC:Update_Audio_Source: /tmp/onvif/Profiles.conf missing"}));
}

}  // namespace
