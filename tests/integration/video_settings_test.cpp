// Imaging (-u 3), rotation and flip (-u 7, -u 10) and the encoder's option
// ranges (-u 13) through the real binary.
#include <gtest/gtest.h>

#include <sstream>

#include "transcript.h"

using shm::Slot;
using testkit::Camera;
using testkit::record;

namespace {

const std::string kApp = "/etc/sysconfig/image_appearance.conf";

// The sensor file read by -u 3 (imaging) and -u 10 (PTZ image flip), per
// device type; the marker is the value of the imaging slots before the run.
TEST(VideoImaging, ScalesModesAndSlotsPerDeviceType) {
  const struct {
    int device, io, brand, marker;
    const char* settings;  // sensor keys, blank-separated
    const char* ir;
  } cases[] = {
      {1, 1, 0, 0,
       "WhiteBalance=manual WhiteBalance.Rgain=255 WhiteBalance.Bgain=127 Backlight=on "
       "Brightness=128 Sharpness=15 Contrast=255 ColorLevel=0 Wdr=3 ICR=on Exposure=manual "
       "Exposure.ManualPreset.AGCGain=50 Flip=Image",
       "root.IR.Mode=lightoff\n"},
      {2, 3, 0, 0,
       "WhiteBalance=manual25 WhiteBalance.Rgain=255 Backlight=off Brightness=63 Sharpness=8 "
       "Contrast=128 ColorLevel=255 Wdr=on ICR=off Exposure=auto Exposure.ManualPreset.AGCGain=0 "
       "Flip=image",
       "root.IR.Mode=auto\n"},
      {4, 3, 42, 0,
       "Flip=Image WhiteBalance=ATW Backlight=dim Brightness=10 Sharpness=8 Contrast=10 "
       "ColorLevel=10 Wdr=3 ICR=smart Exposure=shutter Exposure.ManualPreset.AGCGain=10 Flip=None",
       ""},
      {1, 2, 0, -1,
       "WhiteBalance=manual WhiteBalance.Rgain=255 Brightness=10 ICR=off Exposure=manualpreset "
       "Exposure.ManualPreset.AGCGain=50 Wdr=7",
       "root.IR.Mode=on\n"}};
  std::string text;
  for (const auto& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEVICE, c.device},
                     {Slot::ONVIF_IO_TYPE, c.io},
                     {Slot::ONVIF_BRAND, c.brand},
                     {Slot::IMAGE_EXPOSURE_GAIN_MAX, 200},
                     {Slot::IMAGE_EXPOSURE_MODE, c.marker},
                     {Slot::IMAGE_BRIGHTNESS, c.marker},
                     {Slot::IMAGE_SHARPNESS, c.marker},
                     {Slot::IMAGE_CONTRAST, c.marker},
                     {Slot::IMAGE_COLORLEVEL, c.marker},
                     {Slot::ONVIF_IMAGE_FLIP, 5}});
    std::istringstream settings(c.settings);
    std::string sensor;
    for (std::string word; settings >> word;) sensor += "root.ImageSource.I0.Sensor." + word + "\n";
    const std::string title = "Device " + std::to_string(c.device) + ", I/O type " +
                              std::to_string(c.io) + ", brand " + std::to_string(c.brand);
    text += record(
        cam, {title,
              "-u 3",
              {},
              {{"/etc/sysconfig/image_source.conf", sensor}, {"/etc/sysconfig/ir.conf", c.ir}}});
    text += record(cam, {"The flip is \"Image\" exactly, on the first Flip line", "-u 10"});
  }
  testkit::expectGolden(text);
}

TEST(VideoOrientation, RotationTable) {
  Camera cam;
  cam.startServer();
  std::vector<testkit::Step> steps;
  for (const char* word : {"clockwise", "0", "rotate", "flip", "mirror", "counterclockwise",
                           "clockwise_mirror", "clockwise_flip", "upside_down"}) {
    steps.push_back({std::string("Rotation ") + word,
                     "-u 7",
                     {},
                     {{kApp, std::string("root.Image.I0.Appearance.Rotation=") + word + "\n"}}});
  }
  steps.push_back({"Without the web file the slot's code is shown",
                   "-u 7",
                   {{Slot::ONVIF_ROTATE_MODE, 5}},
                   {{kApp, {}}}});
  testkit::expectGolden(testkit::transcript(cam, steps));
}

// options.conf with a resolution list, a frame-rate ceiling and, per H.264
// stream, a bitrate ceiling and a key-frame ceiling of a tenth of it.
std::string options(const std::string& list, int fps) {
  std::string out = list.empty() ? "" : "root.Image.I0.Appearance.Resolution=" + list + "\n";
  out += "root.Framerate.H264=1-" + std::to_string(fps) + "\n";
  const std::pair<const char*, int> streams[] = {
      {"", 6000}, {"_2", 3000}, {"_3", 900}, {"_4", 500}};
  for (auto [s, b] : streams)
    out += std::string("root.Image.I0.Appearance.H264") + s + "Bitrate=64-" + std::to_string(b) +
           "\nroot.Image.I0.Appearance.H264" + s + "VideoKeyFrameInterval=2-" +
           std::to_string(b / 10) + "\n";
  return out;
}

// JPEG keeps its bitrate; brand 30 keeps the third and fourth streams'.
TEST(VideoLimits, AvailableResolutionsAndChannelFiles) {
  const std::pair<int, const char*> cases[] = {
      {9, "720p,1080p,disable&vga,d1,disable"},
      {30,
       "1080p,1080p,disable,disable,disable&disable,720p,1080p,disable,disable&"
       "720p,720p,720p,disable,disable"},
      {0,
       "vga,disable,disable,disable,disable&cif,vga,disable,disable,disable&a&"
       "vga,cif,vga,cif,disable"}};
  std::string text;
  for (auto [brand, list] : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_BRAND, brand}});
    text += record(cam, {"Brand " + std::to_string(brand) + ": " + list,
                         "-u 13",
                         {},
                         {{"/tmp/options.conf", options(list, 25)}}});
  }
  testkit::expectGolden(text);
}

TEST(VideoLimits, NothingToSync) {
  Camera cam;
  cam.startServer();
  testkit::expectGolden(testkit::transcript(
      cam, {{"No resolution list and no frame rate",
             "-u 13",
             {},
             {{"/tmp/options.conf", options("", 0)}}},
            {"The list cannot be written where a folder is",
             "-u 13",
             {},
             {{"/tmp/options.conf", options("720p,disable,disable,disable,disable", 30)},
              {"/tmp/onvif/available_resolution/blocked", ""}}}}));
}

}  // namespace
