// Video encoder sync through the real binary: stream layout (-u 2), frame
// rates (-u 5, -u 6), H.264 profiles (-u 15), encoding priority (-u 19), and
// what a missing file does to each video command.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;
using testkit::Camera;
using testkit::record;

namespace {

const std::string kApp = "/etc/sysconfig/image_appearance.conf";
const std::string kResolution = "root.Image.I0.Appearance.Resolution";

std::string encoderPath(int k) {
  return "/tmp/onvif/VideoEncoder" + std::to_string(k) + ".VEncoder";
}

// Replaces the value of the line that starts with key + "=".
void setKey(const Camera& cam, const std::string& path, const std::string& key,
            const std::string& value) {
  std::string text;
  for (const std::string& l : cam.lines(path))
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

TEST(VideoAppearance, MultiStreamLayouts) {
  const struct {
    const char* resolution;
    int videoType;
  } cases[] = {
      {"disable,1080p,720p,disable,disable", 0}, {"720p,1080p,disable,disable,disable", 0},
      {"disable,1080p,disable,720p,disable", 0}, {"disable,1080p,720p,640x360,disable", 0},
      {"disable,1080p,720p,640x360,640x360", 0}, {"720p,1080p,720p,disable,disable", 0},
      {"720p,1080p,720p,640x360,disable", 0},    {"qcif,disable,disable,disable,disable", 1},
      {"disable,d1,disable,disable,disable", 19}};
  std::string text;
  for (const auto& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, 6},
                     {Slot::ONVIF_VIDEO_TYPE, c.videoType},
                     {Slot::ONVIF_MULTIPLE_STREAM, 4},
                     {Slot::ONVIF_CH1_RESOLUTION, 77},
                     {Slot::ONVIF_CH2_RESOLUTION, 77},
                     {Slot::ONVIF_CH3_RESOLUTION, 77},
                     {Slot::ONVIF_CH4_RESOLUTION, 77}});
    setKey(cam, kApp, kResolution, c.resolution);
    scramble(cam);
    addTwoKeyLine(cam);
    text += record(
        cam, {std::string(c.resolution) + ", video type " + std::to_string(c.videoType), "-u 2"});
  }
  testkit::expectGolden(text);
}

// Layout codes that other parts of the firmware set: the codec table, the
// JPEG qualities (the second JPEG stream has its own factor) and the binding
// of the profiles.
TEST(VideoAppearance, LayoutCodesSetElsewhere) {
  const int cases[][2] = {{9, 28}, {10, 0}, {11, 28}, {13, 0}, {7, 28}, {20, 0}};  // layout, brand
  std::string text;
  for (const auto& [layout, brand] : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, 6},
                     {Slot::ONVIF_BRAND, brand},
                     {Slot::ONVIF_MULTIPLE_STREAM, layout}});
    setKey(cam, kApp, kResolution, "disable,disable,disable,disable,disable");
    setKey(cam, kApp, "root.Image.I0.Appearance.Mjpeg_2Qfactor", "70");
    scramble(cam);
    text += record(
        cam, {"Layout " + std::to_string(layout) + ", brand " + std::to_string(brand), "-u 2"});
  }
  testkit::expectGolden(text);
}

// Without the multi-stream flag each record keeps its codec; an H.264 record
// on channel 2 is passed again with stream 2 (keeping the first pass's size
// when it is off). The legacy indices start at 99.
TEST(VideoAppearance, PerCodecAndTwoEncoderPaths) {
  const struct {
    int device, brand, videoType;
    const char* resolution;
  } cases[] = {{1, 0, 1, "d1,720p,cif"},
               {1, 0, 0, "d1,720p,disable"},
               {2, 0, 0, "vga,qcif,720p,4cif"},
               {1, 12, 0, "720p,1080p,disable"},
               {7, 0, 0, "disable,disable,vga"}};
  std::string text;
  for (const auto& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, c.device},
                     {Slot::ONVIF_BRAND, c.brand},
                     {Slot::ONVIF_VIDEO_TYPE, c.videoType},
                     {Slot::ONVIF_RESOLUTION_MPEG4, 99},
                     {Slot::ONVIF_RESOLUTION_JPEG, 99},
                     {Slot::ONVIF_RESOLUTION_H264, 99},
                     {Slot::ONVIF_RESOLUTION_H264_2, 99}});
    setKey(cam, kApp, kResolution, c.resolution);
    if (c.device == 2) setKey(cam, encoderPath(3), "Encoding", "MPEG4");
    addTwoKeyLine(cam);
    text +=
        record(cam, {"Device " + std::to_string(c.device) + ", brand " + std::to_string(c.brand) +
                         ", video type " + std::to_string(c.videoType) + ", " + c.resolution,
                     "-u 2"});
  }
  testkit::expectGolden(text);
}

