// Audio sync (-u 4): the bit-rate table on the legacy and current paths, the
// profiles, the back channel told to the streaming server, the use counts,
// the streaming server's audio switches (brand 40) and the error-log texts.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include "camera.h"

using shm::Slot;
using testkit::Camera;

namespace {

const std::string kLive = "/tmp/onvif/";
const std::string kPersist = "/usr/apache/htdocs/onvif/";
const char* const kSource = "/etc/sysconfig/audio_source.conf";
const char* const kStreamLog = "/home/ostrin2/StreamingServer/streamctl.log";

void webBitRate(const Camera& cam, const std::string& token) {
  cam.write(kSource, "root.AudioSource.A0.BitRate=" + token + "\nroot.AudioSource.A0.OutputGain=77\n");
}

// The streaming server's control program, recording each argument in [].
void recordStreamctl(const Camera& cam) {
  const char* path = "/home/ostrin2/StreamingServer/streamctl";
  cam.write(path, "#!/bin/sh\nfor a in \"$@\"; do printf '[%s]' \"$a\"; done >> \"$(dirname \"$0\")/streamctl.log\"\n"
                  "echo >> \"$(dirname \"$0\")/streamctl.log\"\n");
  chmod(cam.host(path).c_str(), 0755);
}

TEST(Audio, BitRateTableOnBothPaths) {
  struct Case {
    const char* token;
    const char* family;  // the legacy record's codec
    const char* encoding;
    const char* rate;
    int code;            // 0: the slots are left alone
    bool legacyMatches;  // the token belongs to the legacy record's codec
  } cases[] = {
      {"16000", "G726", "G726", "16", 1, true},   {"024000x", "G726", "G726", "24", 2, true},
      {"32000", "G726", "G726", "32", 3, true},   {"40000", "G711", "G726", "40", 4, false},
      {"ulaw", "G711", "G711", "64", 5, true},    {"alaw", "G711", "G711", "80", 6, true},
      {"alaw", "G726", "G711", "80", 6, false},   {"aac_128000", "G711", "AAC", "9", 0, false},
      {"ULAW", "G711", "G711", "9", 0, false},
  };
  Camera cam;
  cam.startServer({{Slot::ONVIF_DEVICE, 6}});
  cam.write(kPersist + "AudioEncoder.conf", "AudioEncoder1.AEncoder\n");
  for (const Case& c : cases) {
    webBitRate(cam, c.token);
    for (int legacy : {0, 1}) {
      cam.setSlot(Slot::ONVIF_DEVICE, legacy ? 0 : 6);
      cam.setSlot(Slot::ONVIF_AUDIO, 99);
      cam.setSlot(Slot::ONVIF_CHANGE_AUDIO, 99);
      cam.write(kLive + "AudioEncoder1.AEncoder", std::string("Bitrate=1\nEncoding=") + c.family + "\nBitrate=9\nN=%s\n");
      cam.run({"-u", "4"});
      // Legacy: the bit rate before any codec line is dropped and the codec is kept.
      bool changed = legacy ? c.legacyMatches : c.code != 0;
      std::string rate = std::string("Bitrate=") + (changed ? c.rate : "9");
      std::string expect = legacy ? std::string("Encoding=") + c.family + "\n" + rate
                                  : (changed ? rate : "Bitrate=1") + "\nEncoding=" + c.encoding + "\n" + rate;
      EXPECT_EQ(cam.read(kLive + "AudioEncoder1.AEncoder"), expect + "\nN=(null)\n") << c.token << " legacy " << legacy;
      EXPECT_EQ(cam.slot(Slot::ONVIF_AUDIO), changed ? c.code : 99) << c.token << " legacy " << legacy;
      EXPECT_EQ(cam.slot(Slot::ONVIF_CHANGE_AUDIO), changed ? c.code : 99);
    }
  }
  EXPECT_TRUE(cam.errorLog().empty());
}

TEST(Audio, LegacyMarksCarryOverAndOnlyTheOutputLevelFollows) {
  Camera cam;
  cam.startServer({{Slot::RECORD_AUDIO, 7}});
  recordStreamctl(cam);
  webBitRate(cam, "ulaw");
  cam.write(kPersist + "AudioEncoder.conf", "AudioEncoder1.AEncoder\nAudioEncoder2.AEncoder x\n");
  cam.write(kLive + "AudioEncoder1.AEncoder", "Encoding=G711\n");
  cam.write(kLive + "AudioEncoder2.AEncoder", "Bitrate=0\nEncoding=G726\nBitrate=5\n");
  cam.write(kPersist + "AudioOutput1.conf", "SendPrimacy=OutputLevel=1\nOutputLevel=3\nUseCount=9\n");
  std::string profile = cam.read(kLive + "Profile1.profile");
  cam.run({"-u", "4"});
  EXPECT_EQ(cam.read(kLive + "AudioEncoder2.AEncoder"), "Bitrate=64\nEncoding=G726\nBitrate=5\n");
  EXPECT_EQ(cam.slot(Slot::ONVIF_AUDIO), 5);
  EXPECT_EQ(cam.read(kPersist + "AudioOutput1.conf"), "SendPrimacy=OutputLevel=1\nOutputLevel=77\nUseCount=9\n");
  EXPECT_EQ(cam.read(kLive + "Profile1.profile"), profile);
  EXPECT_EQ(cam.slot(Slot::RECORD_AUDIO), 7);
  EXPECT_FALSE(cam.exists(kStreamLog));
}

TEST(Audio, BackChannelArgumentsPerLayout) {
  struct Case {
    int layout;
    const char* duplex;
    const char* on;  // jpeg, h264_1 to h264_4; nullptr: no command
  } cases[] = {
      {0, "full", "10000"}, {1, "full", "01000"}, {2, "full", "01100"},    {3, "full", "11000"},
      {5, "full", "01110"}, {6, "full", "11100"}, {7, "half", "01111"},    {8, "full", "11110"},
      {4, "full", nullptr}, {9, "full", nullptr}, {8, "disable", "00000"}, {4, "disable", "00000"},
  };
  Camera cam("/tmp/onvifctrl audio $HOME-");  // the program's path needs quoting
  cam.startServer({{Slot::ONVIF_DEVICE, 6}});
  recordStreamctl(cam);
  const char* names[] = {"[jpeg][jpeg", "[h264][h264_1", "[h264][h264_2", "[h264][h264_3", "[h264][h264_4"};
  for (const Case& c : cases) {
    cam.setSlot(Slot::ONVIF_MULTIPLE_STREAM, c.layout);
    cam.write("/etc/sysconfig/audio.conf", std::string("root.Audio.DuplexMode=") + c.duplex + "\n");
    cam.remove(kStreamLog);
    cam.run({"-u", "4"});
    std::vector<std::string> expect;
    if (c.on != nullptr) {
      std::string line;
      for (int i = 0; i < 5; ++i) line += std::string(names[i]) + "_backchannel=" + (c.on[i] == '1' ? "on]" : "off]");
      expect.assign(4, line);  // once per profile
    }
    EXPECT_EQ(cam.lines(kStreamLog), expect) << c.layout << " " << c.duplex;
  }
}

TEST(Audio, ProfilesUseCountsAndRecording) {
  struct Case {
    int brand, region;
    const char* duplex;
    const char* storage;  // nullptr: no key
    const char* profile;  // the profile afterwards
    int uses;
    int record;
  } cases[] = {
      {0, 0, "full", "enable", "AudioSource=x\nAudioEncoder=x\nAudioOutput=AudioOutput1\nAudioDecoder=AudioDecoder1\n", 2, 1},
      {34, 0, "full", nullptr,
       "AudioSource=AudioSource1\nAudioEncoder=AudioEncoder1\nAudioOutput=AudioOutput1\nAudioDecoder=AudioDecoder1\n", 2, 1},
      {44, 7, "disable", "disabled",
       "AudioSource=NONE\nAudioEncoder=NONE\nAudioOutput=NONE\nAudioDecoder=NONE\n", 0, 0},
      {44, 6, "disable", "disable", "AudioSource=x\nAudioEncoder=x\nAudioOutput=NONE\nAudioDecoder=NONE\n", 0, 0},
  };
  Camera cam;
  cam.startServer({{Slot::ONVIF_DEVICE, 6}});
  for (const Case& c : cases) {
    cam.setSlot(Slot::ONVIF_BRAND, c.brand);
    cam.setSlot(Slot::BRAND_REGION, c.region);
    cam.write("/etc/sysconfig/audio.conf", std::string("root.Audio.DuplexMode=") + c.duplex + "\n" +
                                               (c.storage ? std::string("root.Audio.StorageRecording=") + c.storage : ""));
    cam.write(kLive + "Profiles.conf", "profile filename=P1\nprofile filename=Gone\nprofile filename=P2\n");
    for (const char* p : {"P1", "P2"})
      cam.write(kLive + p, "AudioSource=x\nAudioEncoder=x\nAudioOutput=x\nAudioDecoder=x\n");
    cam.remove("/tmp/onvif_error");
    cam.run({"-u", "4"});
    EXPECT_EQ(cam.read(kLive + "P2"), c.profile) << c.brand;
    EXPECT_EQ(cam.read(kPersist + "AudioOutput1.conf"),
              "Name=AudioOutput1\ntoken=AudioOutput1\nUseCount=" + std::to_string(c.uses) +
                  "\nOutputToken=AudioOutput1\nSendPrimacy=www.onvif.org/ver20/HalfDuplex/Auto\nOutputLevel=50\n");
    EXPECT_EQ(cam.read(kPersist + "AudioDecoder1.ADecoder"),
              "Name=AudioDecoder1\ntoken=AudioDecoder1\nUseCount=" + std::to_string(c.uses) + "\n");
    EXPECT_EQ(cam.slot(Slot::RECORD_AUDIO), c.record);
    EXPECT_EQ(cam.errorLog(), (std::vector<std::string>{"ONVIF SYNC:Update_Audio_Source: /tmp/onvif/Gone missing",
                                                        "Update_Audio_Source: /tmp/onvif/Gone missing"}));
  }
}

TEST(Audio, StreamServerSwitchesBindTheAudioEncoder) {
  Camera cam;
  cam.startServer({{Slot::ONVIF_DEVICE, 6}, {Slot::ONVIF_BRAND, 40}});
  cam.write("/home/ostrin2/StreamingServer/StreamServer.conf",
            "h264_1_audio_enable=on\nh264_2_audio_enable=off\njpeg_1_audio_enable=on\n");
  cam.write(kLive + "Profiles.conf", "profile filename=A\nprofile filename=B\nprofile filename=C\n"
                                     "profile filename=D\nprofile filename=E\n");
  cam.write(kLive + "A", "VideoEncoder=VideoEncoder1\nAudioEncoder=x\n");                   // H264, on
  cam.write(kLive + "B", "VideoEncoder=VideoEncoder2\nAudioEncoder=x\n");                   // H264, off
  cam.write(kLive + "C", "AudioEncoder=x\nVideoEncoder=VideoEncoder4\n");                   // judged by B
  cam.write(kLive + "D", "VideoEncoder=VideoEncoder4\nAudioEncoder=x\n");                   // JPEG, on
  cam.write(kLive + "E", "VideoEncoder=Gone\nAudioEncoder=x\n");                            // codec kept: JPEG
  cam.run({"-u", "4"});
  const char* expect[] = {"AudioEncoder1", "NONE", "NONE", "AudioEncoder1", "AudioEncoder1"};
  const char* names[] = {"A", "B", "C", "D", "E"};
  for (int i = 0; i < 5; ++i)
    EXPECT_TRUE(testkit::hasLine(cam.lines(kLive + names[i]), std::string("AudioEncoder=") + expect[i])) << names[i];
  EXPECT_EQ(cam.errorLog(), std::vector<std::string>{"check_codec: /tmp/onvif/Gone.VEncoder missing"});

  cam.remove("/home/ostrin2/StreamingServer/StreamServer.conf");
  cam.remove(kLive + "Profiles.conf");
  cam.remove("/tmp/onvif_error");
  cam.run({"-u", "4"});
  EXPECT_EQ(cam.errorLog(),
            (std::vector<std::string>{
                "ONVIF SYNC:Update_Audio_Source: /tmp/onvif/Profiles.conf missing",
                "Sync_AudioEncoder_By_StreamServer: /home/ostrin2/StreamingServer/StreamServer.conf missing",
                "Sync_AudioEncoder_By_StreamServer: /tmp/onvif/Profiles.conf missing",
                "ONVIF SYNC:Update_Audio_Source: /tmp/onvif/Profiles.conf missing"}));
}

TEST(Audio, MissingFilesAreLoggedInOrder) {
  struct Case {
    int device;
    std::vector<std::string> removed;
    std::vector<std::string> log;
  } cases[] = {
      {6,
       {kPersist + "AudioEncoder.conf", "/etc/sysconfig/audio.conf", kPersist + "AudioOutput.conf",
        kPersist + "AudioDecoder.conf", kLive + "AudioEncoder1.AEncoder"},
       {"ONVIF SYNC:Update_Audio_Source:/usr/apache/htdocs/onvif/AudioEncoder.conf missing",
        "ONVIF SYNC:Update_Audio_Source: /etc/sysconfig/audio.conf missing",
        "ONVIF SYNC:Update_Audio_Source: /usr/apache/htdocs/onvif/AudioOutput.conf missing",
        "ONVIF SYNC:Update_Audio_Source: /usr/apache/htdocs/onvif/AudioDecoder.conf missing"}},
      {6, {kSource, kPersist + "AudioEncoder.conf"}, {"ONVIF SYNC:Update_Audio_Source: " + std::string(kSource) + " missing"}},
      {0,
       {kPersist + "AudioEncoder.conf", kPersist + "AudioOutput1.conf"},
       {"ONVIF SYNC:Update_Audio_Source: /usr/apache/htdocs/onvif/AudioEncoder.conf missing",
        "ONVIF SYNC:Update_Audio_Source: /usr/apache/htdocs/onvif/AudioOutput1.conf missing"}},
      {0, {kLive + "AudioEncoder2.AEncoder"}, {"ONVIF SYNC:Update_Audio_Source: /tmp/onvif/AudioEncoder2.AEncoder missing"}},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, c.device}});
    for (const std::string& path : c.removed) cam.remove(path);
    cam.run({"-u", "4"});
    EXPECT_EQ(cam.errorLog(), c.log);
  }
}

}  // namespace
