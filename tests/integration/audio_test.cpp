// Audio sync (-u 4): the bit-rate table on the legacy and current paths, the
// back channel told to the streaming server, the profiles and use counts, the
// streaming server's audio switches (brand 40) and the error-log texts.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "transcript.h"

using shm::Slot;
using testkit::format;

namespace {

const std::string L = "/tmp/onvif/", P = "/usr/apache/htdocs/onvif/";
const std::string kServer = "/home/ostrin2/StreamingServer/";

// The legacy path drops a bit rate met before any codec line, but the codec
// mark of one record carries over to the next; it keeps the codec.
TEST(Audio, BitRateTableOnBothPaths) {
  const char* const cases[][2] = {// the token, the records' codec
                                  {"16000", "G726"}, {"024000x", "G726"},    {"32000", "G726"},
                                  {"40000", "G711"}, {"ulaw", "G711"},       {"alaw", "G711"},
                                  {"alaw", "G726"},  {"aac_128000", "G711"}, {"ULAW", "G711"}};
  testkit::Transcript t;
  t.cam().write(P + "AudioEncoder.conf", "AudioEncoder1.AEncoder\nAudioEncoder2.AEncoder x\n");
  for (const auto& [token, codec] : cases) {
    for (int legacy : {0, 1}) {
      const std::string record = format("Bitrate=9\nEncoding=%s\nN=%%s\n", codec);
      t.run(format("%s path, %s, %s", legacy ? "Legacy" : "Current", token, codec), "-u 4",
            {{Slot::ONVIF_AUDIO, 99},
             {Slot::ONVIF_CHANGE_AUDIO, 99},
             {Slot::ONVIF_DEVICE, legacy ? 0 : 6}},
            {{"/etc/sysconfig/audio_source.conf",
              format("root.AudioSource.A0.BitRate=%s\nroot.AudioSource.A0.OutputGain=77\n", token)},
             {L + "AudioEncoder1.AEncoder", record},
             {L + "AudioEncoder2.AEncoder", record}});
    }
  }
  t.expectGolden();
}

// The streaming server's control program is told the back channels once per
// profile (it records its arguments in streamctl.log); the duplex mode binds
// the audio output and decoder.
TEST(Audio, CurrentPathProfilesBackChannelAndCounts) {
  const struct {
    int layout, brand, region;
    const char *duplex, *storage;  // storage nullptr: no key
  } cases[] = {{0, 0, 0, "full", "enable"},     {1, 34, 0, "full", nullptr},
               {2, 44, 6, "full", "x"},         {3, 0, 0, "full", "x"},
               {5, 0, 0, "full", "x"},          {6, 0, 0, "full", "x"},
               {7, 0, 0, "half", "x"},          {8, 0, 0, "full", "x"},
               {4, 0, 0, "full", "x"},          {8, 44, 7, "disable", "disabled"},
               {4, 44, 6, "disable", "disable"}};
  const std::string profile = "AudioSource=x\nAudioEncoder=x\nAudioOutput=x\nAudioDecoder=x\n";
  // The control program's path needs quoting.
  testkit::Camera cam({{Slot::ONVIF_DEVICE, 6}}, "/tmp/onvifctrl audio $HOME-");
  cam.write(kServer + "streamctl",
            "#!/bin/sh\nfor a; do printf '[%s]' \"$a\"; done >> \"$0.log\"\necho >> \"$0.log\"\n");
  chmod(cam.host(kServer + "streamctl").c_str(), 0755);
  testkit::Transcript t(cam);
  for (const auto& c : cases) {
    t.run(
        format("Layout %d, brand %d, region %d, %s duplex, storage %s", c.layout, c.brand, c.region,
               c.duplex, c.storage ? c.storage : "unset"),
        "-u 4",
        {{Slot::ONVIF_MULTIPLE_STREAM, c.layout},
         {Slot::ONVIF_BRAND, c.brand},
         {Slot::BRAND_REGION, c.region}},
        {{"/etc/sysconfig/audio.conf",
          format("root.Audio.DuplexMode=%s\n", c.duplex) +
              (c.storage ? format("root.Audio.StorageRecording=%s", c.storage) : "")},
         {L + "Profiles.conf", "profile filename=P1\nprofile filename=Gone\nprofile filename=P2\n"},
         {L + "P1", profile},
         {L + "P2", profile},
         {kServer + "streamctl.log", {}},
         {"/tmp/onvif_error", {}}});
  }
  t.expectGolden();
}

// Profile C is judged by B's encoder (its audio line comes first); E's
// missing encoder keeps D's codec.
TEST(Audio, StreamServerSwitchesBindTheAudioEncoder) {
  const std::string conf = kServer + "StreamServer.conf";
  testkit::Transcript t({{Slot::ONVIF_DEVICE, 6}, {Slot::ONVIF_BRAND, 40}});
  t.run("H.264 streams 1 on and 2 off, JPEG on", "-u 4", {},
        testkit::fixture("Audio.streamserver.data"));
  t.run("Without the files", "-u 4", {},
        {{conf, {}}, {L + "Profiles.conf", {}}, {P + "AudioEncoder.conf", {}}});
  t.expectGolden();
}

}  // namespace
