// Imaging (-u 3), rotation and flip (-u 7, -u 10) and the encoder's option
// ranges (-u 13) through the real binary.
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;
using testkit::Camera;
using testkit::format;

namespace {

const std::string kApp = "/etc/sysconfig/image_appearance.conf";

// The sensor file read by -u 3 (imaging) and -u 10 (PTZ image flip) and the
// IR mode, per device type (VideoImaging.<n>.data); the marker is the value of
// the imaging slots before the run.
TEST(VideoImaging, ScalesModesAndSlotsPerDeviceType) {
  const int cases[][4] = {{1, 1, 0, 0}, {2, 3, 0, 0}, {4, 3, 42, 0}, {1, 2, 0, -1}};
  testkit::Transcript t;
  int n = 0;
  for (const auto& [device, io, brand, m] : cases) {
    Camera cam({{Slot::IMAGE_EXPOSURE_GAIN_MAX, 200}, {Slot::ONVIF_IMAGE_FLIP, 5}});
    t.on(cam).run(format("Device %d, I/O type %d, brand %d", device, io, brand), "-u 3",
                  {{Slot::ONVIF_DEVICE, device},
                   {Slot::ONVIF_IO_TYPE, io},
                   {Slot::ONVIF_BRAND, brand},
                   {Slot::IMAGE_EXPOSURE_MODE, m},
                   {Slot::IMAGE_BRIGHTNESS, m},
                   {Slot::IMAGE_SHARPNESS, m},
                   {Slot::IMAGE_CONTRAST, m},
                   {Slot::IMAGE_COLORLEVEL, m}},
                  testkit::fixture(format("VideoImaging.%d.data", ++n)));
    t.run("The flip is \"Image\" exactly, on the first Flip line", "-u 10");
  }
  t.expectGolden();
}

TEST(VideoOrientation, RotationTable) {
  testkit::Transcript t;
  for (const char* word : {"clockwise", "0", "rotate", "flip", "mirror", "counterclockwise",
                           "clockwise_mirror", "clockwise_flip", "upside_down"}) {
    t.run(format("Rotation %s", word), "-u 7", {},
          {{kApp, format("root.Image.I0.Appearance.Rotation=%s\n", word)}});
  }
  t.run("Without the web file the slot's code is shown", "-u 7", {{Slot::ONVIF_ROTATE_MODE, 5}},
        {{kApp, {}}});
  t.expectGolden();
}

// options.conf with a resolution list, a frame-rate ceiling and, per H.264
// stream, a bitrate ceiling and a key-frame ceiling of a tenth of it.
std::string options(const std::string& list, int fps) {
  std::string out = list.empty() ? "" : "root.Image.I0.Appearance.Resolution=" + list + "\n";
  out += format("root.Framerate.H264=1-%d\n", fps);
  const std::pair<const char*, int> streams[] = {
      {"", 6000}, {"_2", 3000}, {"_3", 900}, {"_4", 500}};
  for (auto [s, b] : streams)
    out += format("root.Image.I0.Appearance.H264%sBitrate=64-%d\n", s, b) +
           format("root.Image.I0.Appearance.H264%sVideoKeyFrameInterval=2-%d\n", s, b / 10);
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
  testkit::Transcript t;
  for (auto [brand, list] : cases) {
    Camera cam;
    t.on(cam).run(format("Brand %d: %s", brand, list), "-u 13", {{Slot::ONVIF_BRAND, brand}},
                  {{"/tmp/options.conf", options(list, 25)}});
  }
  t.expectGolden();
}

TEST(VideoLimits, NothingToSync) {
  testkit::Transcript t;
  t.run("No resolution list and no frame rate", "-u 13", {},
        {{"/tmp/options.conf", options("", 0)}});
  t.run("The list cannot be written where a folder is", "-u 13", {},
        {{"/tmp/options.conf", options("720p,disable,disable,disable,disable", 30)},
         {"/tmp/onvif/available_resolution/blocked", ""}});
  t.expectGolden();
}

}  // namespace
