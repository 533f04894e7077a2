// Video encoder sync through the real binary: stream layout (-u 2), frame
// rates (-u 5, -u 6), H.264 profiles (-u 15), encoding priority (-u 19), and
// what a missing file does to each video command.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <tuple>

#include "transcript.h"

using shm::Slot;
using testkit::Camera;
using testkit::format;

namespace {

const std::string kApp = "/etc/sysconfig/image_appearance.conf";
const std::string kResolution = "root.Image.I0.Appearance.Resolution";
const Slot kLayout = Slot::ONVIF_MULTIPLE_STREAM;

std::string encoderPath(int k) { return format("/tmp/onvif/VideoEncoder%d.VEncoder", k); }

// Replaces the value of the line that starts with key + "=".
void setKey(const Camera& cam, const std::string& path, const std::string& key,
            const std::string& value) {
  std::string text;
  for (const std::string& l : testkit::splitLines(cam.read(path)))
    text += (l.rfind(key + "=", 0) == 0 ? key + "=" + value : l) + "\n";
  cam.write(path, text);
}

// Gives the stream lines of every record values no run writes, so that a
// written line shows in the transcript even when it writes the sample's value.
void scramble(const Camera& cam) {
  const char* const lines[][2] = {{"Encoding", "MPEG4"},      {"Resolution width", "1"},
                                  {"Resolution height", "1"}, {"Quality", "1"},
                                  {"BitrateLimit", "1"},      {"GovLength", "1"},
                                  {"H264Profile", "X"}};
  for (int k = 1; k <= 4; ++k)
    for (const auto& l : lines) setKey(cam, encoderPath(k), l[0], l[1]);
}

// A line with two keys is decided by the first key of the routine's order it
// holds, also when that key keeps it.
void addTwoKeyLine(const Camera& cam) {
  cam.write(encoderPath(1), "Quality=3 BitrateLimit=4\n" + cam.read(encoderPath(1)));
}

// The channel slots start at 77 and the layout at 4.
TEST(VideoAppearance, MultiStreamLayouts) {
  const std::pair<const char*, int> cases[] = {
      // the resolutions, the video type
      {"disable,1080p,720p,disable,disable", 0}, {"720p,1080p,disable,disable,disable", 0},
      {"disable,1080p,disable,720p,disable", 0}, {"disable,1080p,720p,640x360,disable", 0},
      {"disable,1080p,720p,640x360,640x360", 0}, {"720p,1080p,720p,disable,disable", 0},
      {"720p,1080p,720p,640x360,disable", 0},    {"qcif,disable,disable,disable,disable", 1},
      {"disable,d1,disable,disable,disable", 19}};
  testkit::Transcript t;
  for (auto [resolution, videoType] : cases) {
    Camera cam({{Slot::ONVIF_DEVICE, 6}, {kLayout, 4}});
    setKey(cam, kApp, kResolution, resolution);
    scramble(cam);
    addTwoKeyLine(cam);
    t.on(cam).run(format("%s, video type %d", resolution, videoType), "-u 2",
                  {{Slot::ONVIF_VIDEO_TYPE, videoType},
                   {Slot::ONVIF_CH1_RESOLUTION, 77},
                   {Slot::ONVIF_CH2_RESOLUTION, 77},
                   {Slot::ONVIF_CH3_RESOLUTION, 77},
                   {Slot::ONVIF_CH4_RESOLUTION, 77}});
  }
  t.expectGolden();
}

// Layout codes that other parts of the firmware set: the codec table, the
// JPEG qualities (the second JPEG stream has its own factor) and the binding
// of the profiles.
TEST(VideoAppearance, LayoutCodesSetElsewhere) {
  const int cases[][2] = {{9, 28}, {10, 0}, {11, 28}, {13, 0}, {7, 28}, {20, 0}};  // layout, brand
  testkit::Transcript t;
  for (const auto& [layout, brand] : cases) {
    Camera cam({{Slot::ONVIF_DEVICE, 6}});
    setKey(cam, kApp, kResolution, "disable,disable,disable,disable,disable");
    setKey(cam, kApp, "root.Image.I0.Appearance.Mjpeg_2Qfactor", "70");
    scramble(cam);
    t.on(cam).run(format("Layout %d, brand %d", layout, brand), "-u 2",
                  {{Slot::ONVIF_BRAND, brand}, {kLayout, layout}});
  }
  t.expectGolden();
}

// Without the multi-stream flag each record keeps its codec; an H.264 record
// on channel 2 is passed again with stream 2 (keeping the first pass's size
// when it is off). The legacy indices start at 99.
TEST(VideoAppearance, PerCodecAndTwoEncoderPaths) {
  const std::pair<const char*, std::array<int, 3>> cases[] = {// device, brand, video type
                                                              {"d1,720p,cif", {1, 0, 1}},
                                                              {"d1,720p,disable", {1, 0, 0}},
                                                              {"vga,qcif,720p,4cif", {2, 0, 0}},
                                                              {"720p,1080p,disable", {1, 12, 0}},
                                                              {"disable,disable,vga", {7, 0, 0}}};
  testkit::Transcript t;
  for (const auto& [resolution, c] : cases) {
    Camera cam({{Slot::ONVIF_RESOLUTION_MPEG4, 99},
                {Slot::ONVIF_RESOLUTION_JPEG, 99},
                {Slot::ONVIF_RESOLUTION_H264, 99},
                {Slot::ONVIF_RESOLUTION_H264_2, 99}});
    setKey(cam, kApp, kResolution, resolution);
    if (c[0] == 2) setKey(cam, encoderPath(3), "Encoding", "MPEG4");
    addTwoKeyLine(cam);
    t.on(cam).run(
        format("Device %d, brand %d, video type %d, %s", c[0], c[1], c[2], resolution), "-u 2",
        {{Slot::ONVIF_DEVICE, c[0]}, {Slot::ONVIF_BRAND, c[1]}, {Slot::ONVIF_VIDEO_TYPE, c[2]}});
  }
  t.expectGolden();
}

// Two streams of layout 8; the routines' temporary files hold a stale line.
void twoStreams(const Camera& cam) {
  setKey(cam, kApp, kResolution, "disable,1080p,720p,disable,disable");
  cam.write("/tmp/onvif/tmp/WS_Update_Imapge_Appearance", "stale\n");
  cam.write("/tmp/onvif/tmp/WS_Update_framerate", "stale\n");
}

// A missing file is one error-log line; a missing list or record ends an
// encoder walk before VideoEncoder3, and a missing record leaves the
// routine's stale temporary file empty. The cases of the given commands.
void missingFiles(std::initializer_list<int> commands) {
  const std::string d = "/usr/apache/htdocs/onvif/", s = "/etc/sysconfig/", o = "/tmp/onvif/";
  const std::string first = encoderPath(1), second = encoderPath(2), list = d + "VideoEncoder.conf";
  const std::string profiles = o + "Profiles.conf", rates = s + "framerate.conf";
  const std::string options = "/tmp/options.conf", h264 = d + "H264_2.VEOption";
  const std::string source = s + "image_source.conf", ir = s + "ir.conf";
  const std::string video = o + "VideoSource1.VSource", sources = d + "VideoSource.conf";
  const std::string vsconf = o + "VideoSource1.VSConf";
  const std::tuple<int, int, int, std::string> cases[] = {
      // device, brand, -u, the missing file
      {6, 0, 2, kApp},    {6, 0, 2, list},   {6, 0, 2, second},   {1, 0, 2, second},
      {1, 12, 2, first},  {1, 12, 2, list},  {6, 0, 2, profiles}, {6, 0, 5, rates},
      {6, 0, 5, second},  {1, 0, 5, second}, {1, 0, 6, list},     {6, 0, 15, kApp},
      {6, 0, 15, second}, {6, 0, 19, kApp},  {6, 0, 19, second},  {6, 0, 13, options},
      {6, 0, 13, h264},   {6, 0, 3, source}, {6, 0, 3, ir},       {6, 0, 3, video},
      {6, 0, 3, sources}, {6, 0, 7, vsconf}, {6, 0, 7, kApp},     {6, 0, 10, source}};
  testkit::Transcript t;
  for (const auto& [device, brand, command, path] : cases) {
    if (std::find(commands.begin(), commands.end(), command) == commands.end()) continue;
    Camera cam({{Slot::ONVIF_DEVICE, device}, {Slot::ONVIF_BRAND, brand}, {kLayout, 8}});
    twoStreams(cam);
    t.on(cam).run(format("Device %d, brand %d, without %s", device, brand, path.c_str()),
                  format("-u %d", command), {}, {{path, {}}});
  }
  t.expectGolden();
}

TEST(VideoSync, MissingFilesOfTheLayout) { missingFiles({2}); }
TEST(VideoSync, MissingFilesOfTheFrameRatesAndProfiles) { missingFiles({5, 6, 15, 19}); }
TEST(VideoSync, MissingFilesOfTheLimitsAndImaging) { missingFiles({13, 3, 7, 10}); }

TEST(VideoAppearance, ProfileListNamingAMissingProfileIsCountedPast) {
  testkit::Transcript t({{Slot::ONVIF_DEVICE, 6}, {kLayout, 8}});
  twoStreams(t.cam());
  t.run("A profile list naming a missing profile", "-u 2", {},
        {{"/tmp/onvif/Profiles.conf",
          "profile filename=Profile9.profile\nprofile filename=Profile1.profile\n"
          "profile filename=Profile2.profile\n"}});
  t.expectGolden();
}

TEST(VideoFrameRate, ByLayoutCodeOrByCodec) {
  const int cases[][3] = {{6, 3, 5}, {6, 8, 5}, {6, 9, 5}, {6, 7, 5},
                          {6, 4, 5}, {1, 8, 5}, {6, 8, 6}, {2, 0, 6}};  // device, layout, -u
  testkit::Transcript t;
  for (const auto& [device, layout, command] : cases) {
    Camera cam;
    const bool skip = command == 6;
    setKey(cam, encoderPath(3), skip ? "Encoding" : "Channel", skip ? "MPEG4" : "4");
    t.on(cam).run(format("Device %d, layout %d", device, layout), format("-u %d", command),
                  {{Slot::ONVIF_DEVICE, device}, {kLayout, layout}},
                  testkit::fixture("VideoFrameRate.data"));
  }
  t.expectGolden();
}

// -u 15 writes the profile of the H.264 streams the layout places; -u 19
// zeroes the quality of H.264 and H.265 records after their codec line.
TEST(VideoProfiles, H264ProfileAndEncodingPriority) {
  const std::string a = "root.Image.I0.Appearance.";
  Camera cam;
  cam.write(kApp, a + "H264Profile=baseline\n" + a + "H264_2Profile=high\n" + a +
                      "H264_3Profile=High\n" + a + "H264_4Profile=baseline\n");
  testkit::Transcript t(cam);
  for (int layout : {3, 6, 7, 8, 10}) {
    scramble(cam);
    t.run(format("Layout %d", layout), "-u 15", {{kLayout, layout}});
  }
  setKey(cam, encoderPath(2), "Encoding", "H265");
  t.run("Encoding priority", "-u 19", {},
        {{encoderPath(3), "Quality=60\nEncoding=H264\nQuality=70\n"}});
  t.expectGolden();
}

}  // namespace