// A missing file is one error-log line; a missing list or record ends an
// encoder walk before VideoEncoder3, and a missing record leaves the
// routine's stale temporary file empty.
TEST(VideoSync, MissingFiles) {
  const std::string d = "/usr/apache/htdocs/onvif/", t = "/tmp/onvif/";
  const std::string second = t + "VideoEncoder2.VEncoder", list = d + "VideoEncoder.conf";
  const struct {
    int device, brand;
    const char* command;
    std::string path;
    std::optional<std::string> text = std::nullopt;  // the file's text instead, if any
  } cases[] = {{6, 0, "-u 2", kApp},
               {6, 0, "-u 2", list},
               {6, 0, "-u 2", second},
               {1, 0, "-u 2", second},
               {1, 12, "-u 2", t + "VideoEncoder1.VEncoder"},
               {1, 12, "-u 2", list},
               {6, 0, "-u 2", t + "Profiles.conf"},
               {6, 0, "-u 2", t + "Profiles.conf",
                "profile filename=Profile9.profile\nprofile filename=Profile1.profile\n"
                "profile filename=Profile2.profile\n"},
               {6, 0, "-u 5", "/etc/sysconfig/framerate.conf"},
               {6, 0, "-u 5", second},
               {1, 0, "-u 5", second},
               {1, 0, "-u 6", list},
               {6, 0, "-u 15", kApp},
               {6, 0, "-u 15", second},
               {6, 0, "-u 19", kApp},
               {6, 0, "-u 19", second},
               {6, 0, "-u 13", "/tmp/options.conf"},
               {6, 0, "-u 13", d + "H264_2.VEOption"},
               {6, 0, "-u 3", "/etc/sysconfig/image_source.conf"},
               {6, 0, "-u 3", "/etc/sysconfig/ir.conf"},
               {6, 0, "-u 3", t + "VideoSource1.VSource"},
               {6, 0, "-u 3", d + "VideoSource.conf"},
               {6, 0, "-u 7", t + "VideoSource1.VSConf"},
               {6, 0, "-u 7", kApp},
               {6, 0, "-u 10", "/etc/sysconfig/image_source.conf"}};
  std::string text;
  for (const auto& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, c.device},
                     {Slot::ONVIF_BRAND, c.brand},
                     {Slot::ONVIF_MULTIPLE_STREAM, 8}});
    setKey(cam, kApp, kResolution, "disable,1080p,720p,disable,disable");
    cam.write("/tmp/onvif/tmp/WS_Update_Imapge_Appearance", "stale\n");
    cam.write("/tmp/onvif/tmp/WS_Update_framerate", "stale\n");
    text +=
        record(cam, {"Device " + std::to_string(c.device) + ", brand " + std::to_string(c.brand) +
                         (c.text ? ", another " : ", without ") + c.path,
                     c.command,
                     {},
                     {{c.path, c.text}}});
  }
  testkit::expectGolden(text);
}

TEST(VideoFrameRate, ByLayoutCodeOrByCodec) {
  const struct {
    int device, layout;
    const char* command;
  } cases[] = {{6, 3, "-u 5"}, {6, 8, "-u 5"}, {6, 9, "-u 5"}, {6, 7, "-u 5"},
               {6, 4, "-u 5"}, {1, 8, "-u 5"}, {6, 8, "-u 6"}, {2, 0, "-u 6"}};
  std::string text;
  for (const auto& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, c.device}, {Slot::ONVIF_MULTIPLE_STREAM, c.layout}});
    const bool skip = c.command[3] == '6';
    setKey(cam, encoderPath(3), skip ? "Encoding" : "Channel", skip ? "MPEG4" : "4");
    text +=
        record(cam, {"Device " + std::to_string(c.device) + ", layout " + std::to_string(c.layout),
                     c.command,
                     {},
                     {{"/etc/sysconfig/framerate.conf",
                       "root.Framerate.Mjpeg=11\nroot.Framerate.H264=25\nroot.Framerate.H264_2=20\n"
                       "root.Framerate.H264_3=14\nroot.Framerate.H264_4=12\n"},
                      {"/etc/sysconfig/frameskip.conf",
                       "root.Frameskip.Mjpeg=2\nroot.Frameskip.H264=\nroot.Frameskip.H264_2=1\n"
                       "root.Frameskip.Mpeg4=7\n"}}});
  }
  testkit::expectGolden(text);
}

// -u 15 writes the profile of the H.264 streams the layout places; -u 19
// zeroes the quality of H.264 and H.265 records after their codec line.
TEST(VideoProfiles, H264ProfileAndEncodingPriority) {
  Camera cam;
  cam.startServer();
  cam.write(
      kApp,
      "root.Image.I0.Appearance.H264Profile=baseline\nroot.Image.I0.Appearance.H264_2Profile=high\n"
      "root.Image.I0.Appearance.H264_3Profile=High\n"
      "root.Image.I0.Appearance.H264_4Profile=baseline\n");
  std::string text;
  for (int layout : {3, 6, 7, 8, 10}) {
    scramble(cam);
    text += record(
        cam,
        {"Layout " + std::to_string(layout), "-u 15", {{Slot::ONVIF_MULTIPLE_STREAM, layout}}});
  }
  setKey(cam, encoderPath(2), "Encoding", "H265");
  text += record(cam, {"Encoding priority",
                       "-u 19",
                       {},
                       {{encoderPath(3), "Quality=60\nEncoding=H264\nQuality=70\n"}}});
  testkit::expectGolden(text);
}

}  // namespace
